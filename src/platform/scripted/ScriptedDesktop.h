// A desktop without a screen, driven by a test.
//
// A test pushes events (Click, Press, ...) and steps: each time the program waits with nothing queued,
// the next step of Script runs and may push more. When the program waits and the script is over,
// ScriptEnded is thrown through the program, which ends it. The clock moves only when it is read, and to the end of a
// wait that has one.
// Text is drawn as a filled box per character, so that pictures can be compared on every machine.
#pragma once

#include "platform/Desktop.h"
#include "platform/EventQueue.h"

#include <deque>
#include <map>
#include <vector>

namespace quarnel {

class ScriptedDesktop : public Desktop, private FormObserver {
  public:
    /// Thrown by a wait that nothing would ever end, and by EndProcess().
    struct ScriptEnded {};
    struct ProcessEnded {};

    ScriptedDesktop();
    ~ScriptedDesktop() override;

    // What the test sets up.

    std::deque<std::function<void()>> Script; ///< one step each time the program would sleep
    std::function<void()> BeforeProcess;      ///< runs at the start of each ProcessEvents()
    std::uint32_t NowMs = 1000;               ///< the clock
    std::uint32_t TickStepMs = 10;            ///< how far each reading moves it
    std::uint32_t FrameMs = 0;                ///< how long the display shows a picture
    std::map<std::string, Text> Environment;
    std::map<std::string, Text> Settings;                           ///< "application/section/key" in small letters
    std::map<Text, std::map<std::string, void*>> Libraries;         ///< what LoadLibrary finds: exports by name
    std::deque<std::optional<std::filesystem::path>> DialogAnswers; ///< empty: cancelled
    std::map<std::filesystem::path, std::string> Files;             ///< by the paths they are asked for
    bool StoresFail = false;                                        ///< no file changes any more
    int CodePage = 1252;
    Size FrameBorder{10, 50}; ///< outer size minus inner size of a framed form

    // What the test looks at.

    std::vector<std::string> Log; ///< "peek", "wait", "process", "present 366x366", "beep", "show FrmMsg", ...
    bool LogEvents = false;       ///< whether peek, wait and process go into the log
    struct Presented {
        Surface Frame; ///< the part that was stretched, unstretched; unchanged where a present left it out
        FrameView View;
        int Count = 0; ///< how many so far
    };
    std::map<const Form*, Presented> Frames;
    std::map<const Form*, std::vector<Rectangle>> Outlines;
    std::vector<Text> Spoken;         ///< what forms announced
    std::vector<Form*> Shown() const; ///< attached forms that are visible

    // What a user does; each pushes events, delivered when the program next processes them.

    void Press(Form& form, double x, double y, PointerButton button = PointerButton::Left);
    void Move(Form& form, double x, double y, PointerButton held = PointerButton::None);
    void Release(Form& form, double x, double y, PointerButton button = PointerButton::Left);
    void Click(Form& form, double x, double y); ///< a press and a release
    void Click(Control& control);               ///< in its middle
    void Click(MenuItem& item);
    /// Chooses the reachable menu item of `form` that has this shortcut; false when there is none.
    bool Shortcut(Form& form, const Text& shortcut);
    /// Asks for the form to be closed, which is honoured at once.
    void Close(Form& form);

    // Desktop.

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
    std::uint32_t PictureMs() override { return FrameMs; }
    Size MeasureText(const Text& text, const FontChoice& font, int wrapWidth) override;
    void DrawText(Surface& target, int x, int y, const Text& text, const FontChoice& font, Colour colour) override;
    std::optional<std::filesystem::path> OpenFileDialog(Form& owner, const Text& title) override;
    std::optional<std::filesystem::path> SaveFileDialog(Form& owner, const Text& title) override;
    void Beep() override;
    void OpenAddress(const Text& address) override;
    std::optional<std::string> ReadFile(const std::filesystem::path& path, std::size_t mostBytes) override;
    bool StoreFile(const std::filesystem::path& path, std::string_view bytes) override;
    Text ReadSetting(const Text& application, const Text& section, const Text& key, const Text& defaultValue) override;
    void WriteSetting(const Text& application, const Text& section, const Text& key, const Text& value) override;
    LibraryHandle LoadLibrary(const Text& name) override;
    bool ReleaseLibrary(LibraryHandle library) override;
    void* FindSymbol(const Text& libraryName, const char* symbol) override;
    std::string ToBytes(TextView text) override;
    Text FromBytes(std::string_view bytes) override;
    [[noreturn]] void EndProcess() override;

  private:
    void ControlChanged(Control& control) override;
    void MenuChanged(MenuItem& item) override;
    void Announced(Form& form) override { Spoken.push_back(form.Announcement()); }
    std::optional<std::filesystem::path> AnswerDialog(const char* kind, const Text& title);
    void Note(std::string entry) { Log.push_back(std::move(entry)); }

    EventQueue queue_;
    std::vector<Form*> forms_;
    std::map<const Form*, bool> wasVisible_;
    int libraryCount_ = 0;
};

} // namespace quarnel
