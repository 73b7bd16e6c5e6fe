// A long rough time for the built program in its window: random hands at several zooms, then closes at random moments.
//
//   soak PROGRAM [ACTIONS [CLOSES [SEED]]]        2000 actions and 100 closes by default
//
// Prints memory, threads and handles on the way; afterwards a new game must still be playable. A close counts from the
// request to the end of the process. Says what went wrong and ends with 1 where something did.
#include "quarnelchess/records/San.h"
#include "window/ProgramWindow.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <thread>

namespace quarnel::xdriver {
namespace {

constexpr int MostCloseMs = 200;

class Soak {
  public:
    Soak(std::filesystem::path program, unsigned seed) : program_(std::move(program)), random_(seed) {}

    void Handle(int actions) {
        ProgramWindow program;
        program.Start(program_);
        for (int done = 0; done < actions; ++done) {
            if (done % (actions / 8 + 1) == 0) {
                Settle(program);
                program.Choose({2, 0, Next(8)}); // another zoom
                Print(done, program.Process());
            }
            Act(program);
        }
        Settle(program);
        Print(actions, program.Process());
        // Whatever is left of a slide that a command came into, two new games end it.
        for (int game = 0; game < 2; ++game) {
            program.Choose({0, 0});
            program.AwaitSleep();
        }
        program.Eye->Flipped = False;
        engine::Board board = engine::Board::Start();
        const engine::Move first = engine::ReadSan(board, "e4");
        program.Drag(first);
        board.Make(first);
        program.AwaitReply(board);
        program.Close();
    }

    void CloseOften(int closes) {
        int worstMs = 0;
        for (int i = 0; i < closes; ++i) {
            ProgramWindow program;
            program.Start(program_);
            for (int act = Next(12); act > 0; --act) Act(program);
            const auto asked = std::chrono::steady_clock::now();
            const int status = program.Close();
            const auto took = std::chrono::steady_clock::now() - asked;
            worstMs = std::max(worstMs, static_cast<int>(took / std::chrono::milliseconds(1)));
            if (status != 0) throw std::runtime_error("a close ended with status " + std::to_string(status));
        }
        std::cout << closes << " closes, the slowest took " << worstMs << " ms" << std::endl;
        if (worstMs > MostCloseMs) throw std::runtime_error("a close took too long");
    }

  private:
    int Next(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    void Act(ProgramWindow& program) {
        constexpr const char* chords[] = {"ctrl+b", "ctrl+f", "ctrl+s", "ctrl+e", "ctrl+m", "ctrl+h",
                                          "Escape", "alt+g",  "Down",   "Return", "Right"};
        const Rectangle area = program.User.Area(program.Window).value_or(Rectangle{0, 0, 400, 400});
        const int x = Next(area.Right - area.Left);
        const int y = Next(area.Bottom - area.Top);
        switch (Next(6)) {
        case 0:
            program.User.MoveTo(program.Window, x, y);
            break;
        case 1:
            program.User.Press(Next(8) == 0 ? 3 : 1);
            break;
        case 2:
            program.User.Release();
            program.User.Release(3);
            break;
        case 3:
            program.User.Chord(chords[Next(static_cast<int>(std::size(chords)))]);
            break;
        case 4:
            program.User.Click(program.Window, x, y);
            break;
        default:
            std::this_thread::sleep_for(std::chrono::milliseconds(Next(60)));
            break;
        }
    }

    /// Lets go of everything, and takes away what is open.
    static void Settle(ProgramWindow& program) {
        program.User.Release();
        program.User.Release(3);
        program.Await("rest", [&] {
            for (const char* title :
                 {"Enter a file name of your game to save.", "Enter a file name of your game to load."})
                if (const WindowId dialog = program.User.FindWindow(title); dialog != 0) program.User.Activate(dialog);
            program.User.Chord("Escape");
            program.TakeMessageAway();
            return program.User.Popups().empty() && program.User.FindWindow("Quarnel Chess") == 0 &&
                   program.User.FindWindow("Enter a file name of your game to save.") == 0 &&
                   program.User.FindWindow("Enter a file name of your game to load.") == 0;
        });
        program.User.Activate(program.Window);
    }

    static void Print(int done, int process) {
        const std::string folder = "/proc/" + std::to_string(process);
        std::ifstream status(folder + "/status");
        std::cout << "after " << done << " actions:";
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmRSS") || line.starts_with("Threads")) std::cout << "  " << line;
        const auto handles = std::distance(std::filesystem::directory_iterator(folder + "/fd"), {});
        std::cout << "  handles " << handles << std::endl;
    }

    std::filesystem::path program_;
    std::mt19937 random_;
};

} // namespace
} // namespace quarnel::xdriver

int main(int argc, char** argv) {
    using namespace quarnel;
    const auto number = [&](int index, int otherwise) { return argc > index ? std::atoi(argv[index]) : otherwise; };
    if (argc < 2) {
        std::cerr << "usage: soak PROGRAM [ACTIONS [CLOSES [SEED]]]\n";
        return 2;
    }
    try {
        xdriver::EnterVirtualDisplay(argv);
        xdriver::Soak soak(std::filesystem::absolute(argv[1]), static_cast<unsigned>(number(4, 1)));
        soak.Handle(number(2, 2000));
        soak.CloseOften(number(3, 100));
    } catch (const std::exception& failure) {
        std::cerr << "soak: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
