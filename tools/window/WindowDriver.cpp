#include "window/WindowDriver.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/shape.h>
#include <X11/keysym.h>
#include <png.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <thread>

namespace quarnel::xdriver {

namespace {

// A window may go away between two requests. The request then fails and its caller sees nothing there.
int PassOver(Display* /*display*/, XErrorEvent* /*error*/) {
    return 0;
}

struct FreeLater {
    void operator()(void* memory) const { XFree(memory); }
};
template <class T>
using Freed = std::unique_ptr<T, FreeLater>;

struct Kin {
    Window Parent = 0;
    std::vector<Window> Children; ///< lowest first
};

Kin KinOf(Display* display, Window window) {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &parent, &children, &count) == 0) return {};
    const Freed<Window> freed(children);
    return {parent, {children, children + count}};
}

} // namespace

WindowDriver::WindowDriver(const std::string& name) {
    XSetErrorHandler(PassOver);
    display_ = XOpenDisplay(name.c_str());
    if (display_ == nullptr) throw std::runtime_error("The display " + name + " cannot be opened.");
    root_ = DefaultRootWindow(display_);
}

WindowDriver::~WindowDriver() {
    XCloseDisplay(display_);
}

bool WindowDriver::WaitUntil(const std::function<bool()>& state) {
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(PatienceSeconds);
    while (!state()) {
        if (std::chrono::steady_clock::now() > giveUp) return false;
        if (BetweenLooks) {
            BetweenLooks();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    return true;
}

// Properties and messages.

template <class T>
std::vector<T> WindowDriver::Property(WindowId window, const char* property) {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    const Atom atom = XInternAtom(display_, property, False);
    const int result = XGetWindowProperty(display_, window, atom, 0, 4096, False, AnyPropertyType, &type, &format,
                                          &count, &left, &data);
    const Freed<unsigned char> freed(data);
    const int wanted = sizeof(T) == 1 ? 8 : 32; // what is 32 bits wide comes as longs
    if (result != Success || format != wanted) return {};
    const auto* values = reinterpret_cast<const T*>(data);
    return {values, values + count};
}

std::vector<WindowId> WindowDriver::ManagedWindows() {
    return Property<WindowId>(root_, "_NET_CLIENT_LIST");
}

void WindowDriver::SendToRoot(WindowId window, const char* message, long first, long second) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display_, message, False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    event.xclient.data.l[1] = second;
    XSendEvent(display_, root_, False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XSync(display_, False);
}

// A window manager that is still starting announces itself early and loses what is shown to it then. So windows are
// shown to it until it takes one.
bool WindowDriver::WaitForWindowManager() {
    constexpr int LooksForEach = 50;
    Window sample = 0;
    int looks = 0;
    const bool managed = WaitUntil([&] {
        if (looks++ % LooksForEach == 0) {
            if (sample != 0) XDestroyWindow(display_, sample);
            sample = XCreateSimpleWindow(display_, root_, 0, 0, 10, 10, 0, 0, 0);
            XMapWindow(display_, sample);
            XSync(display_, False);
        }
        return Manages(sample);
    });
    XDestroyWindow(display_, sample);
    return managed && WaitUntil([&] { return !Manages(sample); });
}

bool WindowDriver::Manages(WindowId window) {
    const auto managed = ManagedWindows();
    return std::find(managed.begin(), managed.end(), window) != managed.end();
}

// Windows.

WindowId WindowDriver::FindWindow(const std::string& title) {
    for (const WindowId window : ManagedWindows()) {
        XWindowAttributes attributes;
        const auto name = Property<char>(window, "_NET_WM_NAME");
        if (std::string(name.begin(), name.end()) != title) continue;
        if (XGetWindowAttributes(display_, window, &attributes) != 0 && attributes.map_state == IsViewable) {
            return window;
        }
    }
    return 0;
}

WindowId WindowDriver::WaitForWindow(const std::string& title) {
    WindowId window = 0;
    WaitUntil([&] { return (window = FindWindow(title)) != 0; });
    return window;
}

std::vector<WindowId> WindowDriver::UnmanagedWindows() {
    std::vector<WindowId> windows;
    for (const Window window : KinOf(display_, root_).Children) {
        XWindowAttributes attributes;
        if (XGetWindowAttributes(display_, window, &attributes) == 0) continue;
        // Window managers keep windows of their own beyond the screen's edge.
        const bool seen = attributes.map_state == IsViewable && attributes.c_class == InputOutput &&
                          attributes.x + attributes.width > 0 && attributes.y + attributes.height > 0;
        if (seen && attributes.override_redirect != 0 && KinOf(display_, window).Children.empty()) {
            windows.push_back(window);
        }
    }
    return windows;
}

bool WindowDriver::HasKeys(WindowId window) {
    Window focus = 0;
    int revert = 0;
    XGetInputFocus(display_, &focus, &revert);
    while (focus > PointerRoot && focus != window) focus = KinOf(display_, focus).Parent;
    return focus == window;
}

std::optional<Rectangle> WindowDriver::Area(WindowId window) {
    XWindowAttributes attributes;
    if (window == 0 || XGetWindowAttributes(display_, window, &attributes) == 0) return std::nullopt;
    int x = 0;
    int y = 0;
    Window child = 0;
    if (XTranslateCoordinates(display_, window, root_, 0, 0, &x, &y, &child) == 0) return std::nullopt;
    return Rectangle{x, y, x + attributes.width, y + attributes.height};
}

std::vector<Rectangle> WindowDriver::Outline(WindowId window) {
    int count = 0;
    int ordering = 0;
    const Freed<XRectangle> rectangles(XShapeGetRectangles(display_, window, ShapeBounding, &count, &ordering));
    std::vector<Rectangle> outline;
    for (int i = 0; i < count; ++i) {
        const XRectangle& r = rectangles.get()[i];
        outline.push_back({r.x, r.y, r.x + r.width, r.y + r.height});
    }
    return outline;
}

// Hands.

void WindowDriver::MoveTo(WindowId window, int x, int y) {
    const auto area = Area(window != 0 ? window : root_);
    if (!area) return;
    XTestFakeMotionEvent(display_, -1, area->Left + x, area->Top + y, 0);
    XSync(display_, False);
}

void WindowDriver::Button(int button, bool down) {
    XTestFakeButtonEvent(display_, static_cast<unsigned>(button), down ? True : False, 0);
    XSync(display_, False);
}

void WindowDriver::Click(WindowId window, int x, int y, int button) {
    MoveTo(window, x, y);
    Press(button);
    Release(button);
}

void WindowDriver::Drag(WindowId window, int fromX, int fromY, int toX, int toY) {
    constexpr int Places = 8;
    MoveTo(window, fromX, fromY);
    Press();
    for (int i = 1; i <= Places; ++i) {
        MoveTo(window, fromX + (toX - fromX) * i / Places, fromY + (toY - fromY) * i / Places);
    }
    Release();
}

void WindowDriver::Chord(const std::string& keys) {
    std::vector<unsigned> codes;
    for (std::size_t at = 0; at <= keys.size();) {
        const std::size_t end = std::min(keys.find('+', at), keys.size());
        const std::string name = keys.substr(at, end - at);
        at = end + 1;
        const KeySym symbol = name == "Ctrl" ? XK_Control_L : XStringToKeysym(name.c_str());
        codes.push_back(XKeysymToKeycode(display_, symbol));
    }
    for (const unsigned code : codes) XTestFakeKeyEvent(display_, code, True, 0);
    for (auto code = codes.rbegin(); code != codes.rend(); ++code) XTestFakeKeyEvent(display_, *code, False, 0);
    XSync(display_, False);
}

void WindowDriver::Type(const std::string& text) {
    for (const char key : text) Chord(key == '.' ? "period" : key == '-' ? "minus" : std::string(1, key));
}

// The window manager.

void WindowDriver::AskToClose(WindowId window) {
    SendToRoot(window, "_NET_CLOSE_WINDOW", CurrentTime, 2);
}

void WindowDriver::Activate(WindowId window) {
    SendToRoot(window, "_NET_ACTIVE_WINDOW", 2, CurrentTime);
}

// Eyes.

Surface WindowDriver::Grab(const Rectangle& area) {
    Surface picture(area.Right - area.Left, area.Bottom - area.Top);
    const int left = std::max(area.Left, 0);
    const int top = std::max(area.Top, 0);
    const int right = std::min(area.Right, DisplayWidth(display_, DefaultScreen(display_)));
    const int bottom = std::min(area.Bottom, DisplayHeight(display_, DefaultScreen(display_)));
    if (right <= left || bottom <= top) return picture;
    XImage* image = XGetImage(display_, root_, left, top, static_cast<unsigned>(right - left),
                              static_cast<unsigned>(bottom - top), AllPlanes, ZPixmap);
    if (image == nullptr) return picture;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const auto pixel = static_cast<Colour>(XGetPixel(image, x - left, y - top));
            picture.Set(x - area.Left, y - area.Top, 0xFF000000U | pixel);
        }
    }
    XDestroyImage(image);
    return picture;
}

Surface WindowDriver::GrabWindow(WindowId window) {
    const auto area = Area(window);
    return area ? Grab(*area) : Surface();
}

bool WritePng(const std::string& path, const Surface& picture) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.Width());
    image.height = static_cast<png_uint_32>(picture.Height());
    image.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes;
    const std::size_t count = static_cast<std::size_t>(picture.Width()) * picture.Height();
    for (std::size_t i = 0; i < count; ++i) {
        for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<png_byte>(picture.Pixels()[i] >> shift));
    }
    return png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}

} // namespace quarnel::xdriver
