// Reads the game off the main window's pixels, as a player's eyes do, at each of the eight zooms.
//
// Every square is compared with all pieces on all grounds to the bit, so a wrong pixel inside a square reads as
// nothing. The border of a square, where marks are, is read apart. Positions are pixels in the window, the menu bar
// included.
#pragma once

#include "display/BoardPictures.h"
#include "model/Position.h"
#include "window/WindowDriver.h"

#include <map>

namespace quarnel::xdriver {

enum class SquareMark { None, Origin, Target };
enum class SquareGround { Plain, Check, Mate };

class BoardEye {
  public:
    BoardEye(WindowDriver& driver, WindowId window);

    Truth Flipped = False; ///< Black is at the bottom

    /// Looks again; false while some square shows no piece that there is (a piece is in motion there), or the window
    /// has the size of no zoom.
    bool Look();

    // What the last look saw.

    double Zoom() const { return zoom_; } ///< 1.0 at 100 %
    std::uint8_t Piece(int file, int row) const { return pieces_[row][file]; }
    bool ShowsBoardOf(const Position& position) const;
    SquareMark Mark(Square square) const;
    SquareGround Ground(int file, int row) const { return grounds_[row][file]; }
    bool LowerLight() const { return LightAt(349, 328); }
    bool UpperLight() const { return LightAt(349, 32); }
    /// Whether the toolbar shows its button 0..5.
    bool ShowsButton(int button) const;
    /// Whether the toolbar offers "Back to start": nobody thinks.
    bool Idle() const { return ShowsButton(0); }
    /// The status strip's pixels.
    Surface Strip() const;

    /// A position in the frame, counted at 100 %, as one in the window.
    PixelPoint InWindow(double x, double y) const;
    PixelPoint Middle(Square square) const;
    PixelPoint MiddleOfButton(int button) const;
    int MenuHeight() const { return menuHeight_; }
    /// The middles of the menu bar's captions, left to right.
    std::vector<int> Captions() const;
    /// The colour of a pixel of the frame; black outside of the window.
    Colour At(double x, double y) const;

  private:
    // One piece on one ground, on all squares.
    struct Sample {
        std::uint8_t Piece = NoPiece;
        SquareGround Ground = SquareGround::Plain;
        Surface Frame;
    };

    bool FindZoom();
    const std::vector<Sample>& SamplesOfZoom();
    bool ReadSquare(const std::vector<Sample>& samples, Square square);
    bool LightAt(int x, int y) const;

    WindowDriver& driver_;
    WindowId window_;
    BoardPictures pictures_;
    std::map<double, std::vector<Sample>> samples_; ///< by zoom; made when it is first seen
    Surface picture_;
    double zoom_ = 0;
    int menuHeight_ = 0;
    std::uint8_t pieces_[9][9]{};
    SquareGround grounds_[9][9]{};
};

} // namespace quarnel::xdriver
