// A user at a display: finds windows, moves the pointer, presses buttons and keys, looks at pixels.
//
// Everything is a real X event, sent as if by the devices themselves, so it takes the same road as a person's. Nothing
// here waits by the clock: WaitUntil() looks at a state until it holds and gives up only after a minute, which is a
// failure and not a verdict. Positions are pixels from a window's top-left corner, the window manager's frame left out;
// a menu bar is part of the window.
#pragma once

#include "platform/Form.h"
#include "platform/Surface.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct _XDisplay;

namespace quarnel::xdriver {

/// A window of the display; 0 is none.
using WindowId = unsigned long;

class WindowDriver {
  public:
    /// Connects to the display `name`; throws std::runtime_error when there is none.
    explicit WindowDriver(const std::string& name);
    ~WindowDriver();
    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;

    /// Runs between two looks of WaitUntil(); a test that shares its thread with the windows processes their events
    /// here. Unset, the thread sleeps a moment instead.
    std::function<void()> BetweenLooks;
    /// When WaitUntil() gives up; long enough for the slowest machine.
    int PatienceSeconds = 60;
    /// Whether `state` came to hold.
    bool WaitUntil(const std::function<bool()>& state);

    /// Waits until the display's window manager takes windows into its care.
    bool WaitForWindowManager();
    /// The managed window of that title on the screen, 0 while there is none.
    WindowId FindWindow(const std::string& title);
    /// Waits for it; 0 when it never came.
    WindowId WaitForWindow(const std::string& title);
    /// The windows on the screen that the window manager does not manage, such as open menus, lowest first.
    std::vector<WindowId> UnmanagedWindows();
    /// Whether keys that are struck now go to the window.
    bool HasKeys(WindowId window);

    /// Where the window's pixels lie on the screen; nothing when it has gone.
    std::optional<Rectangle> Area(WindowId window);
    /// The window's outline: the rectangles it is cut to, or one for a whole window.
    std::vector<Rectangle> Outline(WindowId window);

    // The user's hands. Each is on its way when the call returns.

    /// Moves the pointer to (x, y) of the window, which may lie outside of it; of the screen for window 0.
    void MoveTo(WindowId window, int x, int y);
    void Press(int button = 1) { Button(button, true); }
    void Release(int button = 1) { Button(button, false); }
    /// MoveTo, Press, Release.
    void Click(WindowId window, int x, int y, int button = 1);
    /// Presses at one place and releases at the other, passing a few places between.
    void Drag(WindowId window, int fromX, int fromY, int toX, int toY);
    /// A key with others held, such as "Ctrl+B" or "Escape".
    void Chord(const std::string& keys);
    /// Small letters, digits, dots and dashes.
    void Type(const std::string& text);

    // The window manager's.

    /// As the close button in the window's frame does.
    void AskToClose(WindowId window);
    /// Brings it above the others and gives it the keys.
    void Activate(WindowId window);

    // The user's eyes.

    /// The pixels on the screen; what lies beyond its edges is black.
    Surface Grab(const Rectangle& area);
    /// What is on the screen where the window is, other windows above it included.
    Surface GrabWindow(WindowId window);

  private:
    bool Manages(WindowId window);
    std::vector<WindowId> ManagedWindows();
    template <class T>
    std::vector<T> Property(WindowId window, const char* property);
    void SendToRoot(WindowId window, const char* message, long first, long second);
    void Button(int button, bool down);

    _XDisplay* display_;
    WindowId root_;
};

/// Writes a PNG file, its folder included; false when that fails.
bool WritePng(const std::string& path, const Surface& picture);

} // namespace quarnel::xdriver
