#include "window/WindowDriver.h"

#include <X11/Xutil.h>
#include <png.h>
extern "C" {
#include <xdo.h>
}

#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <unistd.h>

namespace quarnel::xdriver {

namespace {

using Duration = std::chrono::steady_clock::duration;
constexpr Duration Patience = std::chrono::seconds(60);          // enough for the slowest machine
constexpr Duration LongestLook = std::chrono::milliseconds(100); // longer ones are a machine that stood still
constexpr useconds_t KeyDelay = 1000;                            // microseconds

// A window may go away between two requests. The request then fails and its caller sees nothing there.
int PassOver(Display* /*display*/, XErrorEvent* /*error*/) {
    return 0;
}

} // namespace

WindowDriver::WindowDriver() : xdo_(xdo_new(nullptr)) {
    if (xdo_ == nullptr) throw std::runtime_error("There is no display.");
    XSetErrorHandler(PassOver);
}

WindowDriver::~WindowDriver() {
    xdo_free(xdo_);
}

bool WindowDriver::WaitUntil(const std::function<bool()>& state) {
    Duration waited{};
    for (auto looked = std::chrono::steady_clock::now(); !state();) {
        const auto now = std::chrono::steady_clock::now();
        waited += std::min(now - looked, LongestLook);
        looked = now;
        if (waited > Patience) return false;
        if (BetweenLooks) {
            BetweenLooks();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    return true;
}

// Windows.

std::vector<WindowId> WindowDriver::ChildrenOf(WindowId parent) {
    Window root = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(xdo_->xdpy, parent, &root, &root, &children, &count) == 0) return {};
    const std::unique_ptr<Window, decltype(&XFree)> freed(children, XFree);
    return {children, children + count};
}

WindowId WindowDriver::FindWindow(const std::string& title) {
    for (const WindowId frame : ChildrenOf(DefaultRootWindow(xdo_->xdpy))) {
        for (const WindowId window : ChildrenOf(frame)) {
            XTextProperty name{};
            XGetTextProperty(xdo_->xdpy, window, &name, XInternAtom(xdo_->xdpy, "_NET_WM_NAME", 0));
            const std::string text(reinterpret_cast<char*>(name.value), name.nitems);
            XFree(name.value);
            if (text == title && Area(window)) return window;
        }
    }
    return 0;
}

WindowId WindowDriver::WaitForWindow(const std::string& title) {
    WindowId window = 0;
    WaitUntil([&] { return (window = FindWindow(title)) != 0; });
    return window;
}

std::vector<WindowId> WindowDriver::Popups() {
    std::vector<WindowId> popups;
    for (const WindowId window : ChildrenOf(DefaultRootWindow(xdo_->xdpy))) {
        XWindowAttributes looks;
        if (!Area(window) || XGetWindowAttributes(xdo_->xdpy, window, &looks) == 0) continue;
        const bool onScreen = looks.c_class == InputOutput && looks.x + looks.width > 0; // the manager hides its own
        if (onScreen && looks.override_redirect != 0 && ChildrenOf(window).empty()) popups.push_back(window);
    }
    return popups;
}

std::optional<Rectangle> WindowDriver::Area(WindowId window) {
    XWindowAttributes size;
    if (window == 0 || XGetWindowAttributes(xdo_->xdpy, window, &size) == 0) return std::nullopt;
    if (size.map_state != IsViewable) return std::nullopt;
    int x = 0;
    int y = 0;
    Window child = 0;
    if (XTranslateCoordinates(xdo_->xdpy, window, size.root, 0, 0, &x, &y, &child) == 0) return std::nullopt;
    return Rectangle{x, y, x + size.width, y + size.height};
}

// Hands.

void WindowDriver::MoveTo(WindowId window, int x, int y) {
    if (const auto area = Area(window)) MoveOnScreen(area->Left + x, area->Top + y);
}

void WindowDriver::MoveOnScreen(int x, int y) {
    xdo_move_mouse(xdo_, x, y, 0);
    XSync(xdo_->xdpy, 0);
}

void WindowDriver::Button(int button, bool down) {
    (down ? xdo_mouse_down : xdo_mouse_up)(xdo_, CURRENTWINDOW, button);
    XSync(xdo_->xdpy, 0);
}

void WindowDriver::Click(WindowId window, int x, int y, int button) {
    MoveTo(window, x, y);
    Press(button);
    Release(button);
}

void WindowDriver::Chord(const std::string& keys) {
    xdo_send_keysequence_window(xdo_, CURRENTWINDOW, keys.c_str(), KeyDelay);
}

void WindowDriver::Type(const std::string& text) {
    xdo_enter_text_window(xdo_, CURRENTWINDOW, text.c_str(), KeyDelay);
}

void WindowDriver::AskToClose(WindowId window) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(xdo_->xdpy, "_NET_CLOSE_WINDOW", 0);
    event.xclient.format = 32;
    XSendEvent(xdo_->xdpy, DefaultRootWindow(xdo_->xdpy), 0, SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XSync(xdo_->xdpy, 0);
}

bool WindowDriver::Activate(WindowId window) {
    xdo_activate_window(xdo_, window);
    return WaitUntil([&] {
        Window focus = 0;
        return xdo_get_focused_window(xdo_, &focus) == XDO_SUCCESS && focus == window;
    });
}

// Eyes.

Surface WindowDriver::GrabWindow(WindowId window) {
    const Rectangle area = Area(window).value_or(Rectangle());
    Surface picture(area.Right - area.Left, area.Bottom - area.Top);
    if (picture.Empty()) return picture;
    XImage* image =
        XGetImage(xdo_->xdpy, DefaultRootWindow(xdo_->xdpy), area.Left, area.Top,
                  static_cast<unsigned>(picture.Width()), static_cast<unsigned>(picture.Height()), AllPlanes, ZPixmap);
    if (image == nullptr) return {};
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            picture.Set(x, y, 0xFF000000U | static_cast<Colour>(XGetPixel(image, x, y)));
        }
    }
    XDestroyImage(image);
    return picture;
}

bool WritePng(const std::string& path, const Surface& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.Width());
    image.height = static_cast<png_uint_32>(picture.Height());
    image.format = PNG_FORMAT_BGRA; // as a colour's bytes lie in memory
    return png_image_write_to_file(&image, path.c_str(), 0, picture.Pixels(), 0, nullptr) != 0;
}

void EnterVirtualDisplay(char** arguments) {
    if (std::getenv("QUARNEL_VIRTUAL_DISPLAY") != nullptr) return;
    std::vector<char*> command{const_cast<char*>(QUARNEL_ON_VIRTUAL_DISPLAY)};
    do command.push_back(*arguments);
    while (*arguments++ != nullptr);
    execv(command[0], command.data());
    throw std::system_error(errno, std::generic_category(), command[0]);
}

} // namespace quarnel::xdriver
