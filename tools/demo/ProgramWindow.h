// The real program in a window of a virtual display, with what its users do: look, click, drag, choose from menus.
//
// Every wait is for something to be seen; what does not come within a minute throws std::runtime_error.
#pragma once

#include "window/BoardEye.h"
#include "window/VirtualDisplay.h"

#include <filesystem>
#include <initializer_list>
#include <memory>

namespace quarnel::xdriver {

class ProgramWindow {
  public:
    /// Starts the program, which then works in `folder`; pictures go there, too. The folder is made.
    ProgramWindow(const std::string& program, const std::filesystem::path& folder);
    ~ProgramWindow() { EndProgram(process_); }
    ProgramWindow(const ProgramWindow&) = delete;
    ProgramWindow& operator=(const ProgramWindow&) = delete;

    WindowDriver& User() { return user_; }
    BoardEye& Eye() { return *eye_; }
    WindowId Window() const { return window_; }

    void Await(const std::string& what, const std::function<bool()>& state);
    /// Looks at the board before each `state`; no piece may be in motion when it holds.
    void AwaitBoard(const std::string& what, const std::function<bool()>& state);

    void Click(Square square);
    void Drag(Square from, Square to);

    /// Of the Options menu, 1..10.
    void ChooseLevel(std::size_t level);
    void StartGame(bool userIsBlack);
    /// Saves the game by the menu, in a file of the folder.
    void SaveGame(const std::string& name);
    /// The message box, once it is painted; else 0.
    WindowId MessageBox();
    void PressOk();

    /// Writes a picture of the window, with what is above it, and prints its name.
    void Keep(const std::string& name);

  private:
    // An item of an open menu, and how many rows that menu has.
    struct MenuStep {
        std::size_t Item;
        std::size_t Rows;
    };
    // Opens a menu of the bar and clicks from item to item.
    void Choose(std::size_t menu, std::initializer_list<MenuStep> steps);

    std::filesystem::path folder_;
    std::unique_ptr<VirtualDisplay> screen_;
    WindowDriver user_;
    pid_t process_ = 0;
    WindowId window_ = 0;
    std::unique_ptr<BoardEye> eye_;
};

} // namespace quarnel::xdriver
