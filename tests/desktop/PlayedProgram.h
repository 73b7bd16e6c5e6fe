// The built program in a window of a virtual display, with a user in front of it.
//
// Nothing waits by the clock: each step waits for what the window, the files or the engine's command lines show.
#pragma once

#include "window/BoardEye.h"
#include "window/MenuEye.h"
#include "window/VirtualDisplay.h"

#include "QuarnelChess.h"
#include "model/GameState.h"
#include "notation/PositionText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace quarnel::xdriver {

inline MoveList Legal(const Position& position) {
    MoveList list{};
    quarnel_GetMove(&position, position.SideToMove != White ? 1 : 0, &list);
    return list;
}

inline Position After(Position position, const MoveRec& move) {
    quarnel_MakeMove(&position, &move);
    position.SideToMove = Not(position.SideToMove);
    return position;
}

inline Square Target(const MoveRec& move) {
    if (move.Castle != NoCastle) return {CastleFile(move.Castle), move.FromRow};
    return {move.ToFile, move.ToRow};
}

inline std::string Contents(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

class PlayedProgram : public testing::Test {
  protected:
    PlayedProgram() : Screen(VirtualDisplay::Start()), Home(Screen->Home()), User(Screen->Name()) {
        Text start(StandardStart);
        notation::FenToPosition(start, Game);
    }
    ~PlayedProgram() override {
        EndProgram(Process);
        std::filesystem::current_path("/"); // the home goes away with the display
    }

    void StartWith(const std::string& program, const std::string& settings,
                   const std::vector<std::string>& variables = {}) {
        std::filesystem::create_directories(SettingsFile().parent_path());
        std::ofstream(SettingsFile()) << "[Quarnel Chess/Settings]\n" << settings;
        auto environment = Screen->Environment();
        environment.insert(environment.begin(), variables.begin(), variables.end());
        Process = StartProgram({program}, environment);
        Window = User.WaitForWindow("Quarnel Chess v3.26");
        ASSERT_NE(Window, 0U);
        Eye = std::make_unique<BoardEye>(User, Window);
    }
    std::filesystem::path SettingsFile() const { return Home / "config/quarnel-chess/settings.conf"; }

    void Click(PixelPoint point) { User.Click(Window, point.X, point.Y); }
    void Drag(Square from, Square to) {
        const PixelPoint start = Eye->Middle(from);
        const PixelPoint end = Eye->Middle(to);
        User.Drag(Window, start.X, start.Y, end.X, end.Y);
    }
    bool WaitForBoard(const std::function<bool()>& state) {
        return User.WaitUntil([&] { return Eye->Look() && state(); });
    }

    /// Waits until the program sleeps: all that was done has come to its end, and waiting costs nothing. Asleep is who
    /// was not woken up between looks that all went through the display's server, too.
    bool WaitForSleep() {
        const std::string status = "/proc/" + std::to_string(Process) + "/status";
        std::string before;
        int same = 0;
        return User.WaitUntil([&] {
            User.Area(Window);
            const std::string now = Contents(status);
            const auto wakeUps = now.find("\nvoluntary_ctxt_switches");
            if (wakeUps == now.npos || now.find("\nState:\tS") == now.npos) return false;
            same = now.substr(wakeUps) == std::exchange(before, now.substr(wakeUps)) ? same + 1 : 0;
            return same == 4;
        });
    }

    /// Waits until nobody thinks and the board shows a legal move played on Game, which is then played there, too;
    /// an all-zero record when that never came. Message boxes are taken away meanwhile.
    MoveRec TakeEngineMove() {
        const MoveList replies = Legal(Game);
        MoveRec move{};
        const bool seen = User.WaitUntil([&] {
            TakeBoxAway();
            if (!Eye->Look() || !Eye->Idle()) return false;
            for (int i = 0; i < replies.Count; ++i) {
                if (Eye->ShowsBoardOf(After(Game, replies.Moves[i]))) move = replies.Moves[i];
            }
            return move.FromFile != 0 && Eye->Mark(Target(move)) != SquareMark::None;
        });
        EXPECT_TRUE(seen) << ToUtf8(notation::PositionToFen(Game));
        if (seen) Game = After(Game, move);
        return seen ? move : MoveRec{};
    }

    WindowId Box() {
        const WindowId box = User.FindWindow("Quarnel Chess");
        return box != 0 && User.Outline(box).size() >= 5 ? box : 0;
    }
    bool BoxIsPainted() {
        const Surface box = User.GrabWindow(Box());
        return !box.Empty() && box.At(box.Width() / 2, box.Height() - 12) == Rgb(206, 206, 206);
    }
    /// Presses "OK" in the message box, if it is there, and waits until it has gone.
    bool TakeBoxAway() {
        const WindowId box = Box();
        const auto area = User.Area(box);
        if (!area) return false;
        User.Click(box, (area->Right - area->Left) / 2, area->Bottom - area->Top - 29);
        EXPECT_TRUE(User.WaitUntil([&] { return Box() == 0; }));
        ++BoxesSeen;
        return true;
    }

    void ExpectItEndsWhenClosed() {
        User.AskToClose(Window);
        int status = -1;
        EXPECT_TRUE(User.WaitUntil([&] { return !StillRuns(Process, status); }));
        EXPECT_EQ(status, 0);
        Process = 0;
    }

    std::unique_ptr<VirtualDisplay> Screen;
    std::filesystem::path Home;
    WindowDriver User;
    pid_t Process = 0;
    WindowId Window = 0;
    std::unique_ptr<BoardEye> Eye;
    Position Game{}; ///< what the board ought to show
    int BoxesSeen = 0;
};

} // namespace quarnel::xdriver
