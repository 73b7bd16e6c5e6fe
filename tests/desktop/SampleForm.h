// A form with one of everything, and a message box, both noting what happens to them.
#pragma once

#include "platform/Desktop.h"

#include <string>
#include <utility>
#include <vector>

namespace quarnel {

inline constexpr int SampleWidth = 361;
inline constexpr int SampleHeight = 362;
inline constexpr int FrameSize = 366;

/// A frame in which no two neighbouring pixels are alike.
inline Surface SampleFrame(Colour seed) {
    Surface frame(FrameSize, FrameSize);
    for (int y = 0; y < FrameSize; ++y) {
        for (int x = 0; x < FrameSize; ++x)
            frame.Set(x, y, 0xFF000000U | ((x * 7919U + y * 104729U + seed) & 0xFFFFFFU));
    }
    return frame;
}

/// Log entries are "form down 10,20", "item Back", ...
class SampleForm {
  public:
    explicit SampleForm(Desktop& desktop) : desktop_(desktop) {
        Main.Caption = u"Sample";
        Strip.Left = 18.75;
        Strip.Top = 320;
        Strip.Width = 96;
        Strip.Height = 20.5;
        Strip.BackColor = Rgb(192, 64, 0);
        Main.Add(Strip);
        Button.Left = 10;
        Button.Top = 2;
        Button.Width = 16;
        Button.Height = 16;
        Button.ToolTip = u"Press me";
        Button.Stretch = true;
        Button.Image = MakePicture(Surface(16, 16, Rgb(0, 0, 255)));
        Strip.Add(Button);
        Caption.Left = 150;
        Caption.Top = 320;
        Caption.Width = 120;
        Caption.Height = 18;
        Caption.Caption = u"Move: e4";
        Caption.ForeColor = ColourWhite;
        Main.Add(Caption);
        Follow(Main);
        Follow(Button);

        Main.AddMenu(Moves);
        for (MenuItem* item : {&Back, &Line, &Stop, &Options}) Moves.Add(*item);
        Options.Add(Deep);
        Main.AddMenu(Help);
        for (MenuItem* item : {&Back, &Stop, &Deep, &Help}) {
            item->OnClick = [this, item] { Log.push_back("item " + ToUtf8(item->Caption.Get())); };
        }
        Stop.Enabled = false;
        Main.OnQueryUnload = [this] { Log.emplace_back("close"); };

        desktop_.Attach(Main);
        Resize(1);
        desktop_.Attach(Box);
        Box.Caption = u"Box";
        Box.OuterWidth = 200 * 15;
        Box.OuterHeight = 100 * 15;
        Box.BackColor = Rgb(206, 206, 206);
        Follow(Box);
    }
    ~SampleForm() {
        desktop_.Detach(Box);
        desktop_.Detach(Main);
        desktop_.ProcessEvents();
    }
    SampleForm(const SampleForm&) = delete;
    SampleForm& operator=(const SampleForm&) = delete;

    /// Lets the inner area become `zoom` times its designed size.
    void Resize(double zoom) {
        const Size inner = desktop_.InnerSize(Main);
        const Size outer = desktop_.OuterSize(Main);
        Main.OuterWidth = (zoom * SampleWidth + outer.Width - inner.Width) * 15;
        Main.OuterHeight = (zoom * SampleHeight + outer.Height - inner.Height) * 15;
    }
    void Present(const Surface& frame) { desktop_.Present(Main, frame, FrameSize, FrameSize, FrameSize, FrameSize); }
    std::vector<std::string> TakeLog() { return std::exchange(Log, {}); }

    Form Main{"form", FormBorder::Framed};
    Control Strip{ControlKind::Picture, "strip"};
    Control Button{ControlKind::Image, "button"};
    Control Caption{ControlKind::Label, "caption"};
    MenuItem Moves{u"Moves"};
    MenuItem Back{u"Back", u"Ctrl+B"};
    MenuItem Line{u"-"};
    MenuItem Stop{u"Stop", u"Ctrl+H"};
    MenuItem Options{u"Options"};
    MenuItem Deep{u"Deep"};
    MenuItem Help{u"Help"};
    Form Box{"box", FormBorder::None};
    std::vector<std::string> Log;
    bool NoteMoves = true;

  private:
    void Follow(Control& control) {
        const auto note = [this, &control](const std::string& what) {
            return [this, &control, what](const PointerEvent& event) {
                if (what == "move" && !NoteMoves) return;
                std::string entry = control.Name + " " + what + " " + std::to_string(static_cast<int>(event.X)) + "," +
                                    std::to_string(static_cast<int>(event.Y));
                if (event.Button != PointerButton::None) entry += " b" + std::to_string(static_cast<int>(event.Button));
                Log.push_back(std::move(entry));
            };
        };
        control.OnMouseDown = note("down");
        control.OnMouseMove = note("move");
        control.OnMouseUp = note("up");
        control.OnClick = [this, &control] { Log.push_back(control.Name + " click"); };
    }

    Desktop& desktop_;
};

} // namespace quarnel
