#include "platform/Surface.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace quarnel {
namespace {

// A picture in which every pixel differs from its neighbours, alpha included.
Surface Pattern(int width, int height, std::uint32_t seed) {
    Surface surface(width, height);
    std::uint32_t value = seed;
    for (int i = 0; i < width * height; ++i) {
        value = value * 1664525U + 1013904223U;
        surface.Pixels()[i] = value ^ value >> 13;
    }
    return surface;
}

int Channel(Colour pixel, int channel) {
    return static_cast<int>(pixel >> (8 * channel) & 0xFF);
}

TEST(BitBlt, CombinesAndClipsLikeThePixelByPixelRule) {
    struct Blit {
        int X, Y, Width, Height, SourceX, SourceY;
    };
    const Blit blits[] = {
        {3, 4, 5, 6, 1, 2},
        {0, 0, 20, 16, 0, 0},
        {-2, -3, 10, 10, 0, 0},
        {15, 12, 10, 10, 0, 0},
        {2, 2, 10, 10, -4, -1},
        {2, 2, 10, 10, 8, 7},
        {-3, 1, 40, 40, -5, 2},
        {30, 30, 5, 5, 0, 0},
        {1, 1, 0, 5, 0, 0},
        {1, 1, -4, 5, 0, 0},
        {-50, 0, 10, 5, 0, 0},
        {1, 1, 4, 4, 99, 0},
        {2147483000, 0, 2147483000, 9, 0, 0},
        {-2147483000, 0, 2147483647, 9, 0, 0},
    };
    const std::function<Colour(Colour, Colour)> rules[] = {
        [](Colour s, Colour) { return s; },       [](Colour s, Colour d) { return s & d; },
        [](Colour s, Colour d) { return s | d; }, [](Colour s, Colour d) { return ~s | d; },
        [](Colour, Colour d) { return ~d; },
    };
    const Surface source = Pattern(13, 11, 1);
    for (const Blit& b : blits) {
        for (int op = 0; op < 5; ++op) {
            Surface target = Pattern(20, 16, 2);
            Surface expected = target;
            for (int y = 0; y < expected.Height(); ++y) {
                for (int x = 0; x < expected.Width(); ++x) {
                    const long long column = static_cast<long long>(x) - b.X;
                    const long long row = static_cast<long long>(y) - b.Y;
                    if (column < 0 || row < 0 || column >= b.Width || row >= b.Height) continue;
                    const long long sx = b.SourceX + column;
                    const long long sy = b.SourceY + row;
                    const bool sourceThere = sx >= 0 && sy >= 0 && sx < source.Width() && sy < source.Height();
                    if (!sourceThere && static_cast<RasterOp>(op) != RasterOp::DstInvert) continue;
                    const Colour s = sourceThere ? source.At(static_cast<int>(sx), static_cast<int>(sy)) : 0;
                    expected.Set(x, y, rules[op](s, expected.At(x, y)) | 0xFF000000U);
                }
            }
            BitBlt(target, b.X, b.Y, b.Width, b.Height, source, b.SourceX, b.SourceY, static_cast<RasterOp>(op));
            EXPECT_TRUE(target == expected) << "operation " << op << " at " << b.X << "," << b.Y;
        }
    }
}

TEST(BitBlt, MovesAPartOfASurfaceInsideItself) {
    Surface surface = Pattern(10, 4, 3);
    const Surface before = surface;
    BitBlt(surface, 6, 1, 4, 3, surface, 0, 0, RasterOp::SrcCopy);
    EXPECT_EQ(surface.At(6, 1), before.At(0, 0) | 0xFF000000U);
    EXPECT_EQ(surface.At(9, 3), before.At(3, 2) | 0xFF000000U);
    EXPECT_EQ(surface.At(5, 3), before.At(5, 3));
}

TEST(Surface, CountsNegativeSizesAsNone) {
    const Surface surface(-3, 5);
    EXPECT_EQ(surface.Width(), 0);
    EXPECT_EQ(surface.Height(), 5);
    EXPECT_TRUE(surface.Empty());
}

// The stretch along one axis, in floating point, from its description.
std::vector<double> Stretched(const std::vector<double>& from, int size) {
    const int n = static_cast<int>(from.size());
    const double step = static_cast<double>(n) / size;
    const auto sample = [&](int i) { return from[static_cast<std::size_t>(std::clamp(i, 0, n - 1))]; };
    std::vector<double> to;
    for (int i = 0; i < size; ++i) {
        double value = 0;
        if (size <= n) {
            for (int j = 0; j < n; ++j) {
                value +=
                    sample(j) * std::max(0.0, std::min((i + 1) * step, j + 1.0) - std::max(i * step, j + 0.0)) / step;
            }
        } else {
            const double middle = (i + 0.5) * step - 0.5;
            const int cell = static_cast<int>(std::floor(middle));
            const double t = middle - cell;
            const double a = sample(cell - 1), b = sample(cell), c = sample(cell + 1), d = sample(cell + 2);
            value = b + 0.5 * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
        }
        to.push_back(std::clamp(value, 0.0, 255.0));
    }
    return to;
}

TEST(StretchBlt, FollowsTheSmoothingRuleWithinOneLevel) {
    struct Case {
        int SourceWidth, SourceHeight, Width, Height;
    };
    // The last ones: one sample, shrinking by far, both directions at once.
    for (const Case& c : {Case{36, 30, 27, 23}, Case{20, 20, 25, 25}, Case{20, 20, 50, 50}, Case{1, 1, 9, 7},
                          Case{2, 3, 8, 9}, Case{90, 70, 2, 3}, Case{12, 40, 30, 11}}) {
        const Surface source = Pattern(c.SourceWidth + 3, c.SourceHeight + 2, 5);
        const Surface result = StretchBlt(source, c.SourceWidth, c.SourceHeight, c.Width, c.Height);
        ASSERT_EQ(result.Width(), c.Width);
        ASSERT_EQ(result.Height(), c.Height);
        double worst = 0;
        for (int channel = 0; channel < 4; ++channel) {
            std::vector<std::vector<double>> rows;
            for (int y = 0; y < c.SourceHeight; ++y) {
                std::vector<double> row;
                row.reserve(static_cast<std::size_t>(c.SourceWidth));
                for (int x = 0; x < c.SourceWidth; ++x) row.push_back(Channel(source.At(x, y), channel));
                rows.push_back(Stretched(row, c.Width));
            }
            for (int x = 0; x < c.Width; ++x) {
                std::vector<double> column;
                column.reserve(rows.size());
                for (const auto& row : rows) column.push_back(row[static_cast<std::size_t>(x)]);
                const std::vector<double> expected = Stretched(column, c.Height);
                for (int y = 0; y < c.Height; ++y) {
                    const double difference = expected[static_cast<std::size_t>(y)] - Channel(result.At(x, y), channel);
                    worst = std::max(worst, std::abs(difference));
                }
            }
        }
        EXPECT_LT(worst, 1.0) << c.SourceWidth << "x" << c.SourceHeight << " to " << c.Width << "x" << c.Height;
    }
}

TEST(StretchBlt, CopiesExactlyAtTheSameSize) {
    const Surface source = Pattern(11, 9, 7);
    const Surface result = StretchBlt(source, 8, 9, 8, 9);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 8; ++x) ASSERT_EQ(result.At(x, y), source.At(x, y));
    }
}

TEST(StretchBlt, KeepsPlainColoursToTheBitAtEveryZoom) {
    for (const Colour colour :
         {Rgb(89, 0, 0), Rgb(209, 160, 120), Rgb(131, 66, 38), ColourWhite, ColourBlack, 0x01FE8001U}) {
        for (const int size : {3, 25, 75, 100, 125, 150, 199, 200, 250, 313}) {
            const Surface result = StretchBlt(Surface(100, 100, colour), 100, 100, size, size);
            const auto* end = result.Pixels() + size * size;
            EXPECT_EQ(std::count(result.Pixels(), end, colour), size * size)
                << std::hex << colour << " at " << std::dec << size;
        }
    }
}

} // namespace
} // namespace quarnel
