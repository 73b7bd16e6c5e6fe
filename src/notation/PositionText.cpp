#include "notation/PositionText.h"

#include <algorithm>
#include <cstring>

namespace quarnel::notation {

namespace {

constexpr TextView PieceLetters = u"PNBRQKpnbrqkVvDd";
constexpr TextView PieceLettersSmall = u"pnbrqkvd";
constexpr TextView FileLetters = u"abcdefgh";
constexpr int Squares = 64;

// The character at the 1-based position `i`, or 0 outside the text.
char16_t CharacterAt(TextView text, std::size_t i) {
    return i >= 1 && i <= text.size() ? text[i - 1] : u'\0';
}

void PutSquare(Position& position, int square, int piece) {
    if (square < Squares) PieceAt(position, square % 8 + 1, square / 8 + 1) = static_cast<std::uint8_t>(piece);
}

// Fills the board and returns the 1-based position of the character at which the walk stopped.
std::size_t ReadPlacement(TextView text, Position& position) {
    int square = 0;
    std::size_t i = 1;
    for (; i <= text.size() && square < Squares; ++i) {
        const char16_t c = CharacterAt(text, i);
        if (PositionIn(PieceLettersSmall, Lower(TextView(&c, 1))[0]) != 0) {
            PutSquare(position, square++, PositionIn(PieceLetters, c));
        } else if (c >= u'1' && c <= u'8') {
            for (int run = c - u'0'; run > 0; --run) PutSquare(position, square++, NoPiece);
        }
    }
    return i;
}

std::uint8_t ReadRights(TextView field, TextView both, TextView king, TextView queen) {
    if (Contains(field, both)) return 3;
    if (Contains(field, king)) return 1;
    return Contains(field, queen) ? 2 : 0;
}

Text Rights(std::uint8_t rights, TextView both) {
    switch (rights) {
    case 1:
        return Text(both.substr(0, 1));
    case 2:
        return Text(both.substr(1, 1));
    case 3:
        return Text(both);
    default:
        return {};
    }
}

Text RowText(const Position& position, int row) {
    Text text;
    for (int file = 1; file <= 8;) {
        int run = 0;
        for (; file <= 8 && PieceAt(position, file, row) == NoPiece; ++file) ++run;
        if (run > 0) text += ToText(run);
        if (file <= 8) {
            const std::size_t code = PieceAt(position, file++, row);
            if (code <= PieceLetters.size()) text += PieceLetters[code - 1];
        }
    }
    return text;
}

} // namespace

void FenToPosition(Text& text, Position& position) {
    std::memset(position.Board, 0, sizeof position.Board);
    std::size_t i = ReadPlacement(text, position) + 1;
    position.SideToMove = White;
    position.EpFile = 0;
    position.WhiteCastle = 0;
    position.BlackCastle = 0;

    if (CharacterAt(text, i) == u'b') position.SideToMove = Black;
    i += 2;
    const std::size_t blank = i <= text.size() ? text.find(u' ', i - 1) : Text::npos;
    if (blank == Text::npos) {
        text = PositionToFen(position);
        return;
    }
    const TextView castling = TextView(text).substr(i - 1, blank - (i - 1));
    position.WhiteCastle = ReadRights(castling, u"KQ", u"K", u"Q");
    position.BlackCastle = ReadRights(castling, u"kq", u"k", u"q");

    // A dash is no file letter, so it needs no case of its own.
    const char16_t file = CharacterAt(text, blank + 2);
    position.EpFile = static_cast<std::uint8_t>(PositionIn(FileLetters, file));
}

Text PositionToFen(const Position& position) {
    Text text;
    for (int row = 1; row <= 8; ++row) {
        text += RowText(position, row);
        text += row < 8 ? u"/" : u" ";
    }
    const bool black = position.SideToMove != White;
    text += black ? u"b " : u"w ";

    text += Rights(position.WhiteCastle, u"KQ");
    text += Rights(position.BlackCastle, u"kq");
    if (position.WhiteCastle == 0 && position.BlackCastle == 0) text += u"-";
    text += u" ";

    if (position.EpFile == 0) {
        text += u"-";
    } else {
        text += FileLetters.substr(std::min<std::size_t>(position.EpFile - 1U, 8), 1);
        text += black ? u"3" : u"6";
    }
    return text + u" 0 1";
}

} // namespace quarnel::notation
