// A user at the display that the environment names: finds windows, moves the pointer, presses buttons and keys, looks
// at pixels.
//
// Everything is a real X event, so it takes the same road as a person's. Nothing here waits by the clock: WaitUntil()
// looks at a state until it holds and gives up only after a minute of looking, which is a failure and not a verdict.
// Positions are pixels from a window's top-left corner, the window manager's frame left out; a menu bar is part of the
// window.
#pragma once

#include "platform/Form.h"
#include "platform/Stretch.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct xdo;

namespace quarnel::xdriver {

/// A window of the display; 0 is none.
using WindowId = unsigned long;

class WindowDriver {
  public:
    /// Throws std::runtime_error when there is no display.
    WindowDriver();
    ~WindowDriver();
    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;

    /// Runs between two looks of WaitUntil(); a test that shares its thread with the windows processes their events
    /// here. Unset, the thread sleeps a moment instead.
    std::function<void()> BetweenLooks;
    /// Whether `state` came to hold.
    bool WaitUntil(const std::function<bool()>& state);

    /// The window of that title on the screen, 0 while there is none.
    WindowId FindWindow(const std::string& title);
    /// Waits for it; 0 when it never came.
    WindowId WaitForWindow(const std::string& title);
    /// The windows on the screen that the window manager leaves alone: open menus and tooltips.
    std::vector<WindowId> Popups();
    /// Where the window's pixels lie on the screen; nothing when it is not shown.
    std::optional<Rectangle> Area(WindowId window);

    // The user's hands. Each is on its way when the call returns.

    /// Moves the pointer to (x, y) of the window, which may lie outside of it.
    void MoveTo(WindowId window, int x, int y);
    void MoveOnScreen(int x, int y);
    void Press(int button = 1) { Button(button, true); }
    void Release(int button = 1) { Button(button, false); }
    /// MoveTo, Press, Release.
    void Click(WindowId window, int x, int y, int button = 1);
    /// A key with others held, such as "ctrl+b" or "Escape".
    void Chord(const std::string& keys);
    void Type(const std::string& text);
    /// As the close button in the window's frame does.
    void AskToClose(WindowId window);
    /// Has the window manager give it the keys, and waits until it has them.
    bool Activate(WindowId window);

    // The user's eyes.

    /// What is on the screen where the window is, other windows above it included; nothing when it reaches beyond the
    /// screen.
    Surface GrabWindow(WindowId window);

  private:
    std::vector<WindowId> ChildrenOf(WindowId parent);
    void Button(int button, bool down);

    xdo* xdo_;
};

/// Writes a PNG file; false when that fails.
bool WritePng(const std::string& path, const Surface& picture);

/// Starts this program again on a display of its own, unless it runs on one; for the first line of main().
void EnterVirtualDisplay(char** arguments);

} // namespace quarnel::xdriver
