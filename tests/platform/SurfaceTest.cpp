#include "platform/Stretch.h"

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
    for (int op = 0; op < 5; ++op)
        for (const int place : {3, -3, 15, 30, -50, 2147483000, -2147483000})
            for (const int size : {5, 40, 0, -4, 2147483647})
                for (const int from : {0, -4, 8, 99}) {
                    check(place, 4, size, 6, from, 2, op);
                    check(3, place, 5, size, 1, from, op);
                }
}

using Grid = std::vector<std::vector<double>>;

// Every row stretched in floating point, from the description of the stretch, and the picture turned over its diagonal.
Grid RowsStretched(const Grid& from, int size) {
    const int n = static_cast<int>(from[0].size());
    const double step = static_cast<double>(n) / size;
    Grid to(static_cast<std::size_t>(size));
    for (const std::vector<double>& row : from) {
        const auto sample = [&](int i) { return row[static_cast<std::size_t>(std::clamp(i, 0, n - 1))]; };
        for (int i = 0; i < size; ++i) {
            const double middle = (i + 0.5) * step - 0.5;
            const int cell = static_cast<int>(std::floor(middle));
            const double t = middle - cell;
            const double a = sample(cell - 1), b = sample(cell), c = sample(cell + 1), d = sample(cell + 2);
            double value = b + 0.5 * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
            if (size <= n) value = 0;
            for (int j = 0; j < n && size <= n; ++j) {
                const double covered = std::min((i + 1) * step, j + 1.0) - std::max(i * step, j + 0.0);
                value += sample(j) * std::max(0.0, covered) / step;
            }
            to[static_cast<std::size_t>(i)].push_back(std::clamp(value, 0.0, 255.0));
        }
    }
    return to;
}

TEST(StretchBlt, FollowsTheSmoothingRuleWithinOneLevel) {
    const int cases[][4] = {{36, 30, 27, 23}, {20, 20, 25, 25}, {20, 20, 50, 50}, {1, 1, 9, 7},
                            {2, 3, 8, 9},     {90, 70, 2, 3},   {12, 40, 30, 11}, {8, 9, 8, 9}};
    for (const auto& [sourceWidth, sourceHeight, width, height] : cases) {
        const Surface source = Pattern(sourceWidth + 3, sourceHeight + 2, 5);
        const Surface result = StretchBlt(source, sourceWidth, sourceHeight, width, height);
        ASSERT_TRUE(result.Width() == width && result.Height() == height);
        for (int shift = 0; shift < 32; shift += 8) {
            const auto channel = [&](const Surface& surface, std::size_t x, std::size_t y) {
                return static_cast<double>(surface.At(static_cast<int>(x), static_cast<int>(y)) >> shift & 0xFF);
            };
            auto grid = Grid(std::size_t(sourceHeight), std::vector<double>(std::size_t(sourceWidth)));
            for (std::size_t y = 0; y < grid.size(); ++y)
                for (std::size_t x = 0; x < grid[y].size(); ++x) grid[y][x] = channel(source, x, y);
            grid = RowsStretched(RowsStretched(grid, width), height);
            for (std::size_t y = 0; y < grid.size(); ++y)
                for (std::size_t x = 0; x < grid[y].size(); ++x)
                    ASSERT_LT(std::abs(grid[y][x] - channel(result, x, y)), 1.0) << width << "x" << height;
        }
    }
}

TEST(StretchBlt, KeepsPlainColoursToTheBitAtEveryZoom) {
    for (const Colour colour : {Rgb(89, 0, 0), Rgb(209, 160, 120), Rgb(131, 66, 38), ColourWhite, 0x01FE8001U})
        for (const int size : {3, 25, 75, 100, 125, 150, 199, 200, 250, 313}) {
            const Surface result = StretchBlt(Surface(100, 100, colour), 100, 100, size, size);
            EXPECT_TRUE(result == Surface(size, size, colour)) << std::hex << colour << " at " << std::dec << size;
        }
}

TEST(Stretcher, KeepsUpWithPartsAsIfAllWereStretchedAnew) {
    const int sizes[][4] = {{36, 30, 27, 23}, {20, 20, 50, 50}, {40, 40, 30, 30}, {8, 9, 8, 9}, {122, 30, 305, 75}};
    for (const auto& [sourceWidth, sourceHeight, width, height] : sizes) {
        Surface source = Pattern(sourceWidth, sourceHeight, 5);
        Stretcher stretcher;
        EXPECT_TRUE(stretcher.SetSizes(sourceWidth, sourceHeight, width, height));
        stretcher.Update(source, {0, 0, sourceWidth, sourceHeight});
        for (int i = 0; i < 12; ++i) {
            const Surface before = stretcher.Result();
            const int left = i * 7 % sourceWidth;
            const int top = i * 5 % sourceHeight;
            const Rectangle part{left, top, std::min(left + 1 + i % 9, sourceWidth), top + 1 + i % 13};
            const Surface change = Pattern(part.Right - left, part.Bottom - top, i);
            BitBlt(source, left, top, change.Width(), change.Height(), change, 0, 0, RasterOp::SrcCopy);
            EXPECT_FALSE(stretcher.SetSizes(sourceWidth, sourceHeight, width, height));
            const Rectangle touched = stretcher.Update(source, part);
            const Surface& result = stretcher.Result();
            ASSERT_TRUE(result == StretchBlt(source, sourceWidth, sourceHeight, width, height));
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const bool inside =
                        x >= touched.Left && x < touched.Right && y >= touched.Top && y < touched.Bottom;
                    ASSERT_TRUE(inside || result.At(x, y) == before.At(x, y)) << x << ", " << y;
                }
        }
        EXPECT_EQ(stretcher.Update(source, {sourceWidth, 0, sourceWidth + 9, 9}), Rectangle());
    }
}

} // namespace
} // namespace quarnel
