#include "platform/scripted/ScriptedDesktop.h"

#include "base/Numbers.h"
#include "platform/CodePage.h"

#include <algorithm>
#include <cmath>

namespace quarnel {

namespace {

// Every character is as wide as half its height, which is enough to lay things out.
Size CharacterSize(const FontChoice& font) {
    const int height = RoundHalfEven(font.Points * 96 / 72);
    return {std::max(1, height / 2), std::max(1, height)};
}

std::string SettingPath(const Text& application, const Text& section, const Text& key) {
    return ToUtf8(Lower(application + u"/" + section + u"/" + key));
}

MenuItem* FindShortcut(const std::vector<MenuItem*>& items, const Text& shortcut) {
    for (MenuItem* item : items) {
        if (item->Shortcut == shortcut) return item;
        if (MenuItem* found = FindShortcut(item->Items(), shortcut)) return found;
    }
    return nullptr;
}

} // namespace

ScriptedDesktop::ScriptedDesktop() = default;

ScriptedDesktop::~ScriptedDesktop() {
    for (Form* form : forms_) form->Observer = nullptr;
}

std::vector<Form*> ScriptedDesktop::Shown() const {
    std::vector<Form*> shown;
    std::copy_if(forms_.begin(), forms_.end(), std::back_inserter(shown),
                 [](Form* form) { return form->Visible.Get(); });
    return shown;
}

void ScriptedDesktop::Press(Form& form, double x, double y, PointerButton button) {
    queue_.Push(FormPointerEvent{
        FormPointerEvent::Action::Press, &form, {button, 0, static_cast<float>(x), static_cast<float>(y)}});
}

void ScriptedDesktop::Move(Form& form, double x, double y, PointerButton held) {
    queue_.Push(FormPointerEvent{
        FormPointerEvent::Action::Move, &form, {held, 0, static_cast<float>(x), static_cast<float>(y)}});
}

void ScriptedDesktop::Release(Form& form, double x, double y, PointerButton button) {
    queue_.Push(FormPointerEvent{
        FormPointerEvent::Action::Release, &form, {button, 0, static_cast<float>(x), static_cast<float>(y)}});
}

void ScriptedDesktop::Click(Form& form, double x, double y) {
    Press(form, x, y);
    Release(form, x, y);
}

void ScriptedDesktop::Click(Control& control) {
    double x = control.Width / 2;
    double y = control.Height / 2;
    for (const Control* c = &control; c->Kind != ControlKind::Form; c = c->Parent()) {
        x += c->Left;
        y += c->Top;
    }
    Click(*Form::Of(control), x, y);
}

void ScriptedDesktop::Click(MenuItem& item) {
    queue_.Push(MenuClickEvent{&item});
}

bool ScriptedDesktop::Shortcut(Form& form, const Text& shortcut) {
    MenuItem* item = FindShortcut(form.Menus(), shortcut);
    if (item == nullptr || !item->IsReachable()) return false;
    Click(*item);
    return true;
}

void ScriptedDesktop::Close(Form& form) {
    if (form.OnQueryUnload) form.OnQueryUnload();
}

bool ScriptedDesktop::PeekEvent() {
    if (LogEvents) Note("peek");
    return !queue_.Empty();
}

void ScriptedDesktop::WaitEvent() {
    if (LogEvents) Note("wait");
    while (queue_.Empty()) {
        if (Script.empty()) throw ScriptEnded();
        const auto step = std::move(Script.front());
        Script.pop_front();
        step();
    }
}

void ScriptedDesktop::WaitEventFor(std::uint32_t mostMs) {
    if (LogEvents) Note("wait " + std::to_string(mostMs));
    if (queue_.Empty()) NowMs += mostMs;
}

void ScriptedDesktop::ProcessEvents() {
    if (LogEvents) Note("process");
    if (const auto before = BeforeProcess) before();
    while (queue_.DeliverNext()) {
    }
}

std::uint32_t ScriptedDesktop::TickCount() {
    const std::uint32_t now = NowMs;
    NowMs += TickStepMs;
    return now;
}

std::optional<Text> ScriptedDesktop::EnvironmentValue(const std::string& name) {
    const auto value = Environment.find(name);
    return value == Environment.end() ? std::nullopt : std::optional(value->second);
}

void ScriptedDesktop::Attach(Form& form) {
    form.Observer = this;
    forms_.push_back(&form);
    wasVisible_[&form] = false;
    ControlChanged(form);
}

void ScriptedDesktop::Detach(Form& form) {
    form.Observer = nullptr;
    queue_.Forget(form);
    std::erase(forms_, &form);
}

void ScriptedDesktop::ControlChanged(Control& control) {
    if (control.Kind != ControlKind::Form) return;
    const bool visible = control.Visible;
    if (std::exchange(wasVisible_[static_cast<Form*>(&control)], visible) == visible) return;
    Note((visible ? "show " : "hide ") + control.Name);
}

void ScriptedDesktop::MenuChanged(MenuItem&) {}

void ScriptedDesktop::ShowModal(Form& form) {
    queue_.EnterModal(form);
    struct Leave {
        EventQueue& Queue;
        ~Leave() { Queue.LeaveModal(); }
    } const leave{queue_};
    form.Loaded = true;
    form.Visible = true;
    while (form.Loaded.Get()) {
        WaitEvent();
        ProcessEvents();
    }
}

void ScriptedDesktop::ShapeForm(Form& form, std::span<const Rectangle> rectangles) {
    Outlines[&form].assign(rectangles.begin(), rectangles.end());
}

void ScriptedDesktop::MoveForm(Form& form) {
    Note("move " + form.Name);
}

Size ScriptedDesktop::InnerSize(Form& form) {
    const Size outer = OuterSize(form);
    if (form.Border == FormBorder::None) return outer;
    return {outer.Width - FrameBorder.Width, outer.Height - FrameBorder.Height};
}

Size ScriptedDesktop::OuterSize(Form& form) {
    return {RoundHalfEven(form.OuterWidth / TwipsPerPixel), RoundHalfEven(form.OuterHeight / TwipsPerPixel)};
}

void ScriptedDesktop::Present(Form& form, const Surface& frame, const FrameView& view, const Rectangle& changed) {
    Presented& presented = Frames[&form];
    const bool known = presented.View == view;
    if (!known) presented.Frame = Surface(view.SourceWidth, view.SourceHeight);
    const Rectangle part = known ? changed : Rectangle{0, 0, view.SourceWidth, view.SourceHeight};
    BitBlt(presented.Frame, part.Left, part.Top, part.Right - part.Left, part.Bottom - part.Top, frame, part.Left,
           part.Top, RasterOp::SrcCopy);
    presented.View = view;
    ++presented.Count;
    Note("present " + std::to_string(view.Width) + "x" + std::to_string(view.Height));
}

Size ScriptedDesktop::MeasureText(const Text& text, const FontChoice& font, int wrapWidth) {
    const Size one = CharacterSize(font);
    Size size{0, one.Height};
    int column = 0;
    for (const char16_t c : text) {
        if (c == u'\r') continue;
        if (c == u'\n' || (wrapWidth > 0 && column + one.Width > wrapWidth)) {
            size.Height += one.Height;
            column = 0;
        }
        if (c != u'\n') column += one.Width;
        size.Width = std::max(size.Width, column);
    }
    return size;
}

void ScriptedDesktop::DrawText(Surface& target, int x, int y, const Text& text, const FontChoice& font, Colour colour) {
    const Size one = CharacterSize(font);
    for (std::size_t i = 0; i < text.size(); ++i) {
        // The box is as tall as the character's code says, so that different texts look different.
        const int height = 1 + text[i] % one.Height;
        const int left = x + static_cast<int>(i) * one.Width;
        const Surface box(one.Width - 1, height, colour);
        BitBlt(target, left, y, box.Width(), height, box, 0, 0, RasterOp::SrcCopy);
    }
}

std::optional<std::filesystem::path> ScriptedDesktop::AnswerDialog(const char* kind, const Text& title) {
    Note(std::string(kind) + ToUtf8(title));
    // The dialog has a loop of its own, in which what the user did before finds the main window blocked.
    Form dialog("file dialog", FormBorder::None);
    queue_.EnterModal(dialog);
    while (queue_.DeliverNext()) {
    }
    queue_.LeaveModal();
    if (DialogAnswers.empty()) return std::nullopt;
    auto answer = DialogAnswers.front();
    DialogAnswers.pop_front();
    return answer;
}

std::optional<std::filesystem::path> ScriptedDesktop::OpenFileDialog(Form&, const Text& title) {
    return AnswerDialog("open ", title);
}

std::optional<std::filesystem::path> ScriptedDesktop::SaveFileDialog(Form&, const Text& title) {
    return AnswerDialog("save ", title);
}

void ScriptedDesktop::Beep() {
    Note("beep");
}

void ScriptedDesktop::OpenAddress(const Text& address) {
    Note("address " + ToUtf8(address));
}

std::optional<std::string> ScriptedDesktop::ReadFile(const std::filesystem::path& path, std::size_t mostBytes) {
    const auto file = Files.find(path);
    return file == Files.end() ? std::nullopt : std::optional(file->second.substr(0, mostBytes));
}

bool ScriptedDesktop::StoreFile(const std::filesystem::path& path, std::string_view bytes) {
    if (!StoresFail) Files[path] = bytes;
    return !StoresFail;
}

Text ScriptedDesktop::ReadSetting(const Text& application, const Text& section, const Text& key,
                                  const Text& defaultValue) {
    const auto value = Settings.find(SettingPath(application, section, key));
    return value == Settings.end() ? defaultValue : value->second;
}

void ScriptedDesktop::WriteSetting(const Text& application, const Text& section, const Text& key, const Text& value) {
    Settings[SettingPath(application, section, key)] = value;
}

LibraryHandle ScriptedDesktop::LoadLibrary(const Text& name) {
    if (!Libraries.contains(name)) return 0;
    ++libraryCount_;
    return 1;
}

bool ScriptedDesktop::ReleaseLibrary(LibraryHandle library) {
    if (library == 0 || libraryCount_ == 0) return false;
    --libraryCount_;
    return true;
}

void* ScriptedDesktop::FindSymbol(const Text& libraryName, const char* symbol) {
    const auto library = Libraries.find(libraryName);
    if (library == Libraries.end()) return nullptr;
    const auto address = library->second.find(symbol);
    return address == library->second.end() ? nullptr : address->second;
}

std::string ScriptedDesktop::ToBytes(TextView text) {
    return ToCodePage(text, CodePage);
}

Text ScriptedDesktop::FromBytes(std::string_view bytes) {
    return FromCodePage(bytes, CodePage);
}

void ScriptedDesktop::EndProcess() {
    Note("end");
    throw ProcessEnded();
}

} // namespace quarnel
