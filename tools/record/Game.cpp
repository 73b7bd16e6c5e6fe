#include "Game.h"

#include "EngineRules.h"
#include "model/GameState.h"
#include "notation/MoveTextWriter.h"
#include "notation/PositionText.h"

#include <algorithm>

namespace quarnel::record {

using namespace notation;

namespace {

constexpr TextView Ranks = u"12345678";

// "Nf3", "R1xe2", "exd8=Q", "0-0+!": whether a text has the form of a move, whatever the position.
bool HasFormOfMove(TextView text) {
    const auto take = [&](TextView table) {
        if (text.empty() || PositionIn(table, text.back()) == 0) return false;
        text.remove_suffix(1);
        return true;
    };
    while (take(u"+#!?")) {
    }
    const Text lower = Lower(text);
    if (lower == u"o-o" || lower == u"o-o-o" || lower == u"0-0" || lower == u"0-0-0") return true;
    if (take(u"NBRQ")) take(u"=");
    if (!take(Ranks) || !take(FileLetters)) return false;
    take(u"x:");
    const bool hasRank = take(Ranks);
    take(FileLetters);
    return (take(PieceLetters) || !hasRank) && text.empty();
}

const MoveRec* FindLegal(const MoveList& legal, const MoveRec& move) {
    const auto* end = legal.Moves + legal.Count;
    const auto* found = std::find_if(legal.Moves, end, [&](const MoveRec& each) { return IsSameMove(each, move); });
    return found == end ? nullptr : found;
}

// Whether a text that names a piece by its letter, or a pawn by none, means this one.
bool NamesPiece(TextView text, int piece) {
    const int letter = PositionIn(PieceLetters, text[0]);
    return IsPieceKind(piece, letter == 0 ? static_cast<int>(Pawn) : letter);
}

} // namespace

std::string Quoted(TextView text) {
    constexpr std::size_t Most = 40;
    Text printable(text.substr(0, Most));
    for (char16_t& c : printable) {
        if (IsControl(c)) c = u'?';
    }
    return '"' + ToUtf8(printable) + (text.size() > Most ? "...\"" : "\"");
}

std::optional<Text> ResultOf(TextView text) {
    if (text == u"1-0" || text == u"0-1" || text == u"*") return Text(text);
    const bool drawn = (IsResultText(text) && text != u"-") || text == u"\u00BD-\u00BD" || text == u"\u00BD";
    return drawn ? std::optional<Text>(u"1/2-1/2") : std::nullopt;
}

Position Game::StartPosition(Truth side) {
    Text start(StandardStart);
    Position position{};
    FenToPosition(start, position);
    position.SideToMove = side;
    return position;
}

void Game::LetBlackBegin() {
    first_ = Black;
    position_ = StartPosition(Black);
}

void Game::Play(TextView text, Reading reading, std::size_t line) {
    const Truth side = position_.SideToMove;
    if (Plies() == MostPlies) throw Fault(line, "the game is longer than a record can be");
    if (reading == Reading::Strict && !HasFormOfMove(text)) throw Fault(line, Quoted(text) + " is no move");

    EngineRules rules;
    const MoveList legal = GenerateMoves(rules, position_, side);
    MoveTextReader reader(rules);
    const auto find = [&] {
        const MoveRec move = reader.SanToMoveRec(position_, text, side);
        return reader.MoveTextError != 0 ? nullptr : FindLegal(legal, move);
    };
    const MoveRec* move = find();
    if (move == nullptr)
        throw Fault(line, Quoted(text) + " is no legal move of " + (side == Black ? "Black" : "White"));
    if (reading == Reading::Strict && move->Castle == NoCastle) {
        if (!NamesPiece(text, PieceAt(position_, move->FromFile, move->FromRow)))
            throw Fault(line, Quoted(text) + " names another piece than the one that stands there");
        rules.Reversed = true;
        if (find() != move) throw Fault(line, Quoted(text) + " may mean more than one move");
        rules.Reversed = false;
    }

    const Text longText = MoveToLongText(position_, *move);
    moves_.push_back(
        {longText, LongTextToSan(rules, position_, longText, side) + CheckSuffix(rules, position_, longText)});
    rules.MakeMove(position_, *move);
    position_.SideToMove = Not(side);
}

Text Game::Outcome() const {
    EngineRules rules;
    const Truth side = position_.SideToMove;
    if (GenerateMoves(rules, position_, side).Count > 0) return u"*";
    if (IsKingAttacked(rules, position_, side) == False) return u"1/2-1/2";
    return side == Black ? u"1-0" : u"0-1";
}

Text Game::FenAt(std::size_t ply) const {
    EngineRules rules;
    const std::size_t placeholders = BlackBegins() ? 1 : 0;
    Position position = StartPosition(ply == 0 ? White : first_);
    int clock = 0; // plies since the last capture or pawn move
    for (std::size_t i = placeholders; i < ply; ++i) {
        const MoveRec move = LongTextToMove(position, moves_[i - placeholders].Long);
        const bool capture = Contains(moves_[i - placeholders].Long, u"x");
        const bool ofPawn = IsPieceKind(PieceAt(position, move.FromFile, move.FromRow), Pawn);
        clock = capture || ofPawn ? 0 : clock + 1;
        rules.MakeMove(position, move);
        position.SideToMove = Not(position.SideToMove);
    }
    const Text fen = PositionToFen(position);
    const auto counters = fen.rfind(u" 0 1");
    return fen.substr(0, counters) + u" " + ToText(clock) + u" " + FromAscii(std::to_string(ply / 2 + 1));
}

} // namespace quarnel::record
