#include "platform/qt/QtDesktop.h"

#include "platform/CodePage.h"
#include "platform/EventQueue.h"
#include "platform/qt/AccessibleForm.h"
#include "platform/qt/Conversions.h"
#include "platform/qt/Fonts.h"
#include "platform/qt/FormWindow.h"
#include "platform/qt/Libraries.h"
#include "platform/qt/SettingsFile.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QStandardPaths>
#include <QUrl>
#include <QWindow>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <thread>

namespace quarnel {

namespace {

std::filesystem::path ToPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

std::filesystem::path SettingsPath() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return ToPath(folder) / "quarnel-chess" / "settings.conf";
}

// The locale for characters, as the C library would choose it.
std::string CharacterLocale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

class QtDesktop : public Desktop, private FormObserver {
  public:
    QtDesktop(int& argc, char** argv);
    ~QtDesktop() override;

    bool PeekEvent() override;
    void WaitEvent() override;
    void ProcessEvents() override;
    std::uint32_t TickCount() override;
    std::optional<Text> EnvironmentValue(const std::string& name) override;
    void Attach(Form& form) override;
    void Detach(Form& form) override;
    void ShowModal(Form& form) override;
    void ShapeForm(Form& form, std::span<const Rectangle> rectangles) override;
    void MoveForm(Form& form) override;
    Size InnerSize(Form& form) override;
    Size OuterSize(Form& form) override;
    void Present(Form& form, const Surface& frame, int sourceWidth, int sourceHeight, int width, int height) override;
    Size MeasureText(const Text& text, const FontChoice& font, int wrapWidth) override;
    void DrawText(Surface& target, int x, int y, const Text& text, const FontChoice& font, Colour colour) override;
    std::optional<std::filesystem::path> OpenFileDialog(Form& owner, const Text& title) override;
    std::optional<std::filesystem::path> SaveFileDialog(Form& owner, const Text& title) override;
    void Beep() override;
    void OpenAddress(const Text& address) override;
    Text ReadSetting(const Text& application, const Text& section, const Text& key, const Text& defaultValue) override;
    void WriteSetting(const Text& application, const Text& section, const Text& key, const Text& value) override;
    LibraryHandle LoadLibrary(const Text& name) override { return libraries_.Load(name); }
    bool ReleaseLibrary(LibraryHandle library) override { return libraries_.Release(library); }
    void* FindSymbol(const Text& name, const char* symbol) override { return libraries_.FindSymbol(name, symbol); }
    std::string ToBytes(TextView text) override { return ToCodePage(text, codePage_); }
    Text FromBytes(std::string_view bytes) override { return FromCodePage(bytes, codePage_); }
    [[noreturn]] void EndProcess() override { std::_Exit(0); }

  private:
    /// Brackets the time in which only `form` takes presses.
    class Modality {
      public:
        Modality(QtDesktop& desktop, Form& form);
        ~Modality();
        Modality(const Modality&) = delete;
        Modality& operator=(const Modality&) = delete;

      private:
        QtDesktop& desktop_;
    };

    void ControlChanged(Control& control) override;
    void MenuChanged(MenuItem& item) override;
    void Announced(Form& form) override;
    static void Pump(QEventLoop::ProcessEventsFlags flags);
    FormWindow* WindowOf(Form& form) const;
    void BlockAllBut(const Form* form);
    void TakeKeysBack();
    std::optional<std::filesystem::path> RunFileDialog(Form& owner, const Text& title, QFileDialog::AcceptMode mode);

    QApplication application_;
    EventQueue queue_;
    std::map<const Form*, FormWindow*> windows_; ///< each is owned here and deletes itself after Forget()
    QWidget* mainWindow_ = nullptr;              ///< of the framed form that was attached first
    std::vector<const Form*> modal_;
    SettingsFile settings_;
    Libraries libraries_;
    int codePage_;
};

QtDesktop::QtDesktop(int& argc, char** argv)
    : application_(argc, argv), settings_(SettingsPath()), libraries_(QApplication::applicationDirPath()),
      codePage_(CodePageOfLocale(CharacterLocale())) {
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setDesktopFileName(QStringLiteral("quarnel-chess"));
    DescribeFormsToScreenReaders();
}

QtDesktop::~QtDesktop() {
    for (const auto& [form, window] : windows_) {
        const_cast<Form*>(form)->Observer = nullptr;
        delete window;
    }
}

// Window events. The toolkit's handlers only push into the queue; what they push is delivered from here, outside of
// any handler.

void QtDesktop::Pump(QEventLoop::ProcessEventsFlags flags) {
    QCoreApplication::processEvents(flags);
    // There is no toolkit loop that would delete what asked to be deleted later.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool QtDesktop::PeekEvent() {
    Pump(QEventLoop::AllEvents);
    return !queue_.Empty();
}

void QtDesktop::WaitEvent() {
    while (queue_.Empty()) Pump(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtDesktop::ProcessEvents() {
    do {
        Pump(QEventLoop::AllEvents);
    } while (queue_.DeliverNext());
}

std::uint32_t QtDesktop::TickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::optional<Text> QtDesktop::EnvironmentValue(const std::string& name) {
    if (const char* value = std::getenv(name.c_str())) return FromUtf8(value);
    if (name == "NUMBER_OF_PROCESSORS") return ToText(std::max(1U, std::thread::hardware_concurrency()));
    return std::nullopt;
}

// Forms.

FormWindow* QtDesktop::WindowOf(Form& form) const {
    const auto window = windows_.find(&form);
    return window == windows_.end() ? nullptr : window->second;
}

void QtDesktop::Attach(Form& form) {
    form.Observer = this;
    auto* window = new FormWindow(form, queue_);
    windows_[&form] = window;
    if (mainWindow_ == nullptr && form.Border == FormBorder::Framed) mainWindow_ = window;
    window->SetBlocked(!modal_.empty());
}

void QtDesktop::Detach(Form& form) {
    form.Observer = nullptr;
    queue_.Forget(form);
    const auto window = windows_.find(&form);
    if (window == windows_.end()) return;
    if (mainWindow_ == window->second) mainWindow_ = nullptr;
    window->second->Forget();
    windows_.erase(window);
}

void QtDesktop::ControlChanged(Control& control) {
    if (FormWindow* window = WindowOf(*Form::Of(control))) window->Follow(control);
}

void QtDesktop::MenuChanged(MenuItem& item) {
    if (FormWindow* window = WindowOf(*Form::Of(item))) window->Follow(item);
}

void QtDesktop::Announced(Form& form) {
    if (FormWindow* window = WindowOf(form)) window->Canvas().TellScreenReaders(true);
}

QtDesktop::Modality::Modality(QtDesktop& desktop, Form& form) : desktop_(desktop) {
    desktop_.queue_.EnterModal(form);
    desktop_.modal_.push_back(&form);
    desktop_.BlockAllBut(&form);
    // An open menu would keep the pointer to itself.
    while (QWidget* popup = QApplication::activePopupWidget()) {
        if (!popup->close()) break;
    }
}

QtDesktop::Modality::~Modality() {
    desktop_.queue_.LeaveModal();
    desktop_.modal_.pop_back();
    desktop_.BlockAllBut(desktop_.modal_.empty() ? nullptr : desktop_.modal_.back());
    if (desktop_.modal_.empty()) desktop_.TakeKeysBack();
}

void QtDesktop::BlockAllBut(const Form* form) {
    for (const auto& [other, window] : windows_) window->SetBlocked(form != nullptr && other != form);
}

// The click that closes a window also asks for the keys to be given to it. Where that and its end cross each other, the
// keys stay with the main window, but the toolkit keeps them for the hidden one, and no shortcut does anything any
// more.
void QtDesktop::TakeKeysBack() {
    if (mainWindow_ == nullptr || !mainWindow_->isVisible()) return;
    // For a window of the main window's own, the toolkit would not ask the window manager.
    if (QWindow* holder = QGuiApplication::focusWindow()) holder->setTransientParent(nullptr);
    mainWindow_->activateWindow();
}

void QtDesktop::ShowModal(Form& form) {
    FormWindow* window = WindowOf(form);
    if (window == nullptr) return;
    const Modality modality(*this, form);
    form.Loaded = true;
    window->PlaceAbove(mainWindow_);
    form.Visible = true;
    window->raise();
    window->activateWindow();
    while (form.Loaded.Get()) {
        // Not a wait for an event of ours: a form's close may end the show without one.
        if (queue_.Empty()) Pump(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        ProcessEvents();
    }
}

void QtDesktop::ShapeForm(Form& form, std::span<const Rectangle> rectangles) {
    if (FormWindow* window = WindowOf(form)) window->Shape(rectangles);
}

void QtDesktop::MoveForm(Form& form) {
    if (FormWindow* window = WindowOf(form)) window->Canvas().CarryWindow();
}

Size QtDesktop::InnerSize(Form& form) {
    const FormWindow* window = WindowOf(form);
    return window != nullptr ? window->InnerSize() : Size();
}

Size QtDesktop::OuterSize(Form& form) {
    const FormWindow* window = WindowOf(form);
    return window != nullptr ? window->OuterSize() : Size();
}

// Drawing.

void QtDesktop::Present(Form& form, const Surface& frame, int sourceWidth, int sourceHeight, int width, int height) {
    if (FormWindow* window = WindowOf(form)) window->Canvas().Present(frame, sourceWidth, sourceHeight, width, height);
}

Size QtDesktop::MeasureText(const Text& text, const FontChoice& font, int wrapWidth) {
    return MeasuredSize(text, font, wrapWidth);
}

void QtDesktop::DrawText(Surface& target, int x, int y, const Text& text, const FontChoice& font, Colour colour) {
    if (target.Empty()) return;
    QImage image(reinterpret_cast<uchar*>(target.Pixels()), target.Width(), target.Height(), target.Width() * 4,
                 QImage::Format_RGB32);
    SetDotsPerInch(image);
    QPainter painter(&image);
    painter.setPen(ToQColor(colour));
    DrawTextBox(painter, QRectF(x, y, target.Width(), target.Height()), text, FontFor(font), {});
}

// The user's desktop.

std::optional<std::filesystem::path> QtDesktop::RunFileDialog(Form& owner, const Text& title,
                                                              QFileDialog::AcceptMode mode) {
    QFileDialog dialog(WindowOf(owner), ToQString(title));
    dialog.setAcceptMode(mode);
    // It asks nothing of its own: a question would be the toolkit's modal box, under which no close comes through.
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilter(QStringLiteral("All Files (*.*) (*)")); // "*.*" alone would hide names without a dot
    std::optional<int> result;
    QObject::connect(&dialog, &QDialog::finished, [&result](int code) { result = code; });

    // The dialog is the toolkit's own form. Events of ours only have to be kept from waiting until it has gone.
    Form stand("file dialog", FormBorder::None);
    const Modality modality(*this, stand);
    dialog.setWindowModality(Qt::NonModal);
    dialog.show();
    while (!result) {
        Pump(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        ProcessEvents();
    }
    const QStringList files = dialog.selectedFiles();
    if (*result != QDialog::Accepted || files.isEmpty()) return std::nullopt;
    return ToPath(files.front());
}

std::optional<std::filesystem::path> QtDesktop::OpenFileDialog(Form& owner, const Text& title) {
    return RunFileDialog(owner, title, QFileDialog::AcceptOpen);
}

std::optional<std::filesystem::path> QtDesktop::SaveFileDialog(Form& owner, const Text& title) {
    return RunFileDialog(owner, title, QFileDialog::AcceptSave);
}

void QtDesktop::Beep() {
    QApplication::beep();
}

void QtDesktop::OpenAddress(const Text& address) {
    QDesktopServices::openUrl(QUrl(ToQString(address)));
}

Text QtDesktop::ReadSetting(const Text& application, const Text& section, const Text& key, const Text& defaultValue) {
    return settings_.Read(application + u"/" + section, key).value_or(defaultValue);
}

void QtDesktop::WriteSetting(const Text& application, const Text& section, const Text& key, const Text& value) {
    settings_.Write(application + u"/" + section, key, value);
}

} // namespace

std::unique_ptr<Desktop> MakeQtDesktop(int& argc, char** argv) {
    return std::make_unique<QtDesktop>(argc, argv);
}

} // namespace quarnel
