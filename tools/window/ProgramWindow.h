// The real program in a window, with what its users do: look, click, drag, choose from menus, answer dialogs.
//
// Every wait is for something to be seen; what does not come in time throws std::runtime_error.
#pragma once

#include "quarnelchess/board/Board.h"
#include "window/BoardEye.h"

#include <filesystem>

#include <sys/types.h>

namespace quarnel::xdriver {

inline Square SquareOf(engine::Square square) {
    return {engine::FileOf(square) + 1, 8 - engine::RankOf(square)};
}

class ProgramWindow {
  public:
    ~ProgramWindow();

    /// Starts the program in the current folder and waits for its board.
    void Start(const std::filesystem::path& program);

    void Await(const std::string& what, const std::function<bool()>& state);
    /// Looks at the board before each `state`; no piece may be in motion when it holds.
    void AwaitBoard(const std::string& what, const std::function<bool()>& state);
    /// Waits until the program sleeps: all that was done has come to its end, and waiting costs nothing.
    void AwaitSleep();
    /// Waits until nobody thinks and the board shows a legal move in `game`; plays it there. Messages are taken away
    /// meanwhile.
    engine::Move AwaitReply(engine::Board& game);
    bool Shows(const engine::Board& game) const;

    void Click(PixelPoint point) { User.Click(Window, point.X, point.Y); }
    void Click(engine::Square square) { Click(Eye->Middle(SquareOf(square))); }
    void Drag(engine::Move move);
    void ClickBar(int menu);
    /// Chooses an item of a menu and, where there are more numbers, of the menus in it. Separators do not count; -1 is
    /// the last item of a menu.
    void Choose(const std::vector<int>& path);
    /// Types the name into the dialog of that title, or cancels it when the name is empty.
    void AnswerDialog(const std::string& title, const std::string& name);

    /// The message box, once it is painted; else 0.
    WindowId MessageBox();
    /// Presses "OK" in the message box, if it is there, and waits until it has gone.
    bool TakeMessageAway();

    /// Closes the window; the program's status, as waitpid() tells it.
    int Close();
    pid_t Process() const { return process_; }
    /// Writes a picture of the window, with what is above it.
    void Keep(const std::string& file);

    WindowDriver User;
    WindowId Window = 0;
    std::unique_ptr<BoardEye> Eye;
    int MessagesTaken = 0;

  private:
    std::vector<int> bar_; ///< the captions' middles
    pid_t process_ = 0;
};

} // namespace quarnel::xdriver
