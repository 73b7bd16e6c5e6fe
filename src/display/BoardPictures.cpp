#include "display/BoardPictures.h"

#include "base/Step.h"
#include "platform/PictureSurface.h"

namespace quarnel {

namespace {

constexpr int FinishedFrameSize = 800;
constexpr int MarkBorder = 4;

Surface BorderMask() {
    constexpr int Inside = MarkSize - 2 * MarkBorder;
    Surface mask(MarkSize, MarkSize, ColourBlack);
    BitBlt(mask, MarkBorder, MarkBorder, Inside, Inside, Surface(Inside, Inside, ColourWhite), 0, 0, RasterOp::SrcCopy);
    return mask;
}

} // namespace

void LoadDesignedPictures(BoardPictures& pictures) {
    pictures.o_ppic = PictureSurface("o_ppic");
    pictures.m_ppic = PictureSurface("m_ppic");
    pictures.pquad = BorderMask();
    pictures.pquad2 = Surface(MarkSize, MarkSize);
    pictures.buf[0] = Surface(BoardPictureSize, BoardPictureSize);
}

void CreateWorkSurfaces(BoardPictures& pictures) {
    for (std::size_t i = 1; i < pictures.buf.size(); ++i) {
        pictures.buf[i] = Surface(pictures.buf[0].Width(), pictures.buf[0].Height());
    }
    pictures.buf[3] = Surface(FinishedFrameSize, FinishedFrameSize);
}

bool DrawPiece(const BoardPictures& pictures, Surface& target, int piece, int x, int y) {
    const PixelPoint* cell = ElementAt(pictures.PieceImagePos, piece);
    if (cell == nullptr) return false;
    BitBlt(target, x, y, PieceSize, PieceSize, pictures.o_ppic, cell->X, cell->Y, RasterOp::SrcAnd);
    BitBlt(target, x, y, PieceSize, PieceSize, pictures.m_ppic, cell->X, cell->Y, RasterOp::SrcPaint);
    return true;
}

} // namespace quarnel
