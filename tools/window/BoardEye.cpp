#include "window/BoardEye.h"

#include "base/Numbers.h"

#include <cmath>
#include <cstring>

namespace quarnel::xdriver {

namespace {

constexpr int InnerWidth = 361;
constexpr int InnerHeight = 362;
constexpr int WordGap = 6; // pixels: more than between letters or words, less than between captions
constexpr int Border = 6;  // pixels: a mark, and two that stretching mixes with it
constexpr Colour FrameColour = Rgb(89, 0, 0);
constexpr Colour LightSquare = Rgb(209, 160, 120);
constexpr Colour DarkSquare = Rgb(131, 66, 38);
constexpr Colour Light = Rgb(128, 255, 128);
constexpr Colour Toolbar = Rgb(192, 64, 0);
constexpr int ButtonLeft[] = {25, 41, 65, 81, 121, 137};
constexpr int ButtonMiddle = 354;

Colour GroundColour(SquareGround ground, int file, int row) {
    const Colour plain = (file + row) % 2 == 0 ? LightSquare : DarkSquare;
    if (ground == SquareGround::Plain) return plain;
    return ground == SquareGround::Mate ? Rgb(255, 0, 0) : ~plain | 0xFF000000U;
}

} // namespace

BoardEye::BoardEye(WindowDriver& driver, WindowId window) : driver_(driver), window_(window) {
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
    if (!FindZoom()) return false;
    const auto& samples = SamplesOfZoom();
    bool whole = true;
    for (int cell = 0; cell < 64; ++cell) whole = ReadSquare(samples, {cell % 8 + 1, cell / 8 + 1}) && whole;
    return whole;
}

// The window's width tells the zoom, and the frame is what its lower part shows.
bool BoardEye::FindZoom() {
    zoom_ = std::round(4.0 * picture_.Width() / InnerWidth) / 4;
    menuHeight_ = picture_.Height() - RoundHalfEven(InnerHeight * zoom_);
    return zoom_ >= 0.75 && zoom_ <= 2.5 && RoundHalfEven(InnerWidth * zoom_) == picture_.Width() && menuHeight_ > 0 &&
           picture_.At(1, menuHeight_) == FrameColour;
}

std::vector<int> BoardEye::Captions() const {
    std::vector<int> middles;
    int first = 0;
    int last = -WordGap - 1;
    for (int x = 0; x < picture_.Width(); ++x) {
        bool inked = false;
        for (int y = 3; y < menuHeight_ - 3; ++y) inked |= picture_.At(x, y) != picture_.At(x, 2);
        if (!inked) continue;
        if (x - last > WordGap) middles.push_back(first = x);
        middles.back() = (first + x) / 2;
        last = x;
    }
    return middles;
}

const std::vector<BoardEye::Sample>& BoardEye::SamplesOfZoom() {
    auto& samples = samples_[zoom_];
    if (!samples.empty()) return samples;
    for (const SquareGround ground : {SquareGround::Plain, SquareGround::Check, SquareGround::Mate}) {
        for (int piece = 0; piece <= 12; ++piece) {
            if (ground != SquareGround::Plain && piece != King && piece != King + BlackOffset) continue;
            Surface frame(FrameWidth, FrameHeight, FrameColour);
            for (int cell = 0; cell < 64; ++cell) {
                const Square square{cell % 8 + 1, cell / 8 + 1};
                const PixelPoint corner = SquareCorner(square, False);
                Surface content(PieceSize, PieceSize, GroundColour(ground, square.File, square.Row));
                if (piece != NoPiece) DrawPiece(pictures_, content, piece, 0, 0);
                BitBlt(frame, corner.X, corner.Y, PieceSize, PieceSize, content, 0, 0, RasterOp::SrcCopy);
            }
            samples.push_back({static_cast<std::uint8_t>(piece), ground,
                               StretchBlt(frame, FrameWidth, FrameHeight, RoundHalfEven(FrameWidth * zoom_),
                                          RoundHalfEven(FrameHeight * zoom_))});
        }
    }
    return samples;
}

bool BoardEye::ReadSquare(const std::vector<Sample>& samples, Square square) {
    const PixelPoint corner = SquareCorner(square, Flipped);
    const auto first = [&](int edge) { return static_cast<int>(std::ceil((edge + Border) * zoom_)); };
    const auto end = [&](int edge) { return static_cast<int>((edge + PieceSize - Border) * zoom_); };
    for (const Sample& sample : samples) {
        bool same = true;
        for (int y = first(corner.Y); same && y < end(corner.Y); ++y) {
            for (int x = first(corner.X); x < end(corner.X); ++x) {
                same = same && picture_.At(x, y + menuHeight_) == sample.Frame.At(x, y);
            }
        }
        if (!same) continue;
        pieces_[square.Row][square.File] = sample.Piece;
        grounds_[square.Row][square.File] = sample.Ground;
        return true;
    }
    return false;
}

bool BoardEye::ShowsBoardOf(const Position& position) const {
    return std::memcmp(pieces_, position.Board, sizeof pieces_) == 0;
}

SquareMark BoardEye::Mark(Square square) const {
    const PixelPoint corner = SquareCorner(square, Flipped);
    const Colour border = At(corner.X + 2, corner.Y + 2);
    if (border == ColourBlack) return SquareMark::Origin;
    return border == ColourWhite ? SquareMark::Target : SquareMark::None;
}

bool BoardEye::LightAt(int x, int y) const {
    return At(x + 4.5, y + 4.5) == Light;
}

bool BoardEye::ShowsButton(int button) const {
    bool drawn = false;
    for (int x = ButtonLeft[button] + 1; x < ButtonLeft[button] + 15; ++x) drawn |= At(x, ButtonMiddle) != Toolbar;
    return drawn && At(ButtonLeft[2] - 4, ButtonMiddle) == Toolbar;
}

Surface BoardEye::Strip() const {
    const PixelPoint from = InWindow(181, 347);
    Surface strip(static_cast<int>(151 * zoom_), static_cast<int>(14 * zoom_));
    BitBlt(strip, 0, 0, strip.Width(), strip.Height(), picture_, from.X, from.Y, RasterOp::SrcCopy);
    return strip;
}

PixelPoint BoardEye::InWindow(double x, double y) const {
    return {static_cast<int>(x * zoom_), static_cast<int>(y * zoom_) + menuHeight_};
}

Colour BoardEye::At(double x, double y) const {
    const PixelPoint point = InWindow(x, y);
    return point.X < picture_.Width() && point.Y < picture_.Height() ? picture_.At(point.X, point.Y) : 0;
}

PixelPoint BoardEye::Middle(Square square) const {
    const PixelPoint corner = SquareCorner(square, Flipped);
    return InWindow(corner.X + PieceSize / 2.0, corner.Y + PieceSize / 2.0);
}

PixelPoint BoardEye::MiddleOfButton(int button) const {
    return InWindow(ButtonLeft[button] + 8, ButtonMiddle);
}

} // namespace quarnel::xdriver
