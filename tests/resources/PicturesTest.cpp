// The pictures keep the promises that drawing relies on: the piece sheets and their masks, slices and sizes. The
// message box's corners are held to its outline where the box is tested.
#include "Pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace quarnel {
namespace {

constexpr std::uint32_t White = 0xFFFFFFFF;
constexpr int CellSize = 41;

std::uint32_t At(const EmbeddedPicture& picture, int x, int y) {
    return picture.pixels[y * picture.width + x];
}

TEST(Pictures, AreFoundByTheirWholeNamesAndHaveTheirSizes) {
    for (const char* name : {"", "o_ppi", "o_ppic.png", "O_ppic", "zzz"}) EXPECT_EQ(FindPicture(name), nullptr) << name;
    for (const EmbeddedPicture& picture : AllPictures()) EXPECT_EQ(FindPicture(picture.name), &picture);
    const std::tuple<const char*, int, int> cases[] = {
        {"o_ppic", 246, 82}, {"m_ppic", 246, 82}, {"pic_Buttons", 144, 24}, {"Ok_Over", 81, 25}, {"Ok_Press", 81, 25}};
    for (const auto& [name, width, height] : cases) {
        EXPECT_EQ(std::pair(FindPicture(name)->width, FindPicture(name)->height), std::pair(width, height)) << name;
    }
    for (int button = 0; button < 6; ++button) {
        for (const int size : {12, 16, 20, 24, 28, 32, 36, 40, 64, 80}) {
            const auto& picture = *FindPicture("poke" + std::to_string(button) + "_" + std::to_string(size));
            ASSERT_EQ(std::pair(picture.width, picture.height), std::pair(size, size)) << picture.name;
            const auto drawn =
                std::count_if(picture.pixels, picture.pixels + size * size, [](auto pixel) { return pixel >> 31; });
            EXPECT_TRUE(drawn > size * size / 8 && drawn < size * size / 2) << picture.name;
        }
    }
}

// A piece is drawn by its mask; a white one on a light square is told from it by its dark outline alone.
TEST(PieceSheets, EveryPieceIsGreyWithADarkOutlineAmidItsCellAndWhiteAround) {
    const EmbeddedPicture& image = *FindPicture("o_ppic");
    const EmbeddedPicture& mask = *FindPicture("m_ppic");
    for (int piece = 0; piece < 12; ++piece) {
        const int left = piece % 6 * CellSize;
        const int top = piece / 6 * CellSize;
        const auto inside = [&](int x, int y) { return At(mask, left + x, top + y) == White; };
        int lowest = 0;
        for (int i = 0; i < CellSize * CellSize; ++i) {
            const int x = i % CellSize;
            const int y = i / CellSize;
            SCOPED_TRACE(testing::Message() << piece << ": " << x << ", " << y);
            const std::uint32_t pixel = At(image, left + x, top + y);
            ASSERT_EQ(pixel, 0xFF000000U | (pixel & 0xFF) * 0x010101U);
            EXPECT_EQ(inside(x, y), At(mask, left + x, CellSize - top + y) == White) << "both sides share one outline";
            if (inside(x, y)) {
                ASSERT_TRUE(x >= 3 && y >= 3 && x <= CellSize - 4);
                lowest = y;
                const bool onEdge = !inside(x - 1, y) || !inside(x + 1, y) || !inside(x, y - 1) || !inside(x, y + 1);
                EXPECT_TRUE(!onEdge || (pixel & 0xFF) < 112);
            } else {
                ASSERT_EQ(std::pair(At(mask, left + x, top + y), pixel), std::pair(0xFF000000U, White));
            }
        }
        EXPECT_EQ(lowest, CellSize - 5) << "all stand on one line";
    }
}

TEST(ButtonSkin, TilesRepeatWithoutASeam) {
    const EmbeddedPicture& skin = *FindPicture("pic_Buttons");
    for (const auto& [leftCap, tile, rightCap] : {std::array{0, 15, 55}, {72, 83, 128}}) {
        for (int y = 0; y < skin.height; ++y) {
            // The right cap cuts the last tile anywhere, so every column of the tile has to meet it.
            for (int x = 0; x < 15; ++x) EXPECT_EQ(At(skin, tile + x, y), At(skin, rightCap, y)) << x << ", " << y;
            EXPECT_EQ(At(skin, leftCap + 14, y), At(skin, tile, y)) << "left cap against tile, row " << y;
        }
    }
}

TEST(MessageBoxSkin, PiecesMeetWithoutASeam) {
    const auto part = [](const char* name, int left, int top, int width, int height) {
        std::vector<std::uint32_t> pixels;
        for (int i = 0; i < width * height; ++i)
            pixels.push_back(At(*FindPicture(name), left + i % width, top + i / width));
        return pixels;
    };
    EXPECT_EQ(part("TitleLeft", 11, 0, 1, 28), part("TitleRight", 0, 0, 1, 28));
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(part("Title", i, 0, 1, 28), part("TitleLeft", 11, 0, 1, 28));
        EXPECT_EQ(part("BLeft", 0, i, 4, 1), part("BottomLeft", 0, 0, 4, 1));
        EXPECT_EQ(part("BRight", 0, i, 4, 1), part("BottomRight", 8, 0, 4, 1));
        EXPECT_EQ(part("Bottom", i, 0, 1, 4), part("BottomLeft", 11, 8, 1, 4));
        EXPECT_EQ(part("Bottom", i, 0, 1, 4), part("BottomRight", 0, 8, 1, 4));
    }
}

} // namespace
} // namespace quarnel
