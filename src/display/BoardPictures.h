// The off-screen pictures that the board is drawn with, and the drawing of one piece.
//
// One set, owned by Program. Start-up fills it in this order: LoadDesignedPictures(),
// CreateWorkSurfaces(), BoardRenderer::ploca(), BoardRenderer::DrawCoordinates(),
// PieceAnimation::Bitmaps_LoadPieces(). Each picture keeps its contents until overwritten.
#pragma once

#include "display/BoardGeometry.h"
#include "platform/Form.h"
#include "platform/Surface.h"

#include <array>

namespace quarnel {

inline constexpr Colour FrameColour = Rgb(89, 0, 0); ///< the board's border and the status strip
inline constexpr int BoardPictureSize = 400;         ///< width and height of all but buf(3) and the small ones

struct BoardPictures {
    Surface Picture1;           ///< 400 x 400, the bare board; built once by ploca()
    std::array<Surface, 4> buf; ///< 0 composition, 1 scratch background of the loops, 2 the labelled bare
                                ///< board, 3 the last finished frame (its top-left 366 x 366 is shown)
    Surface o_ppic;             ///< 246 x 82, piece images on white: White's row, Black's row, pawn to king
    Surface m_ppic;             ///< the masks; after Bitmaps_LoadPieces() the pieces on black
    Surface pquad;              ///< 41 x 41, marker mask: a black border of 4 pixels around white
    Surface pquad2;             ///< 41 x 41 of one colour: a square's, then the mate marker's red
    std::array<PixelPoint, 17> PieceImagePos{}; ///< a piece code's cell in both sheets
    FontChoice LabelFont{u"Arial", 8.25, true}; ///< the font of buf(0)
};

/// The pictures that exist before start-up does anything: the sheets, the markers and buf(0).
void LoadDesignedPictures(BoardPictures& pictures);

/// Creates buf(1) to buf(3) with the size of buf(0), then sizes buf(3).
void CreateWorkSurfaces(BoardPictures& pictures);

/// Draws `piece` on `target` with its top-left corner at (x, y), the ground around it left as it is.
/// Codes 0 and 13..16 draw the cell at (0, 0); beyond 16 nothing is drawn and the result is false.
bool DrawPiece(const BoardPictures& pictures, Surface& target, int piece, int x, int y);

} // namespace quarnel
