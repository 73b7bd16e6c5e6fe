// The pictures keep the promises that drawing relies on: the piece sheets and their masks, slices, outlines and sizes.
#include "Pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace quarnel {
namespace {

constexpr std::uint32_t White = 0xFFFFFFFF;
constexpr std::uint32_t Black = 0xFF000000;
constexpr int CellSize = 41;
constexpr const char* CellNames[] = {"white pawn",   "white knight", "white bishop", "white rook",
                                     "white queen",  "white king",   "black pawn",   "black knight",
                                     "black bishop", "black rook",   "black queen",  "black king"};

const EmbeddedPicture& Find(std::string_view name) {
    const EmbeddedPicture* picture = FindPicture(name);
    EXPECT_NE(picture, nullptr) << name;
    if (picture == nullptr) std::abort();
    return *picture;
}

std::uint32_t At(const EmbeddedPicture& picture, int x, int y) {
    return picture.pixels[y * picture.width + x];
}
int Alpha(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 24);
}
int Red(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 16 & 0xFF);
}
int Green(std::uint32_t pixel) {
    return static_cast<int>(pixel >> 8 & 0xFF);
}
int Blue(std::uint32_t pixel) {
    return static_cast<int>(pixel & 0xFF);
}

/// One cell of the piece sheets; `index` runs over the white pieces, pawn to king, and then over the black ones.
struct Cell {
    int left;
    int top;
    explicit Cell(int index) : left(index % 6 * CellSize), top(index / 6 * CellSize) {}
    [[nodiscard]] std::uint32_t Image(int x, int y) const { return At(Find("o_ppic"), left + x, top + y); }
    [[nodiscard]] bool Inside(int x, int y) const {
        return x >= 0 && y >= 0 && x < CellSize && y < CellSize && At(Find("m_ppic"), left + x, top + y) == White;
    }
};

struct Extent {
    int left = CellSize;
    int top = CellSize;
    int right = -1;
    int bottom = -1;
};

Extent Silhouette(const Cell& cell) {
    Extent extent;
    for (int y = 0; y < CellSize; ++y) {
        for (int x = 0; x < CellSize; ++x) {
            if (!cell.Inside(x, y)) continue;
            extent = {std::min(extent.left, x), std::min(extent.top, y), std::max(extent.right, x), y};
        }
    }
    return extent;
}

/// How many separate areas of the given kind a cell has; areas touch at their sides, and the ground reaches around the
/// cell's edge.
int CountAreas(const Cell& cell, bool inside) {
    const int edge = inside ? 0 : 1;
    std::set<std::pair<int, int>> seen;
    int areas = 0;
    for (int startY = -edge; startY < CellSize + edge; ++startY) {
        for (int startX = -edge; startX < CellSize + edge; ++startX) {
            std::vector<std::pair<int, int>> open{{startX, startY}};
            int found = 0;
            while (!open.empty()) {
                const auto [x, y] = open.back();
                open.pop_back();
                if (x < -edge || y < -edge || x >= CellSize + edge || y >= CellSize + edge) continue;
                if (cell.Inside(x, y) != inside || !seen.emplace(x, y).second) continue;
                ++found;
                for (const auto& next : {std::pair{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}}) open.push_back(next);
            }
            areas += found > 0 ? 1 : 0;
        }
    }
    return areas;
}

TEST(Pictures, FindsByWholeNameOnly) {
    EXPECT_EQ(FindPicture("o_ppic")->name, "o_ppic");
    for (const char* name : {"", "o_ppi", "o_ppic.png", "O_ppic", "zzz"}) EXPECT_EQ(FindPicture(name), nullptr) << name;
    for (const EmbeddedPicture& picture : AllPictures()) EXPECT_EQ(FindPicture(picture.name), &picture);
}

TEST(Pictures, HaveTheirSizes) {
    const struct {
        const char* name;
        int width;
        int height;
    } cases[] = {
        {"o_ppic", 246, 82},   {"m_ppic", 246, 82},    {"pic_Buttons", 144, 24}, {"TitleLeft", 12, 28},
        {"Title", 8, 28},      {"TitleRight", 12, 28}, {"CloseButton", 21, 19},  {"BLeft", 4, 8},
        {"BRight", 4, 8},      {"Bottom", 8, 4},       {"BottomLeft", 12, 12},   {"BottomRight", 12, 12},
        {"Icon_Cri", 32, 32},  {"Icon_Exc", 32, 32},   {"Icon_Info", 32, 32},    {"Icon_Question", 32, 32},
        {"Ok_Static", 81, 25}, {"Ok_Over", 81, 25},    {"Ok_Press", 81, 25},
    };
    for (const auto& [name, width, height] : cases) {
        EXPECT_EQ(Find(name).width, width) << name;
        EXPECT_EQ(Find(name).height, height) << name;
    }
}

TEST(PieceSheets, ImageIsGreyAndWhiteOutsideTheMask) {
    const EmbeddedPicture& image = Find("o_ppic");
    const EmbeddedPicture& mask = Find("m_ppic");
    for (int i = 0; i < image.width * image.height; ++i) {
        const std::uint32_t pixel = image.pixels[i];
        ASSERT_TRUE(mask.pixels[i] == White || mask.pixels[i] == Black) << i;
        ASSERT_TRUE(Alpha(pixel) == 255 && Red(pixel) == Green(pixel) && Green(pixel) == Blue(pixel)) << i;
        if (mask.pixels[i] == Black) {
            ASSERT_EQ(pixel, White) << i;
        }
    }
}

TEST(PieceSheets, EveryPieceIsOneSolidShapeAmidItsCell) {
    for (int index = 0; index < 12; ++index) {
        SCOPED_TRACE(CellNames[index]);
        const Cell cell(index);
        EXPECT_EQ(CountAreas(cell, true), 1);
        EXPECT_EQ(CountAreas(cell, false), 1);
        const Extent extent = Silhouette(cell);
        EXPECT_GE(extent.left, 3);
        EXPECT_GE(extent.top, 3);
        EXPECT_LE(extent.right, CellSize - 4);
        EXPECT_EQ(extent.bottom, CellSize - 5) << "all stand on one line";
        EXPECT_LE(std::abs(extent.left + extent.right - (CellSize - 1)), 2) << "off centre";
    }
}

TEST(PieceSheets, TheFamilyGrowsFromPawnToKing) {
    for (int side = 0; side < 2; ++side) {
        const auto top = [&](int piece) { return Silhouette(Cell(side * 6 + piece)).top; };
        enum { Pawn, Knight, Bishop, Rook, Queen, King };
        for (const int piece : {Knight, Bishop, Rook, Queen}) {
            EXPECT_LT(top(piece), top(Pawn));
            EXPECT_GT(top(piece), top(King));
        }
    }
}

TEST(PieceSheets, BothSidesShareOneOutlineAndDifferInBrightness) {
    for (int piece = 0; piece < 6; ++piece) {
        SCOPED_TRACE(CellNames[piece]);
        const Cell white(piece);
        const Cell black(piece + 6);
        int pixels = 0;
        int whiteSum = 0;
        int blackSum = 0;
        for (int y = 0; y < CellSize; ++y) {
            for (int x = 0; x < CellSize; ++x) {
                ASSERT_EQ(white.Inside(x, y), black.Inside(x, y)) << x << ", " << y;
                if (!white.Inside(x, y)) continue;
                ++pixels;
                whiteSum += Red(white.Image(x, y));
                blackSum += Red(black.Image(x, y));
            }
        }
        EXPECT_GT(whiteSum / pixels, blackSum / pixels + 64);
    }
}

TEST(PieceSheets, EveryOutlineIsDarkAllAround) {
    // A white piece on a light square is told from it by its outline alone.
    for (int index = 0; index < 12; ++index) {
        const Cell cell(index);
        for (int y = 0; y < CellSize; ++y) {
            for (int x = 0; x < CellSize; ++x) {
                const bool onEdge = !cell.Inside(x - 1, y) || !cell.Inside(x + 1, y) || !cell.Inside(x, y - 1) ||
                                    !cell.Inside(x, y + 1);
                if (cell.Inside(x, y) && onEdge) {
                    EXPECT_LT(Red(cell.Image(x, y)), 112) << CellNames[index] << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST(ButtonSkin, TilesRepeatWithoutASeam) {
    const EmbeddedPicture& skin = Find("pic_Buttons");
    const struct {
        int leftCap;
        int tile;
        int rightCap;
    } looks[] = {{0, 15, 55}, {72, 83, 128}};
    for (const auto& [leftCap, tile, rightCap] : looks) {
        for (int y = 0; y < skin.height; ++y) {
            const std::uint32_t before = At(skin, leftCap + 14, y);
            const std::uint32_t after = At(skin, rightCap, y);
            EXPECT_EQ(before, At(skin, tile, y)) << "left cap against tile, row " << y;
            EXPECT_EQ(At(skin, tile + 14, y), At(skin, tile, y)) << "tile against tile, row " << y;
            // The right cap cuts the last tile anywhere, so every column of the tile has to meet it.
            for (int x = 0; x < 15; ++x) EXPECT_EQ(At(skin, tile + x, y), after) << "column " << x << ", row " << y;
        }
    }
}

TEST(ButtonSkin, IsGreenLitFromAboveAndFromBelowWhenPressed) {
    const EmbeddedPicture& skin = Find("pic_Buttons");
    for (const int column : {20, 90}) {
        for (int y = 0; y < skin.height; ++y) {
            const std::uint32_t pixel = At(skin, column, y);
            EXPECT_EQ(Alpha(pixel), 255);
            EXPECT_GE(Green(pixel), std::max(Red(pixel), Blue(pixel)));
        }
        EXPECT_LT(Green(At(skin, column, 0)), 96);
        EXPECT_LT(Green(At(skin, column, 23)), 96);
    }
    for (int y = 2; y < 21; ++y) {
        EXPECT_GE(Green(At(skin, 20, y)), Green(At(skin, 20, y + 1)));
        EXPECT_LE(Green(At(skin, 90, y)), Green(At(skin, 90, y + 1)));
    }
}

/// The pixels a message box's window keeps: inside the rectangles of its outline, the corner rows at the bottom cut.
bool InWindow(int x, int y, int width, int height) {
    const struct {
        int left, top, right, bottom;
    } rectangles[] = {{7, 1, width - 6, 2}, {5, 2, width - 4, 3}, {4, 3, width - 3, 4}, {3, 4, width - 2, 5},
                      {2, 5, width - 2, 6}, {1, 6, width - 1, 7}, {1, 7, width - 1, 8}, {0, 8, width, height}};
    constexpr int Cut[] = {8, 6, 4, 3, 2, 2, 1, 1};
    const int fromBottom = height - 1 - y;
    if (fromBottom >= 0 && fromBottom < 8 && (x < Cut[fromBottom] || x >= width - Cut[fromBottom])) return false;
    return std::ranges::any_of(rectangles,
                               [&](const auto& r) { return x >= r.left && x < r.right && y >= r.top && y < r.bottom; });
}

TEST(MessageBoxSkin, CornersFollowTheWindowsOutline) {
    constexpr int Width = 200;
    constexpr int Height = 150;
    const struct {
        const char* name;
        bool right;
        bool bottom;
    } corners[] = {{"TitleLeft", false, false},
                   {"TitleRight", true, false},
                   {"BottomLeft", false, true},
                   {"BottomRight", true, true}};
    for (const auto& [name, right, bottom] : corners) {
        const EmbeddedPicture& picture = Find(name);
        const int left = right ? Width - picture.width : 0;
        const int top = bottom ? Height - picture.height : 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const auto inWindow = [&](int dx, int dy) {
                    return InWindow(left + x + dx, top + y + dy, Width, Height);
                };
                const std::uint32_t pixel = At(picture, x, y);
                ASSERT_EQ(Alpha(pixel), inWindow(0, 0) ? 255 : 0) << name << " at " << x << ", " << y;
                // A dark line goes all around the window, without a gap.
                const bool onEdge = !inWindow(-1, 0) || !inWindow(1, 0) || !inWindow(0, -1) || !inWindow(0, 1);
                if (inWindow(0, 0) && onEdge) {
                    EXPECT_EQ(pixel, 0xFF3A0000) << name << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST(MessageBoxSkin, PiecesMeetWithoutASeam) {
    const auto column = [](const char* name, int x) {
        const EmbeddedPicture& picture = Find(name);
        std::vector<std::uint32_t> pixels;
        for (int y = 0; y < picture.height; ++y) pixels.push_back(At(picture, (x + picture.width) % picture.width, y));
        return pixels;
    };
    for (int x = 0; x < Find("Title").width; ++x) EXPECT_EQ(column("Title", x), column("Title", 0));
    EXPECT_EQ(column("TitleLeft", -1), column("Title", 0));
    EXPECT_EQ(column("TitleRight", 0), column("Title", 0));

    const auto row = [](const char* name, int y, int from, int count) {
        std::vector<std::uint32_t> pixels;
        for (int x = 0; x < count; ++x) pixels.push_back(At(Find(name), from + x, y));
        return pixels;
    };
    for (int y = 0; y < 8; ++y) {
        EXPECT_EQ(row("BLeft", y, 0, 4), row("BottomLeft", 0, 0, 4));
        EXPECT_EQ(row("BRight", y, 0, 4), row("BottomRight", 0, 8, 4));
    }
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(At(Find("Bottom"), x, y), At(Find("BottomLeft"), 11, 8 + y));
            EXPECT_EQ(At(Find("Bottom"), x, y), At(Find("BottomRight"), 0, 8 + y));
        }
    }
}

TEST(MessageBoxSkin, ButtonPicturesAreLightUnderTheBlueCaption) {
    for (const char* name : {"Ok_Static", "Ok_Over", "Ok_Press"}) {
        const EmbeddedPicture& picture = Find(name);
        for (int y = 6; y < 19; ++y) {
            for (int x = 20; x < 61; ++x) {
                const std::uint32_t pixel = At(picture, x, y);
                EXPECT_GT(std::min({Red(pixel), Green(pixel), Blue(pixel)}), 190) << name;
            }
        }
    }
}

TEST(Toolbar, EverySizeExistsAndShowsAnImage) {
    for (int button = 0; button < 6; ++button) {
        for (const int size : {12, 16, 20, 24, 28, 32, 36, 40, 64, 80}) {
            const std::string name = "poke" + std::to_string(button) + "_" + std::to_string(size);
            SCOPED_TRACE(name);
            const EmbeddedPicture& picture = Find(name);
            EXPECT_EQ(picture.width, size);
            EXPECT_EQ(picture.height, size);
            const auto drawn = std::count_if(picture.pixels, picture.pixels + size * size,
                                             [](std::uint32_t pixel) { return Alpha(pixel) > 128; });
            EXPECT_GT(drawn, size * size / 8);
            EXPECT_LT(drawn, size * size / 2);
            for (int i = 0; i < size; ++i) {
                EXPECT_EQ(At(picture, i, 0), 0U);
                EXPECT_EQ(At(picture, i, size - 1), 0U);
            }
        }
    }
}

} // namespace
} // namespace quarnel
