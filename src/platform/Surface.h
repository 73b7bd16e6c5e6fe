// Pictures as pixels in memory, and the raster operations that the board is built from.
//
// A Surface owns its pixels: 32 bits each, 0xAARRGGBB, rows from the top. Board surfaces are opaque;
// only pictures laid over others (toolbar images, skins) use the alpha byte. Everything is clipped at
// every edge and gives the same bits on every platform.
#pragma once

#include <cstdint>
#include <vector>

namespace quarnel {

using Colour = std::uint32_t;

/// An opaque colour; components 0..255.
constexpr Colour Rgb(int red, int green, int blue) {
    return 0xFF000000U | static_cast<Colour>(red) << 16 | static_cast<Colour>(green) << 8 | static_cast<Colour>(blue);
}

inline constexpr Colour ColourBlack = Rgb(0, 0, 0);
inline constexpr Colour ColourWhite = Rgb(255, 255, 255);

/// Left and top included, right and bottom excluded.
struct Rectangle {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
    bool operator==(const Rectangle&) const = default;
};

/// How source and destination combine, colour bits only; the result is opaque.
enum class RasterOp {
    SrcCopy,    ///< source
    SrcAnd,     ///< source AND destination
    SrcPaint,   ///< source OR destination
    MergePaint, ///< NOT source OR destination
    DstInvert,  ///< NOT destination; the source is not looked at
};

class Surface {
  public:
    Surface() = default;
    /// `width` x `height` pixels of `colour`; sizes below 0 count as 0.
    Surface(int width, int height, Colour colour = ColourBlack);

    int Width() const { return width_; }
    int Height() const { return height_; }
    bool Empty() const { return pixels_.empty(); }

    /// Rows of Width() pixels without gaps.
    const Colour* Pixels() const { return pixels_.data(); }
    Colour* Pixels() { return pixels_.data(); }

    /// The pixel at (x, y), which must lie inside.
    Colour At(int x, int y) const { return pixels_[Index(x, y)]; }
    void Set(int x, int y, Colour colour) { pixels_[Index(x, y)] = colour; }

    void Fill(Colour colour);
    bool operator==(const Surface&) const = default;

  private:
    std::size_t Index(int x, int y) const { return static_cast<std::size_t>(y) * width_ + x; }

    int width_ = 0;
    int height_ = 0;
    std::vector<Colour> pixels_;
};

/// Combines the `width` x `height` pixels at (sourceX, sourceY) of `source` into `target` at (x, y).
/// What lies outside either surface is left out. `source` may be `target` when the areas do not overlap.
void BitBlt(Surface& target, int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
            RasterOp operation);

} // namespace quarnel
