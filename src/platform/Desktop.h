// The desktop as the program sees it: window events, forms, text, file dialogs, settings, libraries.
//
// Two back ends stand behind it: platform/qt (real windows) and platform/scripted (tests). Whoever
// writes another one: push what the toolkit reports into an EventQueue and nothing else; keep peek,
// wait and process apart; repaint a form from what was last presented; honour a close at once.
// Program thread only. Nothing throws; what cannot be done says so in its result or is left out.
#pragma once

#include "base/Text.h"
#include "platform/Form.h"
#include "platform/Surface.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quarnel {

/// A loaded library; 0 is none.
using LibraryHandle = std::int32_t;

/// How a frame is shown: its top-left `SourceWidth` x `SourceHeight`, smoothly stretched to `Width` x `Height` pixels.
struct FrameView {
    int SourceWidth = 0;
    int SourceHeight = 0;
    int Width = 0;
    int Height = 0;
    bool operator==(const FrameView&) const = default;
};

class Desktop {
  public:
    virtual ~Desktop() = default;

    // Window events. The three are separate: peeking delivers and removes nothing, waiting delivers
    // nothing, and only processing runs program code.

    /// Whether any window event is waiting.
    virtual bool PeekEvent() = 0;
    /// Sleeps until a window event is waiting; returns at once when one is already.
    virtual void WaitEvent() = 0;
    /// The same, but no longer than `mostMs` milliseconds.
    virtual void WaitEventFor(std::uint32_t mostMs) = 0;
    /// Delivers events until none is left, those that arrive meanwhile included. Nests.
    virtual void ProcessEvents() = 0;

    /// Milliseconds from an arbitrary start, monotonic, wrapping after 2^32.
    virtual std::uint32_t TickCount() = 0;

    /// The value of an environment variable, as a Windows desktop would have it: NUMBER_OF_PROCESSORS
    /// is answered with the number of cores where it is unset.
    virtual std::optional<Text> EnvironmentValue(const std::string& name) = 0;

    // Forms.

    /// Makes `form` known: from now on its properties are followed, and it is on the screen while its
    /// Visible is true. The form must stay alive until Detach().
    virtual void Attach(Form& form) = 0;
    virtual void Detach(Form& form) = 0;
    /// Shows an attached form above the main window, centred, and runs window events until it is
    /// unloaded. Other forms are repainted and can be closed meanwhile, but take no presses.
    virtual void ShowModal(Form& form) = 0;
    /// Cuts the form to the union of `rectangles`, pixels in its own area.
    virtual void ShapeForm(Form& form, std::span<const Rectangle> rectangles) = 0;
    /// Lets the pointer, whose left button is down, carry the form until the button is released.
    virtual void MoveForm(Form& form) = 0;
    /// The form's size without and with frame and menu bar, whole pixels.
    virtual Size InnerSize(Form& form) = 0;
    virtual Size OuterSize(Form& form) = 0;

    // Drawing.

    /// Shows the top-left of `frame` as `view` says, at the top-left of the form's inner area, under its
    /// controls. It stays there until the next one; `frame` is not needed any longer. Only what lies in
    /// `changed` has to differ from the last one of the same view; the rest may be taken from there.
    virtual void Present(Form& form, const Surface& frame, const FrameView& view, const Rectangle& changed) = 0;
    /// How long the display shows a picture, in milliseconds; 0 when it is not known.
    virtual std::uint32_t PictureMs() = 0;
    /// The size in pixels of `text` on one line, or wrapped at `wrapWidth` pixels when that is above 0.
    virtual Size MeasureText(const Text& text, const FontChoice& font, int wrapWidth) = 0;
    /// Draws `text` with its top-left corner at (x, y), without a background.
    virtual void DrawText(Surface& target, int x, int y, const Text& text, const FontChoice& font, Colour colour) = 0;

    // The user's desktop.

    /// The path that the user chose, nothing when the dialog was cancelled or failed. Lets all files
    /// be chosen ("All Files (*.*)"). Opens in the folder of the file that was chosen last, at first in
    /// that of the user's documents, else in the user's home.
    virtual std::optional<std::filesystem::path> OpenFileDialog(Form& owner, const Text& title) = 0;
    virtual std::optional<std::filesystem::path> SaveFileDialog(Form& owner, const Text& title) = 0;
    virtual void Beep() = 0;
    /// Opens `address` in the user's browser; the result is not known.
    virtual void OpenAddress(const Text& address) = 0;

    // Plain files, as a whole. Pipes, devices and the like are refused at once, so neither call waits for another
    // program.

    /// The file's first bytes, `mostBytes` at most; nothing when it is none that can be read.
    virtual std::optional<std::string> ReadFile(const std::filesystem::path& path, std::size_t mostBytes) = 0;
    /// Puts `bytes` in the place of what the file holds, or makes it. True once they are on the disk; false leaves the
    /// old file as it was, and nothing beside it. Links, mode and owner stay.
    virtual bool StoreFile(const std::filesystem::path& path, std::string_view bytes) = 0;

    // Settings of this user, texts under application, section and key (letter case aside). What one program stores, no
    // other one that runs beside it takes away.

    virtual Text ReadSetting(const Text& application, const Text& section, const Text& key,
                             const Text& defaultValue) = 0;
    /// Stored when it returns; a crash in the middle leaves the old store whole.
    virtual void WriteSetting(const Text& application, const Text& section, const Text& key, const Text& value) = 0;

    // Libraries, by base name ("QuarnelChess"): looked for beside the program first, then as the
    // system finds them.

    /// A handle, 0 when it cannot be loaded. Each success counts once.
    virtual LibraryHandle LoadLibrary(const Text& name) = 0;
    /// Takes one count back; false once there is none left, and always safe.
    virtual bool ReleaseLibrary(LibraryHandle library) = 0;
    /// The address of an export, the library being loaded for it if need be; null when either is missing.
    virtual void* FindSymbol(const Text& libraryName, const char* symbol) = 0;

    // The 8-bit code page of the desktop. What it lacks becomes "?"; bytes it does not know become
    // the character of the same number.

    virtual std::string ToBytes(TextView text) = 0;
    virtual Text FromBytes(std::string_view bytes) = 0;

    /// Ends the process at once: no further event runs, nothing is saved.
    [[noreturn]] virtual void EndProcess() = 0;
};

} // namespace quarnel
