// The hidden controller form: it sets the game model up and starts games.
//
// Move input and stepping through the history, the controller's other two concerns, are MoveInput and
// Navigation. Program thread only.
#pragma once

#include "display/PieceAnimation.h"
#include "display/ZoomMenu.h"
#include "engine/EngineControl.h"

namespace quarnel {

class CtrlPanel {
  public:
    CtrlPanel(GameState& state, ControllerState& controller, BoardPictures& pictures, EngineControl& control,
              BoardRenderer& renderer, PieceAnimation& animation, ZoomMenu& zoom)
        : state_(state), controller_(controller), pictures_(pictures), control_(control), renderer_(renderer),
          animation_(animation), zoom_(zoom) {}

    /// What holds before the first game: the designed size, queens for promoted pawns, marks on the last move, room for
    /// other lines.
    void SetStartValues();
    /// Loads the pictures and initialises the game model. Once.
    void Form_Load();
    void Intialize_Program();

    /// Starts a game from the standard position. Colours, orientation and the status text are the caller's.
    void NewGame();
    /// The Game menu's two commands.
    void NewGameAsWhite();
    void NewGameAsBlack();

  private:
    void NewGameAgainst(Truth computer);

    GameState& state_;
    ControllerState& controller_;
    BoardPictures& pictures_;
    EngineControl& control_;
    BoardRenderer& renderer_;
    PieceAnimation& animation_;
    ZoomMenu& zoom_;
};

} // namespace quarnel
