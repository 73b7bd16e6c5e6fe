#include "app/BoardWindow.h"

#include "Pictures.h"

#include <algorithm>
#include <vector>

namespace quarnel {

namespace {

constexpr double TwipsPerPixel = 15;
constexpr Size DesignedInnerSize{361, 362};
constexpr Colour FrameColour = Rgb(89, 0, 0);
constexpr Colour ToolbarColour = Rgb(192, 64, 0);
constexpr Colour PanelColour = Rgb(206, 206, 206);
constexpr Size PanelSize{268, 258};
constexpr int PanelMargin = 8;
constexpr int PanelButtonWidth = 72;
constexpr int PanelButtonHeight = 24;

// All sizes in which a toolbar image was drawn, so that it is sharp at every zoom.
PictureRef ToolbarPicture(std::size_t button) {
    Picture picture;
    for (const int size : {12, 16, 20, 24, 28, 32, 36, 40, 64, 80}) {
        const auto* embedded = FindPicture("poke" + std::to_string(button) + "_" + std::to_string(size));
        if (embedded == nullptr) continue;
        Surface surface(embedded->width, embedded->height);
        std::copy_n(embedded->pixels, surface.Width() * surface.Height(), surface.Pixels());
        picture.push_back(std::move(surface));
    }
    return std::make_shared<const Picture>(std::move(picture));
}

void Place(Control& control, double left, double top, double width, double height) {
    control.Left = left;
    control.Top = top;
    control.Width = width;
    control.Height = height;
}

} // namespace

BoardWindow::BoardWindow(Desktop& desktop) : desktop_(desktop) {
    Window.Caption = u"Quarnel Chess v3.26";
    Window.BackColor = FrameColour;
    for (MenuItem& item : SubFileMenu) FileMenu.Add(item);
    for (MenuItem& item : pprom) PromotionSubmenu.Add(item);
    pprom.back().Checked = true;
    AddControls();
}

BoardWindow::~BoardWindow() {
    desktop_.Detach(Window);
}

void BoardWindow::AddControls() {
    Status.AddTo(Window);

    Window.Add(Picture2);
    Picture2.BackColor = ToolbarColour;
    Place(Picture2, 25, 347, 128, 16);
    static constexpr std::array<int, 6> ButtonLeft{0, 16, 40, 56, 96, 112};
    for (std::size_t i = 0; i < Moves.poke.size(); ++i) {
        Picture2.Add(Moves.poke[i]);
        Moves.poke[i].Image = ToolbarPicture(i);
        Place(Moves.poke[i], ButtonLeft[i], -1, 16, 16);
    }

    Window.Add(Picture1);
    Picture1.BackColor = PanelColour;
    // In the middle at 100 %, for a start that applies no zoom.
    Place(Picture1, 45, 52, PanelSize.Width, PanelSize.Height);
    Picture1.Add(Label1);
    Label1.Font = FontChoice{u"Tahoma", 8.25, false};
    Label1.WordWrap = true;
    const int buttonTop = PanelSize.Height - PanelMargin - PanelButtonHeight;
    Place(Label1, PanelMargin, PanelMargin, PanelSize.Width - 2 * PanelMargin, buttonTop - 2 * PanelMargin);
    Control& button = ctrl_SkinableButton1.Box();
    Picture1.Add(button);
    Place(button, (PanelSize.Width - PanelButtonWidth) / 2.0, buttonTop, PanelButtonWidth, PanelButtonHeight);
}

void BoardWindow::Attach() {
    desktop_.Attach(Window);
    const Size inner = desktop_.InnerSize(Window);
    const Size outer = desktop_.OuterSize(Window);
    Window.OuterWidth = (DesignedInnerSize.Width + outer.Width - inner.Width) * TwipsPerPixel;
    Window.OuterHeight = (DesignedInnerSize.Height + outer.Height - inner.Height) * TwipsPerPixel;
}

} // namespace quarnel
