// Forms as plain data: windows, controls and menus that a back end shows and a test can click.
//
// Start at Form. Lengths inside a form are pixels at 96 dots an inch and may be fractional; the back
// end rounds them once. A form's own outer size is in twips. Changing a property tells the
// form's observer (the back end) at once; reading one never asks the screen, so visibility, enabling
// and check marks are the program's own whether a window is shown or not. Program thread only.
// Controls and menu items are neither copied nor moved: their address is their identity.
#pragma once

#include "base/Text.h"
#include "platform/Surface.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quarnel {

class Form;
class Control;
class MenuItem;

/// What a back end hears about a form it shows.
class FormObserver {
  public:
    virtual ~FormObserver() = default;
    virtual void ControlChanged(Control& control) = 0;
    virtual void MenuChanged(MenuItem& item) = 0;
    virtual void Announced(Form& form) = 0;
};

/// A thing with properties.
class Element {
  public:
    Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    virtual ~Element() = default;

    /// Called by the properties below after each change of value.
    virtual void Changed() = 0;
};

/// A value that tells its element when it changes.
template <class T>
class Property {
  public:
    explicit Property(Element& owner, T initial = T()) : owner_(owner), value_(std::move(initial)) {}
    Property(const Property&) = delete;

    // NOLINTNEXTLINE(google-explicit-constructor): a property reads like the value it holds.
    operator const T&() const { return value_; }
    const T& Get() const { return value_; }

    Property& operator=(T value) {
        if (!(value_ == value)) {
            value_ = std::move(value);
            owner_.Changed();
        }
        return *this;
    }
    Property& operator=(const Property& other) { return *this = other.value_; }

  private:
    Element& owner_;
    T value_;
};

/// A font by its established name (Arial, Tahoma, Verdana); the back end maps it to one at hand.
struct FontChoice {
    Text Name = u"Tahoma";
    double Points = 8.25; ///< at 96 dots an inch
    bool Bold = false;
    bool operator==(const FontChoice&) const = default;
};

enum class Alignment { Left, Right, Centre };

struct Size {
    int Width = 0;
    int Height = 0;
    bool operator==(const Size&) const = default;
};

/// Forms are measured in twips from outside.
inline constexpr int TwipsPerPixel = 15;

enum class PointerButton { None = 0, Left = 1, Right = 2, Middle = 4 };

/// A pointer event inside a control, in pixels from its top-left corner; may lie outside of it while a
/// button that was pressed inside is held.
struct PointerEvent {
    PointerButton Button = PointerButton::None; ///< the button concerned; for moves the one held, if any
    int Shift = 0;                              ///< 1 shift, 2 control, 4 alt, added up
    float X = 0;
    float Y = 0;
};

/// One drawing at several sizes, smallest first; the back end takes the one that needs least stretching.
using Picture = std::vector<Surface>;
using PictureRef = std::shared_ptr<const Picture>;

/// A picture of one size.
PictureRef MakePicture(Surface surface);

enum class ControlKind {
    Form,    ///< the inner area of a window
    Picture, ///< a box with a background and a picture, and children
    Label,   ///< text without a background of its own
    Image,   ///< a picture and nothing else
};

class Control : public Element {
  public:
    /// `name` is the name in the form, kept for tests and for the accessibility tree.
    Control(ControlKind kind, std::string name);

    /// Adds `child` on top of those added before. It is not owned and must outlive this control's use.
    void Add(Control& child);

    void MoveTo(double left, double top);
    void Place(double left, double top, double width, double height);

    const ControlKind Kind;
    const std::string Name;

    Property<double> Left{*this}; ///< inside the parent, pixels; a form's own position on the screen
    Property<double> Top{*this};
    Property<double> Width{*this}; ///< of a form: read only, its inner area (see Form::OuterWidth)
    Property<double> Height{*this};
    Property<bool> Visible{*this, true};
    Property<bool> Enabled{*this, true}; ///< a disabled control takes no pointer input; its text is greyed
    Property<Text> Caption{*this};
    Property<Text> ToolTip{*this};
    Property<Text> Signals{*this}; ///< of a light: what it says while it is visible, for screen readers
    Property<FontChoice> Font{*this};
    Property<Alignment> TextAlignment{*this, Alignment::Left};
    Property<bool> WordWrap{*this, false};
    Property<Colour> BackColor{*this, Rgb(240, 240, 240)}; ///< of forms and picture boxes
    Property<std::optional<Colour>> BorderColor{*this};    ///< of a line inside a picture box's edges, a pixel wide
    Property<Colour> ForeColor{*this, ColourBlack};        ///< of text
    Property<PictureRef> Image{*this};
    Property<bool> Stretch{*this, false}; ///< the picture fills the control; otherwise its own size from the corner

    std::function<void(const PointerEvent&)> OnMouseDown;
    std::function<void(const PointerEvent&)> OnMouseMove; ///< with or without a button held
    std::function<void(const PointerEvent&)> OnMouseUp;   ///< also outside, after a press inside
    std::function<void()> OnClick;                        ///< after OnMouseUp of the left button inside

    const std::vector<Control*>& Children() const { return children_; }
    Control* Parent() const { return parent_; }

    /// Visible and so are all its parents, the form itself apart.
    bool IsShown() const;

    void Changed() override;

  private:
    Control* parent_ = nullptr;
    std::vector<Control*> children_;
};

class MenuItem : public Element {
  public:
    /// `name` is the name in the form, kept for tests and for the toolkit. The caption "-" makes a separator.
    /// `shortcut` is "" or like "Ctrl+B".
    MenuItem(std::string name, Text caption, Text shortcut = {});

    /// Adds `item` at the end of this item's submenu; not owned.
    void Add(MenuItem& item);

    const std::string Name;
    const Text Shortcut;
    Property<Text> Caption{*this};
    Property<bool> Checked{*this, false};
    Property<bool> Enabled{*this, true};
    Property<bool> Visible{*this, true};
    std::function<void()> OnClick;

    bool IsSeparator() const { return Caption.Get() == u"-"; }
    const std::vector<MenuItem*>& Items() const { return items_; }

    /// Enabled and visible, and so are the menus it stands in: a click or its shortcut reaches it.
    bool IsReachable() const;

    void Changed() override;

  private:
    friend class Form;
    Form* form_ = nullptr;
    MenuItem* parent_ = nullptr;
    std::vector<MenuItem*> items_;
};

/// Gives each of `items`, menu items or controls, the handler `click` with its index.
template <class Items, class Click>
void ConnectEach(Items& items, Click click) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i].OnClick = [click, i] { click(static_cast<int>(i)); };
    }
}

/// Something a screen reader can find in a form besides its controls and menus, such as a board square.
struct AccessibleItem {
    Text Name;
    double Left = 0; ///< pixels in the form's inner area
    double Top = 0;
    double Width = 0;
    double Height = 0;
    bool operator==(const AccessibleItem&) const = default;
};

enum class FormBorder {
    Framed, ///< title bar and border of the desktop, not resizable by hand; Caption is the title
    None,   ///< the form paints its own
};

class Form : public Control {
  public:
    Form(std::string name, FormBorder border);

    /// Adds a top-level menu; not owned. An item without a submenu acts when it is chosen in the bar.
    void AddMenu(MenuItem& menu);

    const FormBorder Border;
    Property<double> OuterWidth{*this};  ///< twips, frame and menu bar included
    Property<double> OuterHeight{*this}; ///< twips
    Property<bool> Loaded{*this, true};  ///< Unload() clears it; a modal show ends with it

    /// The desktop asks for the window to be closed. Runs at once, whatever is on the stack.
    std::function<void()> OnQueryUnload;

    /// What AccessibleItem lists, asked anew each time; empty when unset. Must not change anything.
    std::function<std::vector<AccessibleItem>()> OnDescribe;
    /// Lets a screen reader speak `text`, the same as the last time or not. Of texts that come before events are
    /// processed only the last is spoken.
    void Announce(Text text);
    /// What was last announced.
    const Text& Announcement() const { return announcement_; }

    /// Takes the window off the screen and ends a modal show of it.
    void Unload();

    const std::vector<MenuItem*>& Menus() const { return menus_; }

    /// Set by the desktop that shows the form; null when none does.
    FormObserver* Observer = nullptr;

    /// The form a control belongs to, null when it was never added to one.
    static Form* Of(Control& control);
    static Form* Of(MenuItem& item);

  private:
    std::vector<MenuItem*> menus_;
    Text announcement_;
};

} // namespace quarnel
