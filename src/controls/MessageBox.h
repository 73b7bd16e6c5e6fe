// The program's message box: a window of its own with a painted title bar, cut to a rounded outline.
//
// Start at MessageBox::MsgBoxXP(). There is one dialog window; each box takes it anew. Only the layout
// with one "OK" button exists. Program thread only; window events of all forms run while a box is open.
#pragma once

#include "base/ProgramTitle.h"
#include "base/Truth.h"
#include "platform/Desktop.h"

#include <array>
#include <cstdint>

namespace quarnel {

/// The dialog window with its designed contents. Positions are pixels.
class FrmMsg : public Form {
  public:
    explicit FrmMsg(Desktop& desktop);

    /// Gives all contents their designed looks again.
    void LoadDesign();

    /// Cuts the window to its rounded outline, at least 1695 x 615 twips.
    void CutOutline();

    Control BLeft{ControlKind::Image, "BLeft"};
    Control BRight{ControlKind::Image, "BRight"};
    Control Bottom{ControlKind::Image, "Bottom"};
    Control BottomLeft{ControlKind::Image, "BottomLeft"};
    Control BottomRight{ControlKind::Image, "BottomRight"};
    Control Title{ControlKind::Image, "Title"};
    Control TitleLeft{ControlKind::Image, "TitleLeft"};
    Control TitleRight{ControlKind::Image, "TitleRight"};
    Control img_Icon{ControlKind::Image, "img_Icon"};
    Control Caption1{ControlKind::Label, "Caption1"}; ///< the caption's shadow
    Control Caption2{ControlKind::Label, "Caption2"}; ///< the caption
    Control CloseButton{ControlKind::Image, "CloseButton"};
    Control FraInput{ControlKind::Picture, "FraInput"};
    Control lbl_Prompt{ControlKind::Label, "lbl_Prompt"};
    Control Ok{ControlKind::Image, "Ok"};
    Control lbl_OK{ControlKind::Label, "lbl_OK"};
    Control lbl_No{ControlKind::Label, "lbl_No"};

    // Never shown themselves: where the others get their pictures from.
    PictureRef Ok_Press;
    PictureRef Ok_Over;
    PictureRef Ok_Static;
    std::array<PictureRef, 4> Icons; ///< Icon_Cri, Icon_Exc, Icon_Info, Icon_Question

    Truth IsMsgBox = False;         ///< a message box is being shown
    std::uint8_t LayoutKind = 0;    ///< 1: one button
    std::uint8_t ButtonPressed = 0; ///< what closed the dialog; kept from box to box

    /// Sizes a label to its text.
    void FitToText(Control& label);

  private:
    void Connect();
    void OkClick();

    Desktop& desktop_;
    bool okHovered_ = false;
};

/// One box. Its properties are those of the dialog window itself, Buttons and Icon apart.
class ClsMain {
  public:
    ClsMain(FrmMsg& form, Desktop& desktop);

    void Caption(const Text& caption);
    Text Caption() const { return form_.Caption2.Caption; }
    void Prompt(const Text& prompt);
    Text Prompt() const { return form_.lbl_Prompt.Caption; }
    std::uint8_t Buttons = 0; ///< the layout
    std::uint8_t Icon = 3;    ///< kept only
    Property<PictureRef>& Title_Icon;
    Property<Colour>& BackColor;
    Property<Colour>& Prompt_Color;
    Property<Colour>& Caption_Color;
    Property<Colour>& Caption_Shadow_Color;
    Property<Colour>& Ok_Button_Caption_Color;
    Property<Colour>& Yes_Button_Caption_Color;
    Property<Colour>& No_Button_Caption_color;

    /// Shows the dialog as prepared and waits until it is closed: 6 for the first button, 7 second, 2 third,
    /// 0 when none was ever pressed.
    std::int32_t ShowMsg();

  private:
    void SizeToText();
    void LayOutSkin();
    void PlaceButton();

    FrmMsg& form_;
    Desktop& desktop_;
};

class MessageBox {
  public:
    /// Attaches the dialog window to `desktop` for its lifetime.
    explicit MessageBox(Desktop& desktop);
    ~MessageBox();
    MessageBox(const MessageBox&) = delete;
    MessageBox& operator=(const MessageBox&) = delete;

    /// Beeps, shows `message` and waits until the box is closed; the result is that of ShowMsg().
    /// Icons: 0 none, 1 critical, 2 exclamation, 3 information, 4 question; `picture` instead of one
    /// of them with `usePicture`.
    std::int32_t MsgBoxXP(Text message, const Text& title = Text(ProgramTitle), std::int32_t type = 0,
                          std::int32_t iconNumber = 2, Truth usePicture = False, const PictureRef& picture = nullptr,
                          Colour textColour = ColourBlack);

    FrmMsg& Dialog() { return form_; }

  private:
    Desktop& desktop_;
    FrmMsg form_;
};

} // namespace quarnel
