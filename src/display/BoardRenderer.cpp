#include "display/BoardRenderer.h"

#include "base/Numbers.h"

#include <cmath>
#include <optional>

namespace quarnel {

namespace {

constexpr Colour LightSquare = Rgb(209, 160, 120);
constexpr Colour DarkSquare = Rgb(131, 66, 38);
constexpr Colour MateColour = Rgb(255, 0, 0);

char16_t LastCharacter(const Text& text) {
    return text.empty() ? u'\0' : text.back();
}

// The first square that holds `piece`, looking file by file from h1 to a8.
std::optional<Square> FindPiece(const Position& position, int piece) {
    for (int file = 8; file >= 1; --file) {
        for (int row = 8; row >= 1; --row) {
            if (PieceAt(position, file, row) == piece) return Square{file, row};
        }
    }
    return std::nullopt;
}

// A board turned round while a piece is in motion must keep the background of that motion.
void SizeLike(Surface& surface, const Surface& model) {
    const bool same = surface.Width() == model.Width() && surface.Height() == model.Height();
    if (!same) surface = Surface(model.Width(), model.Height());
}

} // namespace

void PresentFrame(Desktop& desktop, Form& frmBoard, const BoardPictures& pictures, float zoom,
                  const Rectangle& changed) {
    desktop.Present(frmBoard, pictures.buf[3],
                    {FrameWidth, FrameHeight, RoundHalfEven(FrameWidth * zoom), RoundHalfEven(FrameHeight * zoom)},
                    changed);
    desktop.ProcessEvents();
}

BoardRenderer::BoardRenderer(GameState& state, ControllerState& controller, BoardPictures& pictures,
                             StatusStrip& status, Form& frmBoard, Desktop& desktop)
    : state_(state), controller_(controller), pictures_(pictures), status_(status), frmBoard_(frmBoard),
      desktop_(desktop) {}

void BoardRenderer::LoadBoard_S() {
    pictures_.LabelFont.Points = 9 * BoardScale;
}

void BoardRenderer::ploca() {
    pictures_.Picture1 = Surface(BoardPictureSize, BoardPictureSize, FrameColour);
    bool light = true;
    for (int column = 1; column <= 8; ++column) {
        for (int line = 1; line <= 8; ++line) {
            pictures_.pquad2.Fill(light ? LightSquare : DarkSquare);
            const PixelPoint corner = CellCorner({column, line});
            BitBlt(pictures_.Picture1, corner.X, corner.Y, PieceSize, PieceSize, pictures_.pquad2, 0, 0,
                   RasterOp::SrcCopy);
            light = !light;
        }
        light = !light;
    }
    pictures_.pquad2.Fill(MateColour);
}

void BoardRenderer::DrawCoordinates() {
    auto& buf = pictures_.buf;
    buf[0] = pictures_.Picture1;
    const TextView letters = state_.BoardFlipped ? u"HGFEDCBA" : u"ABCDEFGH";
    const TextView digits = state_.BoardFlipped ? u"87654321" : u"12345678";
    const auto draw = [&](int x, int y, char16_t character) {
        desktop_.DrawText(buf[0], RoundHalfEven(x * BoardScale), RoundHalfEven(y * BoardScale), Text(1, character),
                          pictures_.LabelFont, ColourWhite);
    };
    for (int k = 0; k < 8; ++k) {
        draw(7, 32 + (7 - k) * SquarePitch, digits[static_cast<std::size_t>(k)]);
        draw(35 + k * SquarePitch, 3, letters[static_cast<std::size_t>(k)]);
    }
    SizeLike(buf[1], buf[0]);
    SizeLike(buf[2], buf[0]);
    CopyPicture(buf[2], buf[0]);
}

void BoardRenderer::CopyPicture(Surface& destination, const Surface& source) {
    BitBlt(destination, 0, 0, destination.Width(), destination.Height(), source, 0, 0, RasterOp::SrcCopy);
}

void BoardRenderer::RedrawBoard() {
    Truth hide = False;
    DrawBoard(state_.CurPos, hide);
}

void BoardRenderer::DrawBoard(const Position& position, Truth& hide) {
    auto& buf = pictures_.buf;
    if (controller_.FloatPiece != 0) hide = True;
    CopyPicture(buf[0], buf[2]);
    MarkKingInCheck();
    // White under the pieces, so that only its border shows beside one.
    if (state_.LastMoveFile > 0 && state_.ShowLastMove != 0) {
        MarkSquare(state_.LastMoveFile, state_.LastMoveRow, pictures_.pquad, RasterOp::MergePaint);
    }
    DrawPieces(position, hide);
    // Black over the pieces.
    if (controller_.SelFile != 0) {
        MarkSquare(controller_.SelFile, controller_.SelRow, pictures_.pquad, RasterOp::SrcAnd);
    }
    BitBlt(buf[3], 0, 0, FrameWidth, FrameHeight, buf[0], 0, 0, RasterOp::SrcCopy);
    PresentFrame(desktop_, frmBoard_, pictures_, state_.Zoom);
}

void BoardRenderer::DrawPieces(const Position& position, Truth hide) {
    for (int column = 1; column <= 8; ++column) {
        for (int line = 1; line <= 8; ++line) {
            const Square square = Mirrored({column, line}, state_.BoardFlipped);
            const int piece = PieceAt(position, square.File, square.Row);
            if (piece == NoPiece) continue;
            if (hide && square == Square{controller_.SelFile, controller_.SelRow}) continue;
            const PixelPoint corner = PieceCorner({column, line});
            DrawPiece(pictures_, pictures_.buf[0], piece, corner.X, corner.Y);
        }
    }
}

void BoardRenderer::MarkSquare(int file, int row, const Surface& mark, RasterOp operation) {
    const PixelPoint corner = SquareCorner({file, row}, state_.BoardFlipped);
    BitBlt(pictures_.buf[0], corner.X, corner.Y, MarkSize, MarkSize, mark, 0, 0, operation);
}

void BoardRenderer::MarkKingInCheck() {
    const char16_t sign = LastCharacter(status_.mdis.Caption);
    if (sign != u'+' && sign != u'#') return;
    const int king = IsEven(state_.PlyNow) ? King : King + BlackOffset;
    const auto square = FindPiece(state_.CurPos, king);
    if (!square) return;
    MarkSquare(square->File, square->Row, pictures_.pquad2, sign == u'+' ? RasterOp::DstInvert : RasterOp::SrcCopy);
}

void BoardRenderer::ShowMoveText(const Text& text) {
    status_.mdis.Caption = u"Move: " + text;
    frmBoard_.Announce(status_.mdis.Caption);
    if (LastCharacter(text) == u'#') {
        status_.Picture4[0].Visible = false;
        status_.Picture4[1].Visible = false;
        return;
    }
    const int humanParity = state_.ComputerColor == Black ? 0 : 1;
    const bool lower = state_.PlyNow % 2 == humanParity;
    status_.Picture4[0].Visible = lower;
    status_.Picture4[1].Visible = !lower;
}

void BoardRenderer::FlipBoard() {
    state_.BoardFlipped = Not(state_.BoardFlipped);
    DrawCoordinates();
    RedrawBoard();
}

bool BoardRenderer::BoardBorder(float x, float y) const {
    if (controller_.FloatPiece != 0) return false;
    return std::abs(x - 219 * BoardScale) >= 200 * BoardScale || std::abs(y - 216 * BoardScale) >= 200 * BoardScale;
}

} // namespace quarnel
