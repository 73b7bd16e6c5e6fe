// A push button of any width, drawn from three slices of a skin: left cap, repeated tile, right cap.
//
// Put Box() on a form, size it there and set Click. Every change of its size redraws the button.
// Program thread only.
#pragma once

#include "platform/Form.h"

#include <functional>

namespace quarnel {

class ctrl_SkinableButton {
  public:
    explicit ctrl_SkinableButton(std::string name, Text caption = u"Caption", bool enabled = true);

    /// The button as a control of the form it stands on; 24 pixels high.
    Control& Box() { return box_; }

    /// Runs on the release of the left button that was pressed on it, wherever that happens.
    std::function<void()> Click;

    /// Draws the normal look.
    void LoadSkin();
    void Refresh();

    bool Enabled() const { return enabled_; }
    /// A disabled button takes no presses and keeps the look it has.
    void Enabled(bool enabled);

    Text Caption();
    void Caption(const Text& caption);

    Control pic_Button{ControlKind::Picture, "pic_Button"}; ///< the face
    Control lbl_Caption{ControlKind::Label, "lbl_Caption"};

  private:
    struct Look;

    // The container, which tells when its size changes.
    class ResizeBox : public Control {
      public:
        using Control::Control;
        void Changed() override;
        std::function<void()> OnResize;

      private:
        double knownWidth_ = 0;
        double knownHeight_ = 0;
    };

    void DrawFace(const Look& look);
    void MouseDown(const PointerEvent& event);
    void MouseUp(const PointerEvent& event);

    const Surface pic_Buttons_; ///< the skin strip
    ResizeBox box_;
    Text caption_;
    bool enabled_ = true;
};

} // namespace quarnel
