#include "game/MoveRecorder.h"

#include "base/Numbers.h"
#include "base/Step.h"
#include "model/History.h"
#include "notation/MoveTextWriter.h"

namespace quarnel {

using namespace notation;

namespace {

constexpr int SpareRows = 5;

// The counters hold as many plies as fit 16 bits and stay there.
void NextPly(GameState& state) {
    Step(ToInteger16(state.PlyNow + 1), [&](std::int16_t ply) { state.PlyNow = ply; });
}

int RoundUpToEven(int plies) {
    return plies + plies % 2;
}

void ClearRow(GameState& state, int row) {
    Step(ElementAt(state.Variations, row), [](VariationRow& cells) { cells = {}; });
}

} // namespace

void MoveRecorder::RecordMove(const Text& text) {
    const Text suffix = CheckSuffix(rules_, state_.CurPos, text);
    if (state_.PlyNow < state_.PlyCount) {
        if (ContinuesRecordedLine(text)) {
            NextPly(state_);
            renderer_.ShowMoveText(LongTextToSan(rules_, state_.CurPos, text, state_.CurPos.SideToMove) + suffix);
            return;
        }
        DiscardRest();
    }
    Append(LongTextToSan(rules_, state_.CurPos, text, state_.CurPos.SideToMove) + suffix);
}

bool MoveRecorder::ContinuesRecordedLine(const Text& text) {
    const MoveRec played = LongTextToMoveRec(state_.CurPos, text);
    const Text next = GetMove(state_, state_.PlyNow + 1);
    return IsSameMove(played, reader_.SanToMoveRec(state_.CurPos, next, state_.CurPos.SideToMove));
}

// Removes the rows behind the one of ply PlyNow. Black's move in that row stays until it is overwritten.
void MoveRecorder::DiscardRest() {
    int row = RoundHalfEven(state_.PlyCount / 2.0 + 0.1);
    int rows = (RoundUpToEven(state_.PlyCount) - RoundUpToEven(state_.PlyNow)) / 2;
    for (; rows > 0; --rows, --row) {
        if (ElementAt(state_.MoveText, row) != nullptr) state_.MoveText.resize(static_cast<std::size_t>(row));
        ClearRow(state_, row);
    }
}

void MoveRecorder::Append(const Text& san) {
    const int row = state_.PlyNow / 2 + 1;
    const int column = IsEven(state_.PlyNow) ? 1 : 2;
    if (static_cast<int>(state_.Variations.size()) - 1 < row) {
        state_.Variations.resize(static_cast<std::size_t>(row) + SpareRows + 1);
    }
    if (column == 1) {
        state_.MoveText.resize(static_cast<std::size_t>(row) + 1);
        state_.MoveText.back()[0] = ToText(row) + u".";
    }
    Step(ElementAt(state_.MoveText, row), [&](HistoryRow& cells) { cells[static_cast<std::size_t>(column)] = san; });
    state_.Variations[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)].clear();
    NextPly(state_);
    state_.PlyCount = state_.PlyNow;
    renderer_.ShowMoveText(san);
}

} // namespace quarnel
