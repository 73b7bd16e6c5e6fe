// The main window as it was designed: its form, the menus and the controls that belong to no module.
//
// Menus and controls that a module drives stand beside that module (MoveControls, EngineSettings,
// ZoomMenu, StatusStrip); MenuCommands puts the menus together.
#pragma once

#include "controls/SkinnableButton.h"
#include "display/StatusStrip.h"
#include "engine/MoveControls.h"
#include "platform/Desktop.h"

namespace quarnel {

struct BoardWindow {
    explicit BoardWindow(Desktop& desktop);
    ~BoardWindow();
    BoardWindow(const BoardWindow&) = delete;
    BoardWindow& operator=(const BoardWindow&) = delete;

    Form Window{"FrmBoard", FormBorder::Framed};

    MenuItem FileMenu{"FileMenu", u"Game"};
    std::array<MenuItem, 5> SubFileMenu{{{"SubFileMenu(0)", u"New Game as White"},
                                         {"SubFileMenu(1)", u"New Game as Black"},
                                         {"SubFileMenu(2)", u"-"},
                                         {"SubFileMenu(3)", u"Save Game at current positon"},
                                         {"SubFileMenu(4)", u"Load Game"}}};
    MenuItem OptionsMenu{"ededeeede", u"Options"};
    MenuItem ZoomSubmenu{"vwewe3ee3", u"Zoom"};
    MenuItem PromotionSubmenu{"edeeded", u"Promote next pawn to"};
    std::array<MenuItem, 4> pprom{
        {{"pprom(0)", u"Knight"}, {"pprom(1)", u"Bishop"}, {"pprom(2)", u"Rook"}, {"pprom(3)", u"Queen"}}};
    MenuItem hlp{"hlp", u"Help"};
    MenuItem hpg{"hpg", u"HomePage"};

    StatusStrip Status;
    MoveControls Moves;
    Control Picture2{ControlKind::Picture, "Picture2"}; ///< the toolbar strip under the board

    Control Picture1{ControlKind::Picture, "Picture1"}; ///< the welcome panel
    Control Label1{ControlKind::Label, "Label1"};
    ctrl_SkinableButton ctrl_SkinableButton1{"ctrl_SkinableButton1", u"OK"};

    /// Makes the window known to the desktop in its designed size. Its menus must be complete, because
    /// they take room.
    void Attach();

  private:
    void AddControls();

    Desktop& desktop_;
};

} // namespace quarnel
