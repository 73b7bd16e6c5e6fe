// Where things are in the frame, the unzoomed picture of the board, and which square a pixel lies on.
//
// Lengths are frame pixels. The display is a grid of 8 x 8 cells (column, line), both 1..8 from the top
// left. Pure functions; any number may be passed.
#pragma once

#include "base/Truth.h"

namespace quarnel {

/// A square (file, row) of the board: file 1..8 is a..h, row 1 is rank 8. Other numbers lie beside it.
struct Square {
    int File = 0;
    int Row = 0;
    bool operator==(const Square&) const = default;
};

struct PixelPoint {
    int X = 0;
    int Y = 0;
    bool operator==(const PixelPoint&) const = default;
};

inline constexpr double BoardScale = 1.0;
inline constexpr int SquareOrigin = 18; ///< left and top of the squares
inline constexpr int SquarePitch = 41;  ///< squares are 41 x 41 and touch
inline constexpr int MarkSize = 41;
inline constexpr int PieceSize = 41;
inline constexpr int FrameWidth = 366;
inline constexpr int FrameHeight = 366;
inline constexpr int PieceLeft = 25;
inline constexpr int PieceLeftTrim = 7;
inline constexpr int PieceTop = 25;
inline constexpr int PieceTopTrim = 7;
inline constexpr int GrabOffset = 22; ///< how far inside a dragged piece's corner the pointer is

/// The cell that shows `square`, and the square that a cell shows: the same rule both ways.
constexpr Square Mirrored(Square square, Truth flipped) {
    return flipped ? Square{9 - square.File, 9 - square.Row} : square;
}

/// The top-left corner of a cell, 41 x 41 pixels, and where the image of the piece in it begins.
constexpr PixelPoint CellCorner(Square cell) {
    return {SquareOrigin + SquarePitch * (cell.File - 1), SquareOrigin + SquarePitch * (cell.Row - 1)};
}
constexpr PixelPoint PieceCorner(Square cell) {
    return {(cell.File - 1) * SquarePitch + PieceLeft - PieceLeftTrim,
            (cell.Row - 1) * SquarePitch + PieceTop - PieceTopTrim};
}

/// The top-left corner of the cell that shows `square`.
constexpr PixelPoint SquareCorner(Square square, Truth flipped) {
    return CellCorner(Mirrored(square, flipped));
}

/// The square at the frame pixel (x, y), rounded down to squares on all sides of the board.
Square SquareAtPixel(double x, double y, Truth flipped);

} // namespace quarnel
