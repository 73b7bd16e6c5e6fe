#include "display/ZoomMenu.h"

#include "base/Numbers.h"
#include "base/Step.h"
#include "display/Toolbar.h"
#include "platform/SavedSettings.h"

#include <cmath>

namespace quarnel {

namespace {

constexpr int LargestFont = 32767;

// Leaves the size as it is when there is no such font.
void SetFontSize(Control& label, int points) {
    if (points < 1 || points > LargestFont) return;
    FontChoice font = label.Font;
    font.Points = points;
    label.Font = font;
}

} // namespace

ZoomMenu::ZoomMenu(GameState& state, BoardRenderer& renderer, StatusStrip& status, ZoomedControls controls,
                   Form& frmBoard, Desktop& desktop)
    : vw{{{"vw(0)", u"75 %"},
          {"vw(1)", u"100 %"},
          {"vw(2)", u"125 %"},
          {"vw(3)", u"150 %"},
          {"vw(4)", u"175 %"},
          {"vw(5)", u"200 %"},
          {"vw(6)", u"225 %"},
          {"vw(7)", u"250 %"}}},
      state_(state), renderer_(renderer), status_(status), controls_(controls), frmBoard_(frmBoard), desktop_(desktop) {
    ConnectEach(vw, [this](int index) { vw_Click(static_cast<std::int16_t>(index)); });
}

void ZoomMenu::MeasureWindow() {
    const Size inner = desktop_.InnerSize(frmBoard_);
    const Size outer = desktop_.OuterSize(frmBoard_);
    clientWidth_ = static_cast<float>(inner.Width) * TwipsPerPixel;
    clientHeight_ = static_cast<float>(inner.Height) * TwipsPerPixel;
    borderWidth_ = static_cast<float>(outer.Width) * TwipsPerPixel - clientWidth_;
    borderHeight_ = static_cast<float>(outer.Height) * TwipsPerPixel - clientHeight_;
}

void ZoomMenu::vw_Click(std::int16_t index) {
    for (MenuItem& item : vw) item.Checked = false;
    for (Control& button : controls_.poke) button.Stretch = true;
    Step(ElementAt(vw, index), [](MenuItem& item) { item.Checked = true; });
    SaveSetting(desktop_, u"Wsize", ToText(index));
    if (index >= 0 && index <= 7) state_.Zoom = 0.75F + 0.25F * index;
    SetFontSize(status_.mdis, index + 7);
    if (index > 1) SetFontSize(status_.mdis, 2 * index + 7);

    status_.crtkalica.Visible = false;
    frmBoard_.OuterWidth = state_.Zoom * clientWidth_ + borderWidth_;
    frmBoard_.OuterHeight = state_.Zoom * clientHeight_ + borderHeight_;
    controls_.Picture2.Visible = false;
    LayOut(state_.Zoom);

    status_.crtkalica.Visible = true;
    renderer_.RedrawBoard();
    controls_.Picture2.Visible = true;
}

// Places the border's controls for the zoom `z`, in window pixels.
void ZoomMenu::LayOut(double z) {
    PlaceToolbar(controls_.Picture2, z);

    const Size inner = desktop_.InnerSize(frmBoard_);
    controls_.Picture1.MoveTo(std::trunc((inner.Width - controls_.Picture1.Width) / 2) - 1,
                              std::trunc((inner.Height - controls_.Picture1.Height) / 2));
    PlaceButtons(controls_.poke, z);
    status_.LayOut(z);
}

void ZoomMenu::ApplySavedZoom() {
    const Text saved = SavedSetting(desktop_, u"WSize", u"1");
    Step(ToInteger16(saved), [this](std::int16_t index) { vw_Click(index); });
}

} // namespace quarnel
