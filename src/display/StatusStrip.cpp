#include "display/StatusStrip.h"

#include "display/BoardPictures.h"

namespace quarnel {

StatusStrip::StatusStrip() {
    crtkalica.BackColor = FrameColour;
    crtkalica.Add(mdis);

    mdis.Font = FontChoice{u"Tahoma", 8, false};
    mdis.ForeColor = ColourWhite;
    mdis.Caption = u"Welcome";

    for (Control& light : Picture4) light.BackColor = Rgb(128, 255, 128);
    Picture4[0].Signals = u"Your turn";
    Picture4[1].Signals = u"Computer's turn";
    LayOut(1);
}

void StatusStrip::AddTo(Form& form) {
    form.Add(crtkalica);
    form.Add(Picture4[0]);
    form.Add(Picture4[1]);
}

void StatusStrip::LayOut(double z) {
    Picture4[0].Place(349 * z, 328 * z, 9 * z, 9 * z);
    Picture4[1].Place(349 * z, 32 * z, 9 * z, 9 * z);
    crtkalica.Place(180 * z, 346 * z, 153 * z, 17 * z);
    mdis.Place(0, 0, 153 * z, 17 * z);
}

} // namespace quarnel
