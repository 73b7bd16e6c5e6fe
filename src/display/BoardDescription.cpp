#include "display/BoardDescription.h"

#include "display/BoardGeometry.h"

namespace quarnel {

namespace {

Text SquareName(Square square) {
    return Text{static_cast<char16_t>(u'a' + square.File - 1), static_cast<char16_t>(u'0' + 9 - square.Row)};
}

Text PieceName(int piece) {
    static constexpr const char16_t* Names[] = {u"pawn", u"knight", u"bishop", u"rook", u"queen", u"king"};
    if (piece == NoPiece) return u"empty";
    if (IsWhitePiece(piece)) return Text(u"white ") + Names[piece - Pawn];
    if (IsBlackPiece(piece)) return Text(u"black ") + Names[piece - Pawn - BlackOffset];
    return u"unknown piece";
}

} // namespace

std::vector<AccessibleItem> DescribeBoard(const GameState& state, const ControllerState& controller) {
    std::vector<AccessibleItem> items;
    items.reserve(64);
    for (int line = 1; line <= 8; ++line) {
        for (int column = 1; column <= 8; ++column) {
            const Square square = Mirrored({column, line}, state.BoardFlipped);
            const PixelPoint corner = SquareCorner(square, state.BoardFlipped);
            const double z = state.Zoom;
            const int piece = PieceAt(state.CurPos, square.File, square.Row);
            // After a move the selection only marks where it began; the opponent may have come there since.
            const bool selected = square == Square{controller.SelFile, controller.SelRow} && piece != NoPiece &&
                                  IsBlackPiece(piece) != state.ComputerColor;
            items.push_back({SquareName(square) + u", " + PieceName(piece) + (selected ? u", selected" : u""),
                             corner.X * z, corner.Y * z, SquarePitch * z, SquarePitch * z});
        }
    }
    return items;
}

} // namespace quarnel
