#include "display/Toolbar.h"

namespace quarnel {

void PlaceToolbar(Control& strip, double z) {
    strip.Place(ToolbarLeft * z, 347 * z, 128 * z, ButtonSize * z);
}

void PlaceButtons(std::array<Control, 6>& buttons, double z) {
    const double top = z == 1.5 || z == 2.0 || z == 2.5 ? -2 : -1;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        buttons[i].Place(ButtonLeft[i] * z, top, ButtonSize * z, ButtonSize * z);
    }
}

} // namespace quarnel
