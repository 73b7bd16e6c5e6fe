#include "app/BoardWindow.h"

#include "base/ProgramTitle.h"
#include "controls/DialogColour.h"
#include "display/BoardPictures.h"
#include "display/Toolbar.h"
#include "platform/PictureSurface.h"

namespace quarnel {

namespace {

constexpr Size DesignedInnerSize{361, 362};
constexpr Colour ToolbarColour = Rgb(192, 64, 0);
constexpr Size PanelSize{268, 258};
constexpr int PanelMargin = 8;
constexpr int PanelButtonWidth = 72;
constexpr int PanelButtonHeight = 24;

// All sizes in which a toolbar image was drawn, so that it is sharp at every zoom.
PictureRef ToolbarPicture(std::size_t button) {
    Picture picture;
    for (const int size : {12, 16, 20, 24, 28, 32, 36, 40, 64, 80}) {
        Surface surface = PictureSurface("poke" + std::to_string(button) + "_" + std::to_string(size));
        if (!surface.Empty()) picture.push_back(std::move(surface));
    }
    return std::make_shared<const Picture>(std::move(picture));
}

} // namespace

BoardWindow::BoardWindow(Desktop& desktop) : desktop_(desktop) {
    Window.Caption = Text(ProgramTitle) + u" v" QUARNEL_VERSION;
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
    PlaceToolbar(Picture2, 1);
    for (std::size_t i = 0; i < Moves.poke.size(); ++i) {
        Picture2.Add(Moves.poke[i]);
        Moves.poke[i].Image = ToolbarPicture(i);
    }
    PlaceButtons(Moves.poke, 1);

    Window.Add(Picture1);
    Picture1.BackColor = DialogColour;
    Picture1.BorderColor = FrameColour;
    // In the middle at 100 %, for a start that applies no zoom.
    Picture1.Place(45, 52, PanelSize.Width, PanelSize.Height);
    Picture1.Add(Label1);
    Label1.Font = FontChoice{u"Tahoma", 8.25, false};
    Label1.WordWrap = true;
    const int buttonTop = PanelSize.Height - PanelMargin - PanelButtonHeight;
    Label1.Place(PanelMargin, PanelMargin, PanelSize.Width - 2 * PanelMargin, buttonTop - 2 * PanelMargin);
    Control& button = ctrl_SkinableButton1.Box();
    Picture1.Add(button);
    button.Place((PanelSize.Width - PanelButtonWidth) / 2.0, buttonTop, PanelButtonWidth, PanelButtonHeight);
}

void BoardWindow::Attach() {
    desktop_.Attach(Window);
    const Size inner = desktop_.InnerSize(Window);
    const Size outer = desktop_.OuterSize(Window);
    Window.OuterWidth = (DesignedInnerSize.Width + outer.Width - inner.Width) * TwipsPerPixel;
    Window.OuterHeight = (DesignedInnerSize.Height + outer.Height - inner.Height) * TwipsPerPixel;
}

} // namespace quarnel
