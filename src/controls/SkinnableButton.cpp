#include "controls/SkinnableButton.h"

#include "base/Numbers.h"
#include "controls/DialogColour.h"
#include "platform/PictureSurface.h"

#include <cmath>
#include <cstdlib>

namespace quarnel {

namespace {

constexpr int FaceHeight = 24;
constexpr int CapWidth = 15;
constexpr int TileWidth = 15;
constexpr int RightCapWidth = 16;

} // namespace

// Where the slices of a look lie in the skin, and the caption's top, pixels.
struct ctrl_SkinableButton::Look {
    int Left, Middle, Right, CaptionTop;

    static const Look Normal;
    static const Look Pressed;
};

const ctrl_SkinableButton::Look ctrl_SkinableButton::Look::Normal{0, 15, 55, 4};
const ctrl_SkinableButton::Look ctrl_SkinableButton::Look::Pressed{72, 83, 128, 5};

void ctrl_SkinableButton::ResizeBox::Changed() {
    Control::Changed();
    if (Width == knownWidth_ && Height == knownHeight_) return;
    knownWidth_ = Width;
    knownHeight_ = Height;
    if (OnResize) OnResize();
}

ctrl_SkinableButton::ctrl_SkinableButton(std::string name, Text caption, bool enabled)
    : pic_Buttons_(PictureSurface("pic_Buttons")), box_(ControlKind::Picture, std::move(name)),
      caption_(std::move(caption)) {
    lbl_Caption.Font = FontChoice{u"Tahoma", 8.25, false};
    lbl_Caption.TextAlignment = Alignment::Centre;
    lbl_Caption.Height = 15;
    lbl_Caption.Caption = caption_;
    box_.BackColor = DialogColour;
    pic_Button.BackColor = DialogColour;
    box_.Add(pic_Button);
    box_.Add(lbl_Caption);
    for (Control* part : {&pic_Button, &lbl_Caption}) {
        part->OnMouseDown = [this](const PointerEvent& event) { MouseDown(event); };
        part->OnMouseUp = [this](const PointerEvent& event) { MouseUp(event); };
    }
    box_.OnResize = [this] { Refresh(); };
    Enabled(enabled);
}

void ctrl_SkinableButton::LoadSkin() {
    Refresh();
}

void ctrl_SkinableButton::Refresh() {
    DrawFace(Look::Normal);
}

void ctrl_SkinableButton::DrawFace(const Look& look) {
    const double width = box_.Width;
    pic_Button.Width = width;
    pic_Button.Height = FaceHeight;
    Surface face(RoundHalfEven(width), FaceHeight, pic_Button.BackColor);
    const auto copy = [this, &face](int x, int sliceWidth, int sliceLeft) {
        BitBlt(face, x, 0, sliceWidth, FaceHeight, pic_Buttons_, sliceLeft, 0, RasterOp::SrcCopy);
    };
    copy(0, CapWidth, look.Left);
    const int tiles = RoundHalfEven(std::abs(width / TileWidth));
    for (int i = 1; i <= tiles; ++i) copy(TileWidth * i, TileWidth, look.Middle);
    // Last, so that it covers what the tiles reach too far.
    copy(RoundHalfEven(width - RightCapWidth), RightCapWidth, look.Right);
    pic_Button.Image = MakePicture(std::move(face));
    lbl_Caption.Width = width;
    lbl_Caption.Top = look.CaptionTop;
}

void ctrl_SkinableButton::MouseDown(const PointerEvent& event) {
    if (event.Button == PointerButton::Left) DrawFace(Look::Pressed);
}

void ctrl_SkinableButton::MouseUp(const PointerEvent& event) {
    if (event.Button != PointerButton::Left) return;
    if (Click) Click();
    Refresh();
}

void ctrl_SkinableButton::Enabled(bool enabled) {
    enabled_ = enabled;
    if (enabled) Refresh();
    lbl_Caption.Enabled = enabled;
    pic_Button.Enabled = enabled;
}

Text ctrl_SkinableButton::Caption() {
    lbl_Caption.Caption = caption_;
    return caption_;
}

void ctrl_SkinableButton::Caption(const Text& caption) {
    caption_ = caption;
    lbl_Caption.Caption = caption_;
}

} // namespace quarnel
