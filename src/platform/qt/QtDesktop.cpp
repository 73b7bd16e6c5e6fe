#include "platform/qt/QtDesktop.h"

#include "platform/CodePage.h"
#include "platform/EventQueue.h"
#include "platform/posix/CharacterLocale.h"
#include "platform/posix/PlainFiles.h"
#include "platform/qt/AccessibleForm.h"
#include "platform/qt/Conversions.h"
#include "platform/qt/Fonts.h"
#include "platform/qt/FormMenuBar.h"
#include "platform/qt/FormWindow.h"
#include "platform/qt/Libraries.h"
#include "platform/qt/SettingsFile.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>
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

class QtDesktop : public Desktop, private FormObserver {
  public:
    QtDesktop(int& argc, char** argv);
    ~QtDesktop() override;

    bool PeekEvent() override;
    void WaitEvent() override;
    void WaitEventFor(std::uint32_t mostMs) override;
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
    void Present(Form& form, const Surface& frame, const FrameView& view, const Rectangle& changed) override;
    std::uint32_t PictureMs() override;
    Size MeasureText(const Text& text, const FontChoice& font, int wrapWidth) override;
    void DrawText(Surface& target, int x, int y, const Text& text, const FontChoice& font, Colour colour) override;
    std::optional<std::filesystem::path> OpenFileDialog(Form& owner, const Text& title) override;
    std::optional<std::filesystem::path> SaveFileDialog(Form& owner, const Text& title) override;
    void Beep() override;
    void OpenAddress(const Text& address) override;
    std::optional<std::string> ReadFile(const std::filesystem::path& path, std::size_t mostBytes) override {
        return ReadPlainFile(path, mostBytes);
    }
    bool StoreFile(const std::filesystem::path& path, std::string_view bytes) override {
        return StorePlainFile(path, bytes);
    }
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
    static void ClosePopups();
    bool MenuIsOpen() const;
    void HoldForMenu();
    FormWindow* WindowOf(Form& form) const;
    void BlockAllBut(const Form* form);
    void TakeKeysBack();
    QString DialogFolder() const;
    std::optional<std::filesystem::path> RunFileDialog(Form& owner, const Text& title, QFileDialog::AcceptMode mode);

    QApplication application_;
    EventQueue queue_;
    std::map<const Form*, FormWindow*> windows_; ///< each is owned here and deletes itself after Forget()
    QWidget* mainWindow_ = nullptr;              ///< of the framed form that was attached first
    std::vector<const Form*> modal_;
    QString dialogFolder_; ///< of the file chosen last; empty before the first
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

// While a menu of the main window is open, the program stays inside processing, as it would stay inside the menu's own
// loop on a desktop that has one: the game does not move under the pointer, and a command finds it as it was when the
// menu was opened.

bool QtDesktop::MenuIsOpen() const {
    const QWidget* widget = QApplication::activePopupWidget();
    while (widget != nullptr && qobject_cast<const FormMenuBar*>(widget) == nullptr) widget = widget->parentWidget();
    return widget != nullptr && widget->window() == mainWindow_;
}

void QtDesktop::ClosePopups() {
    while (QWidget* popup = QApplication::activePopupWidget()) {
        if (!popup->close()) break;
    }
}

// A command can come from elsewhere than the open menu, from a screen reader for example, and then closes it.
void QtDesktop::HoldForMenu() {
    if (!MenuIsOpen()) return;
    while (MenuIsOpen() && !queue_.HasCommand()) Pump(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    ClosePopups();
    // The menu has had the pointer, and with it the release of a button that was held when it opened.
    for (const auto& [form, window] : windows_) window->Canvas().CatchUpWithButtons();
}

bool QtDesktop::PeekEvent() {
    Pump(QEventLoop::AllEvents);
    return !queue_.Empty() || MenuIsOpen();
}

void QtDesktop::WaitEvent() {
    while (queue_.Empty() && !MenuIsOpen()) Pump(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtDesktop::WaitEventFor(std::uint32_t mostMs) {
    bool over = false;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&over] { over = true; });
    timer.start(static_cast<int>(mostMs));
    while (queue_.Empty() && !MenuIsOpen() && !over) Pump(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtDesktop::ProcessEvents() {
    do {
        Pump(QEventLoop::AllEvents);
        HoldForMenu();
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
    ClosePopups(); // they would keep the pointer to themselves
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

void QtDesktop::Present(Form& form, const Surface& frame, const FrameView& view, const Rectangle& changed) {
    if (FormWindow* window = WindowOf(form)) window->Canvas().Present(frame, view, changed);
}

std::uint32_t QtDesktop::PictureMs() {
    const QScreen* screen = mainWindow_ != nullptr ? mainWindow_->screen() : QGuiApplication::primaryScreen();
    const double perSecond = screen != nullptr ? screen->refreshRate() : 0;
    return perSecond >= 1 ? static_cast<std::uint32_t>(std::lround(1000 / perSecond)) : 0;
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

// Left to itself the toolkit would open a dialog in the folder that the program happened to be started from.
QString QtDesktop::DialogFolder() const {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    for (const QString& folder : {dialogFolder_, documents, QDir::homePath()}) {
        if (QFileInfo(folder).isDir()) return folder;
    }
    return QDir::rootPath();
}

std::optional<std::filesystem::path> QtDesktop::RunFileDialog(Form& owner, const Text& title,
                                                              QFileDialog::AcceptMode mode) {
    QFileDialog dialog(WindowOf(owner), ToQString(title), DialogFolder());
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
    const QString folder = QFileInfo(files.front()).absolutePath();
    if (QFileInfo(folder).isDir()) dialogFolder_ = folder;
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
