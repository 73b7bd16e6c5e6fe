#include "notation/LongText.h"

#include <algorithm>
#include <array>

namespace quarnel::notation {

namespace {

// Two double acute accents around a hyphen: byte 0xBD in the Central European code page, which a
// Western one shows as a half.
constexpr TextView DrawToken = u"\u02DD-\u02DD";

struct ResultCode {
    TextView Token;
    std::uint8_t Promote;
};

constexpr std::array<ResultCode, 7> ResultCodes{
    {{u"1-0", 250}, {u"0-1", 251}, {u"1/2-1/2", 251}, {u"1/2", 251}, {DrawToken, 251}, {u"-", 252}, {u"*", 0}}};

const ResultCode* FindResult(TextView text) {
    const auto* found = std::find_if(ResultCodes.begin(), ResultCodes.end(),
                                     [&](const ResultCode& result) { return result.Token == text; });
    return found == ResultCodes.end() ? nullptr : found;
}

// The row of a rank digit: 1..8, or 9 for a character that is none.
int RowOf(char16_t digit) {
    return 9 - PositionIn(u"12345678", digit);
}

} // namespace

Text PieceLetter(int piece) {
    if (piece < 1 || piece > 2 * BlackOffset) return {};
    return Text(1, PieceLetters[static_cast<std::size_t>((piece - 1) % BlackOffset)]);
}

Text SquareText(int file, int row) {
    Text text;
    if (file >= 1 && file <= 8) text += FileLetters[static_cast<std::size_t>(file - 1)];
    return text + ToText(9 - row);
}

bool IsResultText(TextView text) {
    return FindResult(text) != nullptr;
}

MoveRec ResultToMoveRec(TextView text) {
    MoveRec move{};
    if (const ResultCode* result = FindResult(text)) move.Promote = result->Promote;
    return move;
}

Text MoveToLongText(const Position& position, const MoveRec& move) {
    if (move.Castle == KingSide) return u"o-o";
    if (move.Castle == QueenSide) return u"o-o-o";
    if (move.Castle != NoCastle) return {};

    const bool onBoard = move.ToFile <= 8 && move.ToRow <= 8;
    const bool occupied = onBoard && PieceAt(position, move.ToFile, move.ToRow) != NoPiece;
    Text text = SquareText(move.FromFile, move.FromRow);
    text += occupied || move.EpCapFile != 0 ? u"x" : u"-";
    text += SquareText(move.ToFile, move.ToRow);
    if (move.Promote != NoPiece) text += u"=" + PieceLetter(move.Promote);
    return text;
}

MoveRec LongTextToMove(const Position& position, TextView longText) {
    MoveRec move{};
    const bool black = position.SideToMove != White;
    const bool kingSide = longText == u"0-0" || longText == u"o-o";
    if (kingSide || longText == u"0-0-0" || longText == u"o-o-o") {
        move.Castle = kingSide ? KingSide : QueenSide;
        move.FromFile = 5;
        move.FromRow = static_cast<std::uint8_t>(CastleRow(position.SideToMove));
        return move;
    }
    if (longText.size() < 5) return {};
    const int fromFile = PositionIn(FileLetters, longText[0]);
    const int fromRow = RowOf(longText[1]);
    const int toFile = PositionIn(FileLetters, longText[3]);
    const int toRow = RowOf(longText[4]);
    if (IsOffBoard(fromFile, fromRow) || IsOffBoard(toFile, toRow)) return {};
    move.FromFile = static_cast<std::uint8_t>(fromFile);
    move.FromRow = static_cast<std::uint8_t>(fromRow);
    move.ToFile = static_cast<std::uint8_t>(toFile);
    move.ToRow = static_cast<std::uint8_t>(toRow);

    if (longText[2] == u'x' && PieceAt(position, toFile, toRow) == NoPiece) {
        move.EpCapFile = move.ToFile;
        if (toRow == 3) move.EpCapRow = 4;
        if (toRow == 6) move.EpCapRow = 5;
    }
    if (Contains(longText, u"=") && longText.size() >= 7) {
        const int letter = PositionIn(PieceLetters, longText[6]);
        move.Promote = static_cast<std::uint8_t>(letter + (black ? BlackOffset : 0));
    }
    return move;
}

MoveRec LongTextToMoveRec(const Position& position, TextView longText) {
    const bool token = IsResultText(longText) && longText != u"*";
    return token ? ResultToMoveRec(longText) : LongTextToMove(position, longText);
}

} // namespace quarnel::notation
