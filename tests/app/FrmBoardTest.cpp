// The main window's own commands: menus, toolbar, help panel, start-up looks.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

class MainWindow : public ProgramTest {
  protected:
    // "FileMenu Game(SubFileMenu(0) New Game as White, ...)", with marks: ^ shortcut, * checked, ! disabled. Of items
    // that are numbered as they stand only the first one's name.
    static std::string Outline(const MenuItem& item, std::size_t index) {
        const bool numbered = item.Name.ends_with("(" + std::to_string(index) + ")");
        std::string text = (numbered && index > 0 ? "" : item.Name + " ") + ToUtf8(item.Caption.Get());
        if (!item.Shortcut.empty()) text += " ^" + ToUtf8(item.Shortcut);
        if (item.Checked.Get()) text += " *";
        if (!item.Enabled.Get()) text += " !";
        return item.Items().empty() ? text : text + "(" + Outline(item.Items()) + ")";
    }
    static std::string Outline(const std::vector<MenuItem*>& items) {
        std::string list;
        for (std::size_t i = 0; i < items.size(); ++i) list += (i == 0 ? "" : ", ") + Outline(*items[i], i);
        return list;
    }
};

TEST_F(MainWindow, OpensWithItsMenusAndItsTitle) {
    EXPECT_EQ(Window().Caption.Get(), u"Quarnel Chess v3.26");
    EXPECT_EQ(Outline(Window().Menus()),
              "FileMenu Game(SubFileMenu(0) New Game as White, New Game as Black, -, Save Game at current positon, "
              "Load Game), MovesMenu Moves(SubMovesMenu(0) Back up one move ^Ctrl+B, Forward one move ^Ctrl+F, "
              "Back to start ^Ctrl+S, Forward to end ^Ctrl+E, -, Move now ^Ctrl+M, Stop thinking ^Ctrl+H !), "
              "ededeeede Options(vwewe3ee3 Zoom(vw(0) 75 %, 100 % *, 125 %, 150 %, 175 %, 200 %, 225 %, 250 %), "
              "cs3e3e Computer strength(cs(0) Level 1 - 0.5 sec, Level 2 - 0.5 sec, Level 3 - 0.5 sec, "
              "Level 4 - 0.5 sec, Level 5 - 0.5 sec, Level 6 - 0.5 sec, Level 7 - 1 sec *, Level 8 - 3 sec, "
              "Level 9 - 5 sec, Level 10 - 10 sec), pnd Ponder, edeeded Promote next pawn to(pprom(0) Knight, Bishop, "
              "Rook, Queen *)), hlp Help, hpg HomePage");
    EXPECT_EQ(Look(), "0/0 Welcome ---- lower i");
    EXPECT_EQ(Game->Board.Moves.poke[0].ToolTip.Get(), u"Back to start");
    EXPECT_EQ(Screen.InnerSize(Window()), (Size{361, 362}));
    DragMove("e2", "e4");
    Choose(NewAsWhite());
    Choose(NewAsWhite());
    EXPECT_THAT(Screen.Spoken, testing::ElementsAre(u"Move: e4", u"Move: none", u"Move: none"));
    EXPECT_THROW(Screen.Close(Window()), ScriptedDesktop::ProcessEnded);
}

TEST_F(MainWindow, OpensTheHomePageAndShowsTheWelcomePanelUntilItsButtonIsReleased) {
    Choose(Game->Board.hpg);
    EXPECT_THAT(Screen.Log, testing::Contains("address https://www.quarnel-chess.example/"));
    Control& panel = Game->Board.Picture1;
    EXPECT_FALSE(panel.Visible);
    Choose(Game->Board.hlp);
    EXPECT_TRUE(panel.Visible);
    EXPECT_TRUE(Game->Board.Label1.Caption.Get().starts_with(u"  Quarnel Chess is a freeware, first released in"));
    ClickSquare("e4"); // covered by the panel
    Engine.Pull();
    EXPECT_EQ(Controller().PressFile, 0);
    Screen.Click(Game->Board.ctrl_SkinableButton1.pic_Button);
    Engine.Pull();
    EXPECT_FALSE(panel.Visible);
}

} // namespace
} // namespace quarnel
