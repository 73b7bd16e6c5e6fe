// A game by the whole program and the real engine library, with something failing on the way; see FaultsTest.
//
//   game-under-faults LIBRARY RECORD     leaves the record; 0 when the game went on to its end
#include "app/Program.h"
#include "display/BoardGeometry.h"
#include "platform/posix/PlainFiles.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace quarnel {
namespace {

/// Files and the library are real.
class HalfRealDesktop final : public ScriptedDesktop {
  public:
    explicit HalfRealDesktop(void* library) : library_(library) {}
    std::optional<std::string> ReadFile(const std::filesystem::path& path, std::size_t mostBytes) override {
        return ReadPlainFile(path, mostBytes);
    }
    bool StoreFile(const std::filesystem::path& path, std::string_view bytes) override {
        return StorePlainFile(path, bytes);
    }
    LibraryHandle LoadLibrary(const Text&) override { return 1; }
    void* FindSymbol(const Text&, const char* symbol) override { return dlsym(library_, symbol); }
    std::function<bool()> Next; ///< what the user does when nothing else happens; false when he is done
    // The engine never returns, so the user's end is the end of the process.
    void WaitEvent() override {
        while (!PeekEvent()) {
            if (!Next()) std::_Exit(0);
        }
    }

  private:
    void* library_;
};

int Play(const char* libraryPath, const char* record) {
    HalfRealDesktop screen(dlopen(libraryPath, RTLD_NOW));
    screen.Settings["quarnel chess/settings/level"] = u"0";
    screen.Settings["quarnel chess/settings/wsize"] = u"0";
    screen.Environment["NUMBER_OF_PROCESSORS"] = u"3";
    screen.TickStepMs = 100;
    Program game(screen);
    const auto drag = [&](Square from, Square to) {
        const auto push = [&](Square square, auto&& what) {
            const PixelPoint corner = SquareCorner(square, game.State.BoardFlipped);
            what((corner.X + 20) * game.State.Zoom, (corner.Y + 20) * game.State.Zoom);
        };
        Form& window = game.Board.Window;
        push(from, [&](double x, double y) { screen.Press(window, x, y); });
        push(to, [&](double x, double y) { screen.Release(window, x, y); });
    };
    auto& files = game.Board.SubFileMenu;
    auto& moves = game.Board.Moves.SubMovesMenu;
    const std::vector<std::function<void()>> deeds = {
        [&] { drag({5, 7}, {5, 5}); },   [&] { screen.Click(files[3]); },
        [&] { drag({7, 8}, {6, 6}); },   [&] { screen.Click(files[3]); },
        [&] { screen.Click(moves[2]); }, [&] { screen.Click(files[4]); },
        [&] { screen.Click(files[1]); }, [&] { screen.Click(game.Settings.cs[1]); },
        [&] { screen.Click(files[0]); }, [&] { drag({4, 7}, {4, 5}); },
        [&] { screen.Click(files[3]); },
    };
    screen.Next = [&, next = deeds.begin()]() mutable {
        FrmMsg& box = game.Messages.Dialog();
        if (box.Visible.Get()) {
            screen.Click(box.Ok);
            return true;
        }
        if (next == deeds.end()) return false;
        (*next++)();
        return true;
    };
    screen.DialogAnswers.assign(8, record);
    if (auto* start = reinterpret_cast<void (*)()>(dlsym(RTLD_DEFAULT, "StartToFail"))) start();
    game.Run();
    // Without an engine the desktop's own loop drives the window.
    while (true) {
        screen.WaitEvent();
        screen.ProcessEvents();
    }
}

} // namespace
} // namespace quarnel

int main(int, char** arguments) {
    return quarnel::Play(arguments[1], arguments[2]);
}
