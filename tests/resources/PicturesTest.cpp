// The pictures keep the promises that drawing relies on: the piece sheets and their masks, slices and sizes. The
// message box's corners are held to its outline where the box is tested.
#include "Pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <vector>

namespace quarnel {
namespace {

constexpr std::uint32_t White = 0xFFFFFFFF;
constexpr std::uint32_t Black = 0xFF000000;
constexpr int CellSize = 41;

const EmbeddedPicture& Find(std::string_view name) {
    const EmbeddedPicture* picture = FindPicture(name);
    EXPECT_NE(picture, nullptr) << name;
    if (picture == nullptr) std::abort();
    return *picture;
}

std::uint32_t At(const EmbeddedPicture& picture, int x, int y) {
    return picture.pixels[y * picture.width + x];
}

TEST(Pictures, AreFoundByTheirWholeNamesAndHaveTheirSizes) {
    for (const char* name : {"", "o_ppi", "o_ppic.png", "O_ppic", "zzz"}) EXPECT_EQ(FindPicture(name), nullptr) << name;
    for (const EmbeddedPicture& picture : AllPictures()) EXPECT_EQ(FindPicture(picture.name), &picture);
    const struct {
        std::string Name;
        int Width, Height;
    } cases[] = {
        {"o_ppic", 246, 82},   {"m_ppic", 246, 82},    {"pic_Buttons", 144, 24}, {"TitleLeft", 12, 28},
        {"Title", 8, 28},      {"TitleRight", 12, 28}, {"CloseButton", 21, 19},  {"BLeft", 4, 8},
        {"BRight", 4, 8},      {"Bottom", 8, 4},       {"BottomLeft", 12, 12},   {"BottomRight", 12, 12},
        {"Icon_Cri", 32, 32},  {"Icon_Exc", 32, 32},   {"Icon_Info", 32, 32},    {"Icon_Question", 32, 32},
        {"Ok_Static", 81, 25}, {"Ok_Over", 81, 25},    {"Ok_Press", 81, 25},
    };
    for (const auto& [name, width, height] : cases) {
        EXPECT_EQ(std::pair(Find(name).width, Find(name).height), std::pair(width, height)) << name;
    }
    for (int button = 0; button < 6; ++button) {
        for (const int size : {12, 16, 20, 24, 28, 32, 36, 40, 64, 80}) {
            const auto& picture = Find("poke" + std::to_string(button) + "_" + std::to_string(size));
            EXPECT_EQ(std::pair(picture.width, picture.height), std::pair(size, size)) << picture.name;
            const auto drawn =
                std::count_if(picture.pixels, picture.pixels + size * size, [](auto pixel) { return pixel >> 31; });
            EXPECT_TRUE(drawn > size * size / 8 && drawn < size * size / 2) << picture.name;
        }
    }
}

// A piece is drawn by its mask; a white one on a light square is told from it by its dark outline alone.
TEST(PieceSheets, EveryPieceIsGreyWithADarkOutlineAmidItsCellAndWhiteAround) {
    const EmbeddedPicture& image = Find("o_ppic");
    const EmbeddedPicture& mask = Find("m_ppic");
    for (int piece = 0; piece < 12; ++piece) {
        SCOPED_TRACE(piece);
        const int left = piece % 6 * CellSize;
        const int top = piece / 6 * CellSize;
        const auto inside = [&](int x, int y) { return At(mask, left + x, top + y) == White; };
        int lowest = 0;
        for (int y = 0; y < CellSize; ++y) {
            for (int x = 0; x < CellSize; ++x) {
                SCOPED_TRACE(testing::Message() << x << ", " << y);
                const std::uint32_t pixel = At(image, left + x, top + y);
                ASSERT_EQ(pixel, 0xFF000000U | (pixel & 0xFF) * 0x010101U);
                if (!inside(x, y)) {
                    ASSERT_EQ(At(mask, left + x, top + y), Black);
                    ASSERT_EQ(pixel, White);
                    continue;
                }
                ASSERT_TRUE(x >= 3 && y >= 3 && x <= CellSize - 4);
                lowest = y;
                const bool onEdge = !inside(x - 1, y) || !inside(x + 1, y) || !inside(x, y - 1) || !inside(x, y + 1);
                EXPECT_TRUE(!onEdge || (pixel & 0xFF) < 112);
                EXPECT_EQ(At(mask, left + x, CellSize - top + y), White) << "both sides share one outline";
            }
        }
        EXPECT_EQ(lowest, CellSize - 5) << "all stand on one line";
    }
}

TEST(ButtonSkin, TilesRepeatWithoutASeam) {
    const EmbeddedPicture& skin = Find("pic_Buttons");
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
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height));
        for (int i = 0; i < width * height; ++i)
            pixels[static_cast<std::size_t>(i)] = At(Find(name), left + i % width, top + i / width);
        return pixels;
    };
    const auto title = part("Title", 0, 0, 1, 28);
    EXPECT_EQ(part("TitleLeft", 11, 0, 1, 28), title);
    EXPECT_EQ(part("TitleRight", 0, 0, 1, 28), title);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(part("Title", i, 0, 1, 28), title);
        EXPECT_EQ(part("BLeft", 0, i, 4, 1), part("BottomLeft", 0, 0, 4, 1));
        EXPECT_EQ(part("BRight", 0, i, 4, 1), part("BottomRight", 8, 0, 4, 1));
        EXPECT_EQ(part("Bottom", i, 0, 1, 4), part("BottomLeft", 11, 8, 1, 4));
        EXPECT_EQ(part("Bottom", i, 0, 1, 4), part("BottomRight", 0, 8, 1, 4));
    }
}

} // namespace
} // namespace quarnel
