// Writes the move history: the one place where a move, the user's or the computer's, is recorded.
#pragma once

#include "display/BoardRenderer.h"
#include "model/GameState.h"
#include "notation/MoveTextReader.h"

namespace quarnel {

class MoveRecorder {
  public:
    MoveRecorder(GameState& state, Rules& rules, notation::MoveTextReader& reader, BoardRenderer& renderer)
        : state_(state), rules_(rules), reader_(reader), renderer_(renderer) {}

    /// Records the long move text (or result token) `text`, to be played in CurPos, which must still be
    /// the position before it. The next recorded move played again only steps on; another one
    /// discards what was recorded from here on. The move appears in the status strip.
    void RecordMove(const Text& text);

  private:
    bool ContinuesRecordedLine(const Text& text);
    void DiscardRest();
    void Append(const Text& san);

    GameState& state_;
    Rules& rules_;
    notation::MoveTextReader& reader_;
    BoardRenderer& renderer_;
};

} // namespace quarnel
