#include "controls/MessageBox.h"

#include "base/Numbers.h"
#include "controls/DialogColour.h"
#include "platform/PictureSurface.h"

#include <algorithm>
#include <vector>

namespace quarnel {

namespace {

// Pixels, as designed.
constexpr double TitleHeight = 28;
constexpr double IconSize = 20;
constexpr double CaptionLeft = 32;
constexpr double CaptionTop = 7;
constexpr double PromptTop = 42;

constexpr double ToPixels(double twips) {
    return twips / TwipsPerPixel;
}

// Gives `image` a picture of its own, in that picture's size.
void GivePicture(Control& image, const char* name) {
    const PictureRef picture = PictureNamed(name);
    image.Image = picture;
    image.Width = picture->front().Width();
    image.Height = picture->front().Height();
}

} // namespace

FrmMsg::FrmMsg(Desktop& desktop)
    : Form("FrmMsg", FormBorder::None), Ok_Press(PictureNamed("Ok_Press")), Ok_Over(PictureNamed("Ok_Over")),
      Ok_Static(PictureNamed("Ok_Static")), Icons{PictureNamed("Icon_Cri"), PictureNamed("Icon_Exc"),
                                                  PictureNamed("Icon_Info"), PictureNamed("Icon_Question")},
      desktop_(desktop) {
    GivePicture(BLeft, "BLeft");
    GivePicture(BRight, "BRight");
    GivePicture(Bottom, "Bottom");
    GivePicture(BottomLeft, "BottomLeft");
    GivePicture(BottomRight, "BottomRight");
    GivePicture(Title, "Title");
    GivePicture(TitleLeft, "TitleLeft");
    GivePicture(TitleRight, "TitleRight");
    GivePicture(CloseButton, "CloseButton");
    GivePicture(Ok, "Ok_Static");
    for (Control* stretched : {&BLeft, &BRight, &Bottom, &Title, &img_Icon}) stretched->Stretch = true;
    // The title bar's layout counts the left end twice; at this width the right end's picture still lies
    // at the window's edge.
    TitleRight.Width = TitleRight.Width + TitleLeft.Width;

    for (Control* part : std::initializer_list<Control*>{&BLeft, &BRight, &Bottom, &BottomLeft, &BottomRight, &Title,
                                                         &TitleLeft, &TitleRight, &img_Icon, &Caption1, &Caption2,
                                                         &CloseButton, &FraInput, &lbl_Prompt, &Ok, &lbl_OK, &lbl_No}) {
        Add(*part);
    }
    LoadDesign();
    Connect();
}

void FrmMsg::LoadDesign() {
    BackColor = DialogColour;
    okHovered_ = false;
    Ok.Image = Ok_Static;

    img_Icon.Width = IconSize;
    img_Icon.Height = IconSize;
    img_Icon.MoveTo(8, (TitleHeight - IconSize) / 2);
    img_Icon.Image = nullptr;
    Caption1.Font = Caption2.Font = FontChoice{u"Verdana", 8.25, false};
    Caption2.MoveTo(CaptionLeft, CaptionTop);
    Caption1.MoveTo(CaptionLeft + 1, CaptionTop + 1);

    lbl_Prompt.Font = FontChoice{u"Verdana", 12, true};
    lbl_Prompt.Top = PromptTop;
    lbl_OK.Font = lbl_No.Font = FontChoice{u"Verdana", 9.75, true};
    lbl_OK.Caption = u"OK";
    lbl_No.Caption = u"No";
    FitToText(lbl_OK);
    FitToText(lbl_No);
    CloseButton.Visible = true;
    lbl_No.Visible = true;
    FraInput.Visible = false;
}

void FrmMsg::FitToText(Control& label) {
    const Size size = desktop_.MeasureText(label.Caption, label.Font, 0);
    label.Width = size.Width;
    label.Height = size.Height;
}

void FrmMsg::Connect() {
    for (Control* part : {&Ok, &lbl_OK}) {
        part->OnMouseDown = [this](const PointerEvent&) { Ok.Image = Ok_Press; };
        part->OnMouseUp = [this](const PointerEvent&) { Ok.Image = Ok_Static; };
        part->OnMouseMove = [this](const PointerEvent&) {
            Ok.Image = Ok_Over;
            okHovered_ = true;
        };
        part->OnClick = [this] { OkClick(); };
    }
    OnMouseMove = [this](const PointerEvent&) {
        if (okHovered_) Ok.Image = Ok_Static;
    };
    for (Control* handle : {&Title, &Caption2}) {
        handle->OnMouseMove = [this](const PointerEvent& event) {
            if (event.Button == PointerButton::Left) desktop_.MoveForm(*this);
        };
    }
    OnQueryUnload = [this] { Unload(); };
}

void FrmMsg::OkClick() {
    if (LayoutKind == 1) ButtonPressed = 1;
    Unload();
}

void FrmMsg::CutOutline() {
    OuterWidth = std::max<double>(OuterWidth, 1695);
    OuterHeight = std::max<double>(OuterHeight, 615);
    const int w = RoundHalfEven(ToPixels(OuterWidth));
    const int h = RoundHalfEven(ToPixels(OuterHeight));
    static constexpr int BottomInsets[] = {8, 6, 4, 3, 2, 2, 1, 1};
    constexpr int BottomRows = 8;
    std::vector<Rectangle> outline{{7, 1, w - 6, 2}, {5, 2, w - 4, 3}, {4, 3, w - 3, 4}, {3, 4, w - 2, 5},
                                   {2, 5, w - 2, 6}, {1, 6, w - 1, 7}, {1, 7, w - 1, 8}, {0, 8, w, h - BottomRows}};
    for (int i = 0; i < BottomRows; ++i) {
        outline.push_back({BottomInsets[i], h - 1 - i, w - BottomInsets[i], h - i});
    }
    desktop_.ShapeForm(*this, outline);
}

ClsMain::ClsMain(FrmMsg& form, Desktop& desktop)
    : Title_Icon(form.img_Icon.Image), BackColor(form.BackColor), Prompt_Color(form.lbl_Prompt.ForeColor),
      Caption_Color(form.Caption2.ForeColor), Caption_Shadow_Color(form.Caption1.ForeColor),
      Ok_Button_Caption_Color(form.lbl_OK.ForeColor), Yes_Button_Caption_Color(form.lbl_OK.ForeColor),
      No_Button_Caption_color(form.lbl_No.ForeColor), form_(form), desktop_(desktop) {}

void ClsMain::Caption(const Text& caption) {
    form_.Caption = caption;
    for (Control* label : {&form_.Caption2, &form_.Caption1}) {
        label->Caption = caption;
        form_.FitToText(*label);
    }
}

void ClsMain::Prompt(const Text& prompt) {
    form_.lbl_Prompt.Caption = prompt;
    form_.FitToText(form_.lbl_Prompt);
    form_.Announce(prompt);
}

std::int32_t ClsMain::ShowMsg() {
    form_.lbl_Prompt.TextAlignment = Alignment::Centre;
    form_.LayoutKind = 1;
    SizeToText();
    LayOutSkin();
    form_.CutOutline();
    PlaceButton();
    form_.CloseButton.Visible = false;
    form_.lbl_No.Visible = false;
    form_.FraInput.Visible = true;
    desktop_.Beep();
    desktop_.ShowModal(form_);
    switch (form_.ButtonPressed) {
    case 1:
    case 2:
        return 6;
    case 3:
        return 7;
    case 4:
        return 2;
    default:
        return 0;
    }
}

void ClsMain::SizeToText() {
    const double okWidth = form_.Ok.Width * TwipsPerPixel;
    double width = form_.lbl_Prompt.Width * TwipsPerPixel + 200;
    form_.lbl_Prompt.Left = ToPixels(150);
    const double height = (form_.lbl_Prompt.Height + form_.lbl_Prompt.Top + form_.Ok.Height) * TwipsPerPixel + 500;
    width = std::max<double>(width, 2000);
    if (width < okWidth) width = okWidth + 200;
    form_.OuterWidth = width;
    form_.OuterHeight = height;
}

void ClsMain::LayOutSkin() {
    const double width = ToPixels(form_.OuterWidth);
    const double height = ToPixels(form_.OuterHeight);
    FrmMsg& f = form_;
    f.TitleLeft.MoveTo(0, 0);
    f.Title.MoveTo(f.TitleLeft.Width, 0);
    f.Title.Width = width - f.TitleRight.Width;
    f.TitleRight.MoveTo(f.Title.Left + f.Title.Width, 0);
    f.CloseButton.MoveTo(f.TitleRight.Left - f.CloseButton.Width - ToPixels(2),
                         (f.Title.Height - f.CloseButton.Height) / 2);
    f.BLeft.MoveTo(0, f.TitleLeft.Height);
    f.BLeft.Height = height - f.TitleLeft.Height;
    f.BRight.MoveTo(width - f.BRight.Width, f.TitleRight.Height);
    f.BRight.Height = f.BLeft.Height.Get();
    f.Bottom.MoveTo(f.BLeft.Width, height - f.Bottom.Height);
    f.Bottom.Width = width - f.BLeft.Width - f.BRight.Width;
    f.BottomLeft.MoveTo(0, height - f.BottomLeft.Height);
    f.BottomRight.MoveTo(width - f.BottomRight.Width, height - f.BottomRight.Height);
}

void ClsMain::PlaceButton() {
    const double width = ToPixels(form_.OuterWidth);
    form_.Ok.MoveTo((width - form_.Ok.Width) / 2, form_.lbl_Prompt.Top + form_.lbl_Prompt.Height + ToPixels(250));
    form_.lbl_OK.MoveTo((width - form_.lbl_OK.Width) / 2, form_.Ok.Top + ToPixels(55));
}

MessageBox::MessageBox(Desktop& desktop) : desktop_(desktop), form_(desktop) {
    desktop_.Attach(form_);
}

MessageBox::~MessageBox() {
    desktop_.Detach(form_);
}

std::int32_t MessageBox::MsgBoxXP(Text message, const Text& title, std::int32_t type, std::int32_t iconNumber,
                                  Truth usePicture, const PictureRef& picture, Colour textColour) {
    message += u"  ";
    form_.IsMsgBox = True;
    form_.LoadDesign();
    ClsMain box(form_, desktop_);
    box.Prompt(message);
    box.Caption(title.empty() ? Text(ProgramTitle) : title);
    box.Buttons = static_cast<std::uint8_t>(type);
    const bool known = iconNumber >= 1 && iconNumber <= 4;
    box.Title_Icon = known ? form_.Icons[static_cast<std::size_t>(iconNumber - 1)] : nullptr;
    if (usePicture) box.Title_Icon = picture;
    box.BackColor = DialogColour;
    box.Caption_Color = ColourWhite;
    box.Caption_Shadow_Color = ColourBlack;
    box.Yes_Button_Caption_Color = Rgb(0, 0, 255);
    box.No_Button_Caption_color = ColourBlack;
    box.Prompt_Color = textColour;
    const std::int32_t result = box.ShowMsg();
    form_.IsMsgBox = False;
    return result;
}

} // namespace quarnel
