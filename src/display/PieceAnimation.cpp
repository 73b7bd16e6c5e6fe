#include "display/PieceAnimation.h"

#include "base/Numbers.h"
#include "base/Step.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

namespace quarnel {

namespace {

constexpr int MsPerSquare = 50;

// The rectangle that covers a piece's image at two places.
struct DirtyRectangle {
    int Left, Top, Width, Height;
};

Rectangle Bounds(const DirtyRectangle& r) {
    return {r.Left, r.Top, r.Left + r.Width, r.Top + r.Height};
}

void CopyRectangle(Surface& target, const Surface& source, const DirtyRectangle& r) {
    BitBlt(target, r.Left, r.Top, r.Width, r.Height, source, r.Left, r.Top, RasterOp::SrcCopy);
}

// The king's own move in place of the castling record.
void RewriteCastling(MoveRec& move, Truth side) {
    move.FromFile = 5;
    move.ToFile = static_cast<std::uint8_t>(CastleFile(move.Castle));
    move.FromRow = static_cast<std::uint8_t>(CastleRow(side));
    move.ToRow = move.FromRow;
}

// Turns the record's squares round, board to cells and back; false at the first coordinate that has no
// counterpart, and then turning again restores what was turned before it.
bool TurnRound(MoveRec& move) {
    for (std::uint8_t* coordinate : {&move.FromFile, &move.FromRow, &move.ToFile, &move.ToRow}) {
        if (*coordinate > 9) return false;
        *coordinate = static_cast<std::uint8_t>(9 - *coordinate);
    }
    return true;
}

// The board's byte at (file, row); null outside its nine by nine bytes.
const std::uint8_t* SquareByte(const Position& position, int file, int row) {
    const bool inside = file >= 0 && file <= 8 && row >= 0 && row <= 8;
    return inside ? &position.Board[row][file] : nullptr;
}

std::optional<std::int16_t> To16Bits(std::int32_t number) {
    using Limits = std::numeric_limits<std::int16_t>;
    if (number < Limits::min() || number > Limits::max()) return std::nullopt;
    return static_cast<std::int16_t>(number);
}

} // namespace

// A slide in frame pixels: where the image starts and how far it goes.
struct PieceAnimation::Path {
    double FromX, FromY, DeltaX, DeltaY;
};

PieceAnimation::PieceAnimation(GameState& state, ControllerState& controller, BoardPictures& pictures,
                               BoardRenderer& renderer, Form& frmBoard, Desktop& desktop)
    : state_(state), controller_(controller), pictures_(pictures), renderer_(renderer), frmBoard_(frmBoard),
      desktop_(desktop) {}

void PieceAnimation::Bitmaps_LoadPieces() {
    Surface& masks = pictures_.m_ppic;
    BitBlt(masks, 0, 0, masks.Width(), masks.Height(), pictures_.o_ppic, 0, 0, RasterOp::SrcAnd);
    for (int i = 1; i <= 12; ++i) {
        const bool black = i > 6;
        pictures_.PieceImagePos[static_cast<std::size_t>(i)] = {PieceSize * (black ? i - 7 : i - 1),
                                                                black ? PieceSize : 0};
    }
}

void PieceAnimation::AnimateMove(const Position& position, MoveRec& move, Truth NoMarks) {
    if (move.FromFile == move.ToFile && move.FromRow == move.ToRow) return;
    if (move.Castle != NoCastle) RewriteCastling(move, position.SideToMove);
    if (!NoMarks) {
        controller_.SelFile = move.FromFile;
        controller_.SelRow = move.FromRow;
    }
    const bool pieceThere = Slide(position, move, NoMarks);
    if (pieceThere) renderer_.RedrawBoard();
    if (state_.BoardFlipped) TurnRound(move);
}

// Leaves the record in cells if the board is flipped. False when the origin is empty; true when the slide
// is over or has ended at a failure.
bool PieceAnimation::Slide(const Position& position, MoveRec& move, Truth NoMarks) {
    if (state_.BoardFlipped && !TurnRound(move)) return true;
    const PixelPoint from = PieceCorner({move.FromFile, move.FromRow});
    const PixelPoint to = PieceCorner({move.ToFile, move.ToRow});
    const Path path{static_cast<double>(from.X), static_cast<double>(from.Y), static_cast<double>(to.X - from.X),
                    static_cast<double>(to.Y - from.Y)};

    // The background: the frame of the old position without the moving piece.
    auto& buf = pictures_.buf;
    const PixelPoint corner = CellCorner({move.FromFile, move.FromRow});
    renderer_.CopyPicture(buf[1], buf[2]);
    CopyRectangle(buf[0], buf[1], {corner.X, corner.Y, MarkSize, MarkSize});
    CopyRectangle(buf[1], buf[0], {0, 0, FrameWidth, FrameHeight});

    const Square origin = Mirrored({move.FromFile, move.FromRow}, state_.BoardFlipped);
    const std::uint8_t* piece = SquareByte(position, origin.File, origin.Row);
    if (piece == nullptr) return true;
    if (*piece == NoPiece) return false;
    if (!RunSlide(*piece, path)) return true;

    if (!NoMarks) {
        MoveRec onBoard = move;
        if (state_.BoardFlipped && !TurnRound(onBoard)) return true;
        controller_.SelFile = onBoard.FromFile;
        controller_.SelRow = onBoard.FromRow;
        state_.LastMoveFile = onBoard.ToFile;
        state_.LastMoveRow = onBoard.ToRow;
    }
    return true;
}

// Shows the piece on its way, as many steps as the time allows; false at the first failure. The last
// position, the destination, is left to the redraw that follows.
bool PieceAnimation::RunSlide(int piece, const Path& path) {
    auto& buf = pictures_.buf;
    double currentX = path.FromX;
    double currentY = path.FromY;
    double previousX = currentX;
    double previousY = currentY;
    const std::uint32_t start = desktop_.TickCount();
    const double squares = std::max(std::abs(path.DeltaX), std::abs(path.DeltaY)) / PieceSize;
    const auto durationMs = static_cast<std::uint32_t>(squares * MsPerSquare);
    std::uint32_t elapsedMs = 0;
    do {
        const DirtyRectangle dirty{RoundHalfEven(std::min(previousX, currentX)),
                                   RoundHalfEven(std::min(previousY, currentY)),
                                   RoundHalfEven(std::abs(previousX - currentX) + PieceSize),
                                   RoundHalfEven(std::abs(previousY - currentY) + PieceSize)};
        CopyRectangle(buf[0], buf[1], dirty);
        if (!DrawPiece(pictures_, buf[0], piece, RoundHalfEven(currentX), RoundHalfEven(currentY))) return false;
        CopyRectangle(buf[3], buf[0], dirty);
        PresentFrame(desktop_, frmBoard_, pictures_, state_.Zoom, Bounds(dirty));
        AwaitNextPicture(start + elapsedMs, durationMs - elapsedMs);
        previousX = currentX;
        previousY = currentY;
        elapsedMs = std::min(desktop_.TickCount() - start, durationMs);
        currentX = path.FromX + path.DeltaX * elapsedMs / durationMs;
        currentY = path.FromY + path.DeltaY * elapsedMs / durationMs;
    } while (elapsedMs != durationMs);
    return true;
}

// Sleeps until the display is done with the picture shown at `shownMs`, but no longer than `mostMs`; events run
// meanwhile.
void PieceAnimation::AwaitNextPicture(std::uint32_t shownMs, std::uint32_t mostMs) {
    const std::uint32_t pictureMs = std::min(desktop_.PictureMs(), mostMs);
    if (pictureMs == 0) return;
    for (std::uint32_t passed = desktop_.TickCount() - shownMs; passed < pictureMs;
         passed = desktop_.TickCount() - shownMs) {
        desktop_.WaitEventFor(pictureMs - passed);
        desktop_.ProcessEvents();
    }
}

void PieceAnimation::MovePiece(PointerButton, int, float x, float y) {
    renderer_.RedrawBoard();
    if (controller_.FloatPiece == 0) return;
    controller_.DragX = RoundHalfEven(x - GrabOffset);
    controller_.DragY = RoundHalfEven(y - GrabOffset);
    KeepDragPosition();
    renderer_.CopyPicture(pictures_.buf[1], pictures_.buf[0]);
    while (controller_.FloatPiece != 0) {
        controller_.DragX = controller_.CurrentX;
        controller_.DragY = controller_.CurrentY;
        const bool moved = controller_.DragX != controller_.DragLastX || controller_.DragY != controller_.DragLastY;
        if (moved) {
            DrawDragged();
        } else {
            // Nothing but a window event can move the pointer or drop the piece.
            desktop_.WaitEvent();
        }
        desktop_.ProcessEvents();
    }
    renderer_.RedrawBoard();
}

// Shows the dragged piece at (DragX, DragY) and takes it out of the background again.
void PieceAnimation::DrawDragged() {
    auto& buf = pictures_.buf;
    ControllerState& c = controller_;
    DrawPiece(pictures_, buf[1], c.FloatPiece, c.DragX - GrabOffset, c.DragY - GrabOffset);
    const DirtyRectangle dirty{std::min<std::int32_t>(c.DragX, c.DragLastX) - GrabOffset,
                               std::min<std::int32_t>(c.DragY, c.DragLastY) - GrabOffset,
                               PieceSize + std::abs(c.DragX - c.DragLastX),
                               PieceSize + std::abs(c.DragY - c.DragLastY)};
    KeepDragPosition();
    CopyRectangle(buf[3], buf[1], dirty);
    PresentFrame(desktop_, frmBoard_, pictures_, state_.Zoom, Bounds(dirty));
    CopyRectangle(buf[1], buf[0], {c.DragX - GrabOffset, c.DragY - GrabOffset, PieceSize, PieceSize});
}

void PieceAnimation::KeepDragPosition() {
    Step(To16Bits(controller_.DragX), [this](std::int16_t x) { controller_.DragLastX = x; });
    Step(To16Bits(controller_.DragY), [this](std::int16_t y) { controller_.DragLastY = y; });
}

} // namespace quarnel
