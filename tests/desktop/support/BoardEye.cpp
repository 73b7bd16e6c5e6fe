#include "support/BoardEye.h"

#include <cstring>

namespace quarnel::xdriver {

namespace {

constexpr int InnerWidth = 361;
constexpr int InnerHeight = 362;
constexpr int Border = 4;
constexpr Colour LightSquare = Rgb(209, 160, 120);
constexpr Colour DarkSquare = Rgb(131, 66, 38);
constexpr Colour Light = Rgb(128, 255, 128);

Colour GroundColour(SquareGround ground, int file, int row) {
    const Colour plain = (file + row) % 2 == 0 ? LightSquare : DarkSquare;
    switch (ground) {
    case SquareGround::Check:
        return ~plain | 0xFF000000U;
    case SquareGround::Mate:
        return Rgb(255, 0, 0);
    default:
        return plain;
    }
}

} // namespace

BoardEye::BoardEye(WindowDriver& driver, WindowId window, Truth flipped)
    : driver_(driver), window_(window), flipped_(flipped) {
    LoadDesignedPictures(pictures_);
    BitBlt(pictures_.m_ppic, 0, 0, pictures_.m_ppic.Width(), pictures_.m_ppic.Height(), pictures_.o_ppic, 0, 0,
           RasterOp::SrcAnd);
    for (int code = 1; code <= 12; ++code) {
        pictures_.PieceImagePos[static_cast<std::size_t>(code)] = {PieceSize * ((code - 1) % 6),
                                                                   code > 6 ? PieceSize : 0};
    }
}

bool BoardEye::Look() {
    picture_ = driver_.GrabWindow(window_);
    menuHeight_ = picture_.Height() - InnerHeight;
    if (picture_.Width() != InnerWidth || menuHeight_ < 0) return false;
    bool whole = true;
    for (int row = 1; row <= 8; ++row) {
        for (int file = 1; file <= 8; ++file) whole = ReadSquare(file, row) && whole;
    }
    return whole;
}

bool BoardEye::ReadSquare(int file, int row) {
    const PixelPoint corner = SquareCorner({file, row}, flipped_);
    for (const SquareGround ground : {SquareGround::Plain, SquareGround::Check, SquareGround::Mate}) {
        const Colour colour = GroundColour(ground, file, row);
        for (int piece = 0; piece <= 12; ++piece) {
            Surface expected(PieceSize, PieceSize, colour);
            if (piece != NoPiece) DrawPiece(pictures_, expected, piece, 0, 0);
            bool same = true;
            for (int y = Border; same && y < PieceSize - Border; ++y) {
                for (int x = Border; same && x < PieceSize - Border; ++x) {
                    same = (At(corner.X + x, corner.Y + y) ^ expected.At(x, y)) << 8 == 0;
                }
            }
            if (!same) continue;
            pieces_[row][file] = static_cast<std::uint8_t>(piece);
            grounds_[row][file] = ground;
            return true;
        }
    }
    return false;
}

bool BoardEye::ShowsBoardOf(const Position& position) const {
    return std::memcmp(pieces_, position.Board, sizeof pieces_) == 0;
}

SquareMark BoardEye::Mark(Square square) const {
    const PixelPoint corner = SquareCorner(square, flipped_);
    const Colour left = At(corner.X + 1, corner.Y + 1) << 8;
    if (left == ColourBlack << 8) return SquareMark::Origin;
    return left == ColourWhite << 8 ? SquareMark::Target : SquareMark::None;
}

bool BoardEye::LightAt(int x, int y) const {
    return (At(x + 4, y + 4) ^ Light) << 8 == 0;
}

bool BoardEye::Idle() const {
    constexpr Colour toolbar = Rgb(192, 64, 0);
    for (int x = 26; x < 40; ++x) {
        if ((At(x, 354) ^ toolbar) << 8 != 0) return true;
    }
    return false;
}

Surface BoardEye::Strip() const {
    Surface strip(153, 16);
    BitBlt(strip, 0, 0, strip.Width(), strip.Height(), picture_, 180, 346 + menuHeight_, RasterOp::SrcCopy);
    return strip;
}

PixelPoint BoardEye::Middle(Square square) const {
    const PixelPoint corner = SquareCorner(square, flipped_);
    return {corner.X + PieceSize / 2, corner.Y + PieceSize / 2 + menuHeight_};
}

} // namespace quarnel::xdriver
