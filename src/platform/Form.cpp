#include "platform/Form.h"

namespace quarnel {

PictureRef MakePicture(Surface surface) {
    Picture picture;
    picture.push_back(std::move(surface));
    return std::make_shared<const Picture>(std::move(picture));
}

Control::Control(ControlKind kind, std::string name) : Kind(kind), Name(std::move(name)) {}

void Control::Add(Control& child) {
    child.parent_ = this;
    children_.push_back(&child);
    Changed();
}

void Control::MoveTo(double left, double top) {
    Left = left;
    Top = top;
}

void Control::Place(double left, double top, double width, double height) {
    MoveTo(left, top);
    Width = width;
    Height = height;
}

bool Control::IsShown() const {
    for (const Control* control = this; control->Kind != ControlKind::Form; control = control->parent_) {
        if (!control->Visible.Get() || control->parent_ == nullptr) return false;
    }
    return true;
}

void Control::Changed() {
    Form* form = Form::Of(*this);
    if (form != nullptr && form->Observer != nullptr) form->Observer->ControlChanged(*this);
}

MenuItem::MenuItem(std::string name, Text caption, Text shortcut)
    : Name(std::move(name)), Shortcut(std::move(shortcut)), Caption(*this, std::move(caption)) {}

void MenuItem::Add(MenuItem& item) {
    item.parent_ = this;
    items_.push_back(&item);
    Changed();
}

bool MenuItem::IsReachable() const {
    for (const MenuItem* item = this; item != nullptr; item = item->parent_) {
        if (!item->Enabled.Get() || !item->Visible.Get()) return false;
    }
    return true;
}

void MenuItem::Changed() {
    Form* form = Form::Of(*this);
    if (form != nullptr && form->Observer != nullptr) form->Observer->MenuChanged(*this);
}

Form::Form(std::string name, FormBorder border) : Control(ControlKind::Form, std::move(name)), Border(border) {
    Visible = false;
}

void Form::AddMenu(MenuItem& menu) {
    menu.form_ = this;
    menus_.push_back(&menu);
    menu.Changed();
}

void Form::Announce(Text text) {
    announcement_ = std::move(text);
    if (Observer != nullptr) Observer->Announced(*this);
}

void Form::Unload() {
    Visible = false;
    Loaded = false;
}

Form* Form::Of(Control& control) {
    Control* top = &control;
    while (top->Parent() != nullptr) top = top->Parent();
    return top->Kind == ControlKind::Form ? static_cast<Form*>(top) : nullptr;
}

Form* Form::Of(MenuItem& item) {
    const MenuItem* top = &item;
    while (top->parent_ != nullptr) top = top->parent_;
    return top->form_;
}

} // namespace quarnel
