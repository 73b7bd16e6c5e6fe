#include "display/StatusStrip.h"

namespace quarnel {

StatusStrip::StatusStrip() {
    crtkalica.BackColor = Rgb(89, 0, 0);
    crtkalica.Left = 180;
    crtkalica.Top = 346;
    crtkalica.Width = 153;
    crtkalica.Height = 17;
    crtkalica.Add(mdis);

    mdis.Width = 153;
    mdis.Height = 17;
    mdis.Font = FontChoice{u"Tahoma", 8, false};
    mdis.ForeColor = ColourWhite;
    mdis.Caption = u"Welcome";

    for (Control& light : Picture4) {
        light.BackColor = Rgb(128, 255, 128);
        light.Left = 349;
        light.Width = 9;
        light.Height = 9;
    }
    Picture4[0].Top = 328;
    Picture4[1].Top = 32;
}

void StatusStrip::AddTo(Form& form) {
    form.Add(crtkalica);
    form.Add(Picture4[0]);
    form.Add(Picture4[1]);
}

} // namespace quarnel
