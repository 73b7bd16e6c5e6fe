// Reads the game off the main window's pixels, as a player's eyes do; at 100 % zoom.
//
// Every square is compared with all pieces on all grounds to the bit, so a wrong pixel inside a square reads as
// nothing. The 4-pixel border of a square, where marks are, is read apart.
#pragma once

#include "display/BoardPictures.h"
#include "model/Position.h"
#include "support/WindowDriver.h"

namespace quarnel::xdriver {

enum class SquareMark { None, Origin, Target };
enum class SquareGround { Plain, Check, Mate };

class BoardEye {
  public:
    /// `flipped`: Black is at the bottom.
    BoardEye(WindowDriver& driver, WindowId window, Truth flipped = False);

    /// Looks again; false while some square shows no piece that there is (a piece is in motion there).
    bool Look();

    // What the last look saw.

    std::uint8_t Piece(int file, int row) const { return pieces_[row][file]; }
    bool ShowsBoardOf(const Position& position) const;
    SquareMark Mark(Square square) const;
    SquareGround Ground(int file, int row) const { return grounds_[row][file]; }
    bool LowerLight() const { return LightAt(349, 328); }
    bool UpperLight() const { return LightAt(349, 32); }
    /// Whether the toolbar offers "Back to start": nobody thinks, and the board takes moves.
    bool Idle() const;
    /// The status strip's pixels.
    Surface Strip() const;

    /// The middle of the square in the window, the menu bar included.
    PixelPoint Middle(Square square) const;
    int MenuHeight() const { return menuHeight_; }
    const Surface& Picture() const { return picture_; }

  private:
    bool ReadSquare(int file, int row);
    bool LightAt(int x, int y) const;
    Colour At(int x, int y) const { return picture_.At(x, y + menuHeight_); }

    WindowDriver& driver_;
    WindowId window_;
    Truth flipped_;
    BoardPictures pictures_;
    Surface picture_;
    int menuHeight_ = 0;
    std::uint8_t pieces_[9][9]{};
    SquareGround grounds_[9][9]{};
};

} // namespace quarnel::xdriver
