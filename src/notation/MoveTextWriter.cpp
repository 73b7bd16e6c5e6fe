#include "notation/MoveTextWriter.h"

#include <algorithm>

namespace quarnel::notation {

namespace {

// What must be written before the target so that only one piece can be meant; nothing when the rules
// cannot be asked.
bool Disambiguation(Rules& rules, const Position& position, const MoveRec& move, Truth side, Text& text) {
    MoveList list{};
    if (!rules.GetMove(position, side, list)) return false;
    const int piece = PieceAt(position, move.FromFile, move.FromRow);
    bool ambiguous = false;
    bool sameFile = false;
    bool sameRank = false;
    for (int i = 0; i < list.Count; ++i) {
        const MoveRec& other = list.Moves[i];
        const bool sameOrigin = other.FromFile == move.FromFile && other.FromRow == move.FromRow;
        const bool sameTarget = other.ToFile == move.ToFile && other.ToRow == move.ToRow;
        if (sameOrigin || !sameTarget || PieceAt(position, other.FromFile, other.FromRow) != piece) continue;
        ambiguous = true;
        if (other.FromFile == move.FromFile) {
            sameFile = true;
        } else if (other.FromRow == move.FromRow) {
            sameRank = true;
        }
    }
    const Text from = SquareText(move.FromFile, move.FromRow);
    if (ambiguous && (sameRank || !sameFile)) text += from[0];
    if (ambiguous && sameFile) text += from[1];
    return true;
}

} // namespace

Text LongTextToSan(Rules& rules, const Position& position, const Text& longText, Truth blackToMove) {
    if (IsResultText(longText)) return longText;
    if (longText == u"0-0-0" || longText == u"0-0") {
        Text text = longText;
        std::replace(text.begin(), text.end(), u'0', u'o');
        return text;
    }
    if (longText == u"o-o-o" || longText == u"o-o") return Upper(longText);

    const MoveRec move = LongTextToMove(position, longText);
    const int piece = PieceAt(position, move.FromFile, move.FromRow);
    const Text target = SquareText(move.ToFile, move.ToRow);
    const Text capture = Contains(longText, u"x") ? u"x" : u"";
    if (IsPieceKind(piece, Pawn)) {
        const Text promotion = Contains(longText, u"=") ? u"=" + PieceLetter(move.Promote) : Text();
        if (capture.empty()) return target + promotion;
        return SquareText(move.FromFile, move.FromRow).substr(0, 1) + u"x" + target + promotion;
    }
    if (IsPieceKind(piece, King)) return u"K" + capture + target;
    Text origin;
    if (piece == NoPiece || !Disambiguation(rules, position, move, blackToMove, origin)) return {};
    return PieceLetter(piece) + origin + capture + target;
}

Text CheckSuffix(Rules& rules, const Position& position, const Text& longText) {
    if (Contains(longText, u"#") || IsResultText(longText)) return {};
    Position after = position;
    rules.MakeMove(after, LongTextToMoveRec(position, longText));
    const Truth opponent = Not(position.SideToMove);
    if (IsKingAttacked(rules, after, opponent) == False) return {};
    return GenerateMoves(rules, after, opponent).Count == 0 ? u"#" : u"+";
}

} // namespace quarnel::notation
