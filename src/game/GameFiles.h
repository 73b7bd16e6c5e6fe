// Saves the game at the position shown and loads it again.
//
// Both end at their first failure with the message "Error!"; a cancelled dialog is one. Files are in
// the desktop's 8-bit code page. Program thread only.
#pragma once

#include "controls/MessageBox.h"
#include "game/CtrlPanel.h"
#include "game/Navigation.h"

#include <filesystem>
#include <optional>

namespace quarnel {

class GameFiles {
  public:
    GameFiles(GameState& state, CtrlPanel& panel, Navigation& steps, BoardRenderer& renderer, MessageBox& messages,
              Form& frmBoard, Desktop& desktop)
        : state_(state), panel_(panel), steps_(steps), renderer_(renderer), messages_(messages), frmBoard_(frmBoard),
          desktop_(desktop) {}

    /// Writes the plies up to PlyNow. A failure leaves the file as it was.
    void SaveGame();

    /// Replaces the game with one read from a file. Failing before the first line was read leaves the
    /// game as it is; failing later leaves a new game, the user's side as the file has it.
    void LoadGame();

  private:
    /// What ends a procedure: a path, a file or a line that is not as it must be.
    struct Failure {};

    std::filesystem::path ShowFileDialog(bool save, const Text& title);
    std::string RecordBytes(int plies, int lines);
    /// False when the record was out of sequence.
    bool ReadRecord();
    std::optional<std::vector<Text>> ReadFields();
    void TakeSides(bool userIsWhite);
    /// Closes whatever is open and says so.
    void Fail();

    GameState& state_;
    CtrlPanel& panel_;
    Navigation& steps_;
    BoardRenderer& renderer_;
    MessageBox& messages_;
    Form& frmBoard_;
    Desktop& desktop_;

    struct OpenRecord {
        std::string Bytes;
        std::size_t Next = 0; ///< where the next line begins
    };
    // The one record open. A handler that saves or loads while a load redraws the board closes it, whatever comes of
    // it, and the load under it then fails.
    std::optional<OpenRecord> record_;
};

} // namespace quarnel
