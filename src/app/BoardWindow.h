// The main window as it was designed: its form, the menus and the controls that belong to no module.
//
// Menus and controls that a module drives stand beside that module (MoveControls, EngineSettings,
// ZoomMenu, StatusStrip); FrmBoard puts them all together.
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

    MenuItem FileMenu{u"Game"};
    std::array<MenuItem, 5> SubFileMenu{MenuItem(u"New Game as White"), MenuItem(u"New Game as Black"), MenuItem(u"-"),
                                        MenuItem(u"Save Game at current positon"), MenuItem(u"Load Game")};
    MenuItem ededeeede{u"Options"};
    MenuItem vwewe3ee3{u"Zoom"};
    MenuItem edeeded{u"Promote next pawn to"};
    std::array<MenuItem, 4> pprom{MenuItem(u"Knight"), MenuItem(u"Bishop"), MenuItem(u"Rook"), MenuItem(u"Queen")};
    MenuItem hlp{u"Help"};
    MenuItem hpg{u"HomePage"};

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
