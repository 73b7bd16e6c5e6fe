// The built program in a real window, played by mouse against the real engine until somebody is mated.
//
// The player's moves are legal and poor; the replies are read off the pixels and must be legal, too. Nothing waits
// by the clock: each step waits for what the window shows.
#include "support/BoardEye.h"
#include "support/VirtualDisplay.h"

#include "QuarnelChess.h"
#include "model/GameState.h"
#include "notation/PositionText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace quarnel::xdriver {
namespace {

constexpr const char* Title = "Quarnel Chess v3.26";
constexpr const char* BoxTitle = "Quarnel Chess";

MoveList Legal(const Position& position) {
    MoveList list{};
    quarnel_GetMove(&position, position.SideToMove != White ? 1 : 0, &list);
    return list;
}

Position After(Position position, const MoveRec& move) {
    quarnel_MakeMove(&position, &move);
    position.SideToMove = Not(position.SideToMove);
    return position;
}

Square Target(const MoveRec& move) {
    if (move.Castle != NoCastle) return {CastleFile(move.Castle), move.FromRow};
    return {move.ToFile, move.ToRow};
}

class WholeGame : public testing::Test {
  protected:
    WholeGame() : Screen(VirtualDisplay::Start()), User(Screen->Name()) {}
    ~WholeGame() override { EndProgram(Process); }

    void StartProgramWith(const std::string& settings) {
        auto environment = Screen->Environment();
        std::erase_if(environment, [](const std::string& e) { return e.starts_with("XDG_CONFIG_HOME="); });
        environment.push_back("XDG_CONFIG_HOME=" + Screen->Home().string());
        std::filesystem::create_directories(Screen->Home() / "quarnel-chess");
        std::ofstream(Screen->Home() / "quarnel-chess/settings.conf") << "[Quarnel Chess/Settings]\n" << settings;
        Process = StartProgram({QUARNEL_PROGRAM}, environment);
        Window = User.WaitForWindow(Title);
        ASSERT_NE(Window, 0U);
        Eye = std::make_unique<BoardEye>(User, Window);
    }

    void Click(Square square) {
        const PixelPoint point = Eye->Middle(square);
        User.Click(Window, point.X, point.Y);
    }
    void Drag(Square from, Square to) {
        const PixelPoint start = Eye->Middle(from);
        const PixelPoint end = Eye->Middle(to);
        User.Drag(Window, start.X, start.Y, end.X, end.Y);
    }
    bool WaitForBoard(const std::function<bool()>& state) {
        return User.WaitUntil([&] { return Eye->Look() && state(); });
    }

    // A move that takes nothing when there is one: the engine shall win soon.
    MoveRec PoorMove(const Position& position) {
        const MoveList list = Legal(position);
        std::vector<MoveRec> quiet;
        for (int i = 0; i < list.Count; ++i) {
            const Square to = Target(list.Moves[i]);
            const bool takes = PieceAt(position, to.File, to.Row) != NoPiece || list.Moves[i].EpCapFile != 0;
            if (!takes) quiet.push_back(list.Moves[i]);
        }
        MoveRec move = quiet.empty() ? list.Moves[0] : quiet[Random() % quiet.size()];
        if (move.Promote != NoPiece) move.Promote = Queen;
        return move;
    }

    void PlayByMouse(const MoveRec& move, bool drag) {
        const Square from{move.FromFile, move.FromRow};
        if (drag) {
            Drag(from, Target(move));
            return;
        }
        Click(from);
        ASSERT_TRUE(WaitForBoard([&] { return Eye->Mark(from) == SquareMark::Origin; }));
        Click(Target(move));
    }

    // Waits for the engine's reply and plays it on `position`; false when there is none because the game is over.
    // The user's own origin counts as a selection while a piece stands there, so a reply onto it keeps that frame.
    bool TakeReply(Position& position, Square usersOrigin) {
        const MoveList replies = Legal(position);
        if (replies.Count == 0) return false;
        const MoveRec* reply = nullptr;
        const bool seen = User.WaitUntil([&] {
            TakeBoxAway(); // a mate is announced at once and covers the board
            if (!Eye->Look() || !Eye->Idle() || Eye->UpperLight()) return false;
            for (int i = 0; i < replies.Count; ++i) {
                if (Eye->ShowsBoardOf(After(position, replies.Moves[i]))) reply = &replies.Moves[i];
            }
            return reply != nullptr && Eye->Mark(Target(*reply)) != SquareMark::None;
        });
        EXPECT_TRUE(seen) << ToUtf8(notation::PositionToFen(position));
        if (!seen) return false;
        const bool ontoOrigin = Target(*reply) == usersOrigin;
        EXPECT_EQ(Eye->Mark(Target(*reply)), ontoOrigin ? SquareMark::Origin : SquareMark::Target);
        EXPECT_EQ(Eye->Mark({reply->FromFile, reply->FromRow}), ontoOrigin ? SquareMark::None : SquareMark::Origin);
        position = After(position, *reply);
        return true;
    }

    // Presses "OK" in the message box, if it is there, and waits until it has gone.
    bool TakeBoxAway() {
        const WindowId box = User.FindWindow(BoxTitle);
        const auto area = box != 0 ? User.Area(box) : std::nullopt;
        if (!area || User.Outline(box).size() < 5) return false;
        User.Click(box, (area->Right - area->Left) / 2, area->Bottom - area->Top - 29);
        ++BoxesSeen;
        EXPECT_TRUE(User.WaitUntil([&] { return User.FindWindow(BoxTitle) == 0; }));
        return true;
    }

    bool InCheck(const Position& position) { return quarnel_KingAttacked(&position, position.SideToMove) != 0; }
    Square KingOf(const Position& position) {
        const int king = King + (position.SideToMove != White ? BlackOffset : 0);
        for (int row = 1; row <= 8; ++row) {
            for (int file = 1; file <= 8; ++file) {
                if (PieceAt(position, file, row) == king) return {file, row};
            }
        }
        return {};
    }

    std::unique_ptr<VirtualDisplay> Screen;
    WindowDriver User;
    std::mt19937 Random{11};
    pid_t Process = 0;
    WindowId Window = 0;
    int BoxesSeen = 0;
    std::unique_ptr<BoardEye> Eye;
};

TEST_F(WholeGame, IsPlayedByMouseUntilSomebodyIsMated) {
    ASSERT_NO_FATAL_FAILURE(StartProgramWith("Level=5\nPonder=-1\n"));
    Position position{};
    Text start(StandardStart);
    notation::FenToPosition(start, position);
    ASSERT_TRUE(WaitForBoard([&] { return Eye->ShowsBoardOf(position) && Eye->LowerLight() && !Eye->UpperLight(); }));

    Surface lastStrip = Eye->Strip();
    int checks = 0;
    for (int move = 0; Legal(position).Count != 0; ++move) {
        ASSERT_LT(move, 150) << "nobody is mated";
        const MoveRec poor = PoorMove(position);
        const Position next = After(position, poor);
        ASSERT_NO_FATAL_FAILURE(PlayByMouse(poor, move % 2 == 1));
        position = next;
        if (!TakeReply(position, {poor.FromFile, poor.FromRow})) break;
        const bool over = Legal(position).Count == 0;
        EXPECT_EQ(Eye->LowerLight(), !(over && InCheck(position)));
        const Square king = KingOf(position);
        const SquareGround ground = !InCheck(position) ? SquareGround::Plain
                                    : over             ? SquareGround::Mate
                                                       : SquareGround::Check;
        EXPECT_EQ(Eye->Ground(king.File, king.Row), ground) << "move " << move;
        checks += ground == SquareGround::Check ? 1 : 0;
        EXPECT_FALSE(Eye->Strip() == lastStrip) << "the strip names each move";
        lastStrip = Eye->Strip();
    }
    ASSERT_EQ(Legal(position).Count, 0);
    ASSERT_TRUE(InCheck(position)) << "a stalemate is no mate";

    EXPECT_TRUE(User.WaitUntil([&] { return TakeBoxAway() || BoxesSeen > 0; }));
    EXPECT_EQ(BoxesSeen, 1);

    // A new game is what the board takes now.
    EXPECT_TRUE(WaitForBoard([&] { return !Eye->LowerLight() && !Eye->UpperLight(); }));
    User.AskToClose(Window);
    int status = -1;
    EXPECT_TRUE(User.WaitUntil([&] { return !StillRuns(Process, status); }));
    EXPECT_EQ(status, 0);
    Process = 0;
}

TEST_F(WholeGame, EndsAtOnceWhenClosedWhileTheEngineThinks) {
    ASSERT_NO_FATAL_FAILURE(StartProgramWith("Level=9\n"));
    ASSERT_TRUE(WaitForBoard([&] { return Eye->LowerLight(); }));
    Drag({5, 7}, {5, 5});
    ASSERT_TRUE(WaitForBoard([&] { return Eye->UpperLight(); }));
    User.AskToClose(Window);
    int status = -1;
    EXPECT_TRUE(User.WaitUntil([&] { return !StillRuns(Process, status); }));
    EXPECT_EQ(status, 0);
    Process = 0;
}

} // namespace
} // namespace quarnel::xdriver
