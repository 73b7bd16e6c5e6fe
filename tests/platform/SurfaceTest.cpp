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
    const std::function<Colour(Colour, Colour)> rules[] = {
        [](Colour s, Colour) { return s; },       [](Colour s, Colour d) { return s & d; },
        [](Colour s, Colour d) { return s | d; }, [](Colour s, Colour d) { return ~s | d; },
        [](Colour, Colour d) { return ~d; },
    };
    const Surface source = Pattern(13, 11, 1);
    const auto check = [&](int left, int top, int width, int height, int sourceLeft, int sourceTop, int op) {
        Surface target = Pattern(20, 16, 2);
        Surface expected = target;
        for (int i = 0; i < 20 * 16; ++i) {
            const long long column = i % 20LL - left;
            const long long row = i / 20LL - top;
            if (column < 0 || row < 0 || column >= width || row >= height) continue;
            const long long x = sourceLeft + column;
            const long long y = sourceTop + row;
            const bool sourceThere = x >= 0 && y >= 0 && x < source.Width() && y < source.Height();
            if (!sourceThere && static_cast<RasterOp>(op) != RasterOp::DstInvert) continue;
            const Colour s = sourceThere ? source.At(static_cast<int>(x), static_cast<int>(y)) : 0;
            expected.Pixels()[i] = rules[op](s, expected.Pixels()[i]) | 0xFF000000U;
        }
        BitBlt(target, left, top, width, height, source, sourceLeft, sourceTop, static_cast<RasterOp>(op));
        EXPECT_TRUE(target == expected) << op << " at " << left << ", " << sourceLeft << ", " << width;
    };
    for (int op = 0; op < 5; ++op) {
        for (const int place : {3, -3, 15, 30, -50, 2147483000, -2147483000}) {
            for (const int size : {5, 40, 0, -4, 2147483647}) {
                for (const int from : {0, -4, 8, 99}) {
                    check(place, 4, size, 6, from, 2, op);
                    check(3, place, 5, size, 1, from, op);
                }
            }
        }
    }
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
    const struct {
        int SourceWidth, SourceHeight, Width, Height;
    } cases[] = {{36, 30, 27, 23}, {20, 20, 25, 25}, {20, 20, 50, 50}, {1, 1, 9, 7},
                 {2, 3, 8, 9},     {90, 70, 2, 3},   {12, 40, 30, 11}, {8, 9, 8, 9}};
    for (const auto& c : cases) {
        const Surface source = Pattern(c.SourceWidth + 3, c.SourceHeight + 2, 5);
        const Surface result = StretchBlt(source, c.SourceWidth, c.SourceHeight, c.Width, c.Height);
        ASSERT_TRUE(result.Width() == c.Width && result.Height() == c.Height);
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
