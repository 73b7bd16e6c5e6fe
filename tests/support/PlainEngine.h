// The engine's side of the conversation without a search: any legal move is an answer, and it comes when a test says.
//
// What it says when is what the library's session promises; a test of the session holds the two together.
#pragma once

#include "quarnelchess/board/Text.h"
#include "quarnelchess/records/LooseRules.h"
#include "quarnelchess/records/Records.h"
#include "quarnelchess/records/San.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quarnel {

class PlainEngine {
  public:
    std::function<void(const std::string&)> Say;
    /// Reads position text; nothing when it cannot be.
    std::function<std::optional<Position>(std::string_view)> ReadPosition;
    /// The move to answer with, by its text; unset: some legal one.
    std::function<std::string()> Choose;
    Position Game = engine::RecordFromBoard(engine::Board::Start()); ///< as the engine has it
    int Plies = 0;
    bool Thinking = false;
    bool OwesNoMove = false;

    /// One callback of the program: its line, or none.
    void Hear(const std::string* line) {
        if (line != nullptr) {
            Obey(*line);
        } else if (std::exchange(OwesNoMove, false)) {
            Say(NoMove);
        }
    }
    /// The search ends.
    void Answer() {
        if (!Thinking) return;
        Thinking = false;
        const MoveList legal = Legal();
        const int chosen = Choose ? engine::FindSan(Game, Choose(), legal) : -1;
        const MoveRec move = legal.Moves[chosen >= 0 ? chosen : Plies * 7 % legal.Count];
        const std::string text = (Game.SideToMove != 0 ? "Black(" : "White(") + std::to_string(Plies / 2 + 1) +
                                 "): " + engine::WriteSan(Game, move, legal) + " ";
        Play(move);
        Say(text);
        AnnounceEnd();
    }

  private:
    static constexpr const char* NoMove = "White(0): - ";

    MoveList Legal() const {
        MoveList list;
        engine::ListMoves(Game, Side(), list);
        return list;
    }
    engine::Color Side() const { return Game.SideToMove != 0 ? engine::Black : engine::White; }
    void Play(const MoveRec& move) {
        engine::PlayMove(Game, move);
        Game.SideToMove = static_cast<std::int16_t>(~Game.SideToMove);
        ++Plies;
    }
    bool AnnounceEnd() {
        if (Legal().Count != 0) return false;
        const char* const mate = Game.SideToMove == 0 ? "Black mates" : "White mates";
        Say(engine::KingAttacked(Game, Side()) ? mate : "stalemate");
        return true;
    }
    void SetBoard(const Position& position, int plies) {
        Thinking = false;
        OwesNoMove = true;
        Game = position;
        Plies = plies;
    }
    void Obey(std::string_view line) {
        std::string_view rest = line;
        const std::string_view word = engine::NextWord(rest);
        if (word == "force") {
            if (Thinking) return Answer();
            Say(NoMove);
        } else if (word == "new") {
            SetBoard(engine::RecordFromBoard(engine::Board::Start()), 0);
        } else if (word == "setboard") {
            if (const auto position = ReadPosition(rest)) SetBoard(*position, position->SideToMove != 0 ? 1 : 0);
        } else if (word == "white" || word == "black") {
            Answer();
            Game.SideToMove = static_cast<std::int16_t>(word == "black" ? -1 : 0);
        } else if (word == "movenumber") {
            Answer();
            Plies = engine::ReadNumber(engine::NextWord(rest), 0, 100000).value_or(Plies);
        } else if (word == "go") {
            if (!Thinking) Think();
        } else if (!Thinking) {
            const MoveList legal = Legal();
            const int index = engine::FindSan(Game, word, legal);
            if (index < 0) return;
            Play(legal.Moves[index]);
            Think();
        }
    }
    void Think() { Thinking = !AnnounceEnd(); }
};

} // namespace quarnel
