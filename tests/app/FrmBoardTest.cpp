// The main window's own commands: menus, toolbar, help panel, start-up looks.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using testing::Contains;

class MainWindow : public ProgramTest {
  protected:
    // "Game(New Game as White, ...)", with marks: ^ shortcut, * checked, ! disabled.
    static std::string Outline(const MenuItem& item) {
        std::string text = ToUtf8(item.Caption.Get());
        if (!item.Shortcut.empty()) text += " ^" + ToUtf8(item.Shortcut);
        if (item.Checked.Get()) text += " *";
        if (!item.Enabled.Get()) text += " !";
        if (item.Items().empty()) return text;
        std::string list;
        for (const MenuItem* sub : item.Items()) list += (list.empty() ? "" : ", ") + Outline(*sub);
        return text + "(" + list + ")";
    }
};

TEST_F(MainWindow, OpensWithItsMenusAndItsTitle) {
    Play([&] {
        EXPECT_EQ(ToUtf8(Window().Caption.Get()), "Quarnel Chess v3.26");
        std::vector<std::string> menus;
        for (const MenuItem* menu : Window().Menus()) menus.push_back(Outline(*menu));
        EXPECT_THAT(menus,
                    testing::ElementsAre(
                        "Game(New Game as White, New Game as Black, -, Save Game at current positon, Load Game)",
                        "Moves(Back up one move ^Ctrl+B, Forward one move ^Ctrl+F, Back to start ^Ctrl+S, "
                        "Forward to end ^Ctrl+E, -, Move now ^Ctrl+M, Stop thinking ^Ctrl+H !)",
                        "Options(Zoom(75 %, 100 % *, 125 %, 150 %, 175 %, 200 %, 225 %, 250 %), "
                        "Computer strength(Level 1 - 0.5 sec, Level 2 - 0.5 sec, Level 3 - 0.5 sec, Level 4 - 0.5 sec, "
                        "Level 5 - 0.5 sec, Level 6 - 0.5 sec, Level 7 - 1 sec *, Level 8 - 3 sec, Level 9 - 5 sec, "
                        "Level 10 - 10 sec), Ponder, Promote next pawn to(Knight, Bishop, Rook, Queen *))",
                        "Help", "HomePage"));
        EXPECT_EQ(Strip(), "Welcome");
        EXPECT_TRUE(LowerLight() && !UpperLight());
        EXPECT_EQ(Screen.InnerSize(Window()), (Size{361, 362}));
        DragMove("e2", "e4");
        EXPECT_THAT(Window().OnDescribe(), Contains(testing::Field(&AccessibleItem::Name, u"e4, white pawn")));
    });
}

TEST_F(MainWindow, GivesEveryMenuItemItsNameAndItsIndexInTheForm) {
    Play([&] {
        std::string names;
        const std::function<void(const std::vector<MenuItem*>&)> list = [&](const std::vector<MenuItem*>& items) {
            for (std::size_t i = 0; i < items.size(); ++i) {
                const bool indexed = items[i]->Name.ends_with("(" + std::to_string(i) + ")");
                names += indexed ? (i == 0 ? items[i]->Name + " " : "") : items[i]->Name + " ";
                list(items[i]->Items());
            }
        };
        list(Window().Menus());
        EXPECT_EQ(names, "FileMenu SubFileMenu(0) MovesMenu SubMovesMenu(0) ededeeede vwewe3ee3 vw(0) cs3e3e cs(0) "
                         "pnd edeeded pprom(0) hlp hpg ");
    });
}

TEST_F(MainWindow, OpensTheHomePageAndShowsTheWelcomePanelUntilItsButtonIsReleased) {
    Play([&] {
        Choose(Game->Board.hpg);
        EXPECT_THAT(Screen.Log, Contains("address https://www.quarnel-chess.example/"));
        Control& panel = Game->Board.Picture1;
        EXPECT_FALSE(panel.Visible);
        Choose(Game->Board.hlp);
        EXPECT_TRUE(panel.Visible);
        const std::string text = ToUtf8(Game->Board.Label1.Caption.Get());
        EXPECT_TRUE(text.starts_with("  Quarnel Chess is a freeware, first released in 2009. You can"));
        EXPECT_TRUE(text.ends_with("printing. \r\n  Good luck. Have a fun.\r\n\r\n" + std::string(28, ' ') +
                                   "The Quarnel Chess team"));
        ClickSquare("e4"); // covered by the panel
        Engine.Pull();
        EXPECT_EQ(Controller().PressFile, 0);
        Screen.Click(Game->Board.ctrl_SkinableButton1.pic_Button);
        Engine.Pull();
        EXPECT_FALSE(panel.Visible);
    });
}

TEST_F(MainWindow, ADamagedZoomKeepsTheDesignedWindowAndIndexesOutsideTheirTablesDoNothing) {
    Screen.Settings["quarnel chess/settings/wsize"] = u"huge";
    Play([&] {
        EXPECT_EQ(Screen.InnerSize(Window()), (Size{361, 362}));
        for (const MenuItem& item : Game->Zoom.vw) EXPECT_FALSE(item.Checked);
        Game->Menus.poke_Click(6);
        Game->Menus.poke_Click(-1);
        Game->Menus.SubFileMenu_Click(2);
        Game->Menus.SubMovesMenu_Click(MovesSeparator);
        EXPECT_THAT(Engine.Pull(), testing::IsEmpty());
        EXPECT_EQ(Game->Board.Moves.poke[4].Left, 96);
        Screen.Click(Game->Board.Moves.poke[4]);
        EXPECT_EQ(Engine.Pull().back(), "go");
    });
}

} // namespace
} // namespace quarnel
