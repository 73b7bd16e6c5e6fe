#include "window/MenuEye.h"

#include <algorithm>
#include <functional>
#include <map>

namespace quarnel::xdriver {

namespace {

constexpr int Frame = 2;   // pixels at a menu's edges
constexpr int WordGap = 6; // more than between letters or words, less than between captions
constexpr int SeparatorHeight = 2;
constexpr int Indent = 6;     // less than what a check mark sticks out by
constexpr Colour Grey = 0x80; // text is darker, greyed text is lighter

struct Run {
    int First = 0;
    int Last = 0;
};

// The runs of `0 <= i < count` in which `inked(i)`, gaps shorter than `gap` bridged.
std::vector<Run> RunsOf(int count, int gap, const std::function<bool(int)>& inked) {
    std::vector<Run> runs;
    for (int i = 0; i < count; ++i) {
        if (!inked(i)) continue;
        if (runs.empty() || i - runs.back().Last > gap) runs.push_back({i, i});
        runs.back().Last = i;
    }
    return runs;
}

Colour CommonColour(const Surface& picture, int height) {
    std::map<Colour, int> counts;
    for (int i = 0; i < picture.Width() * height; ++i) ++counts[picture.Pixels()[i]];
    const auto less = [](const auto& a, const auto& b) { return a.second < b.second; };
    return std::max_element(counts.begin(), counts.end(), less)->first;
}

} // namespace

std::vector<MenuRow> ReadMenu(const Surface& menu) {
    if (menu.Empty()) return {};
    const Colour ground = CommonColour(menu, menu.Height());
    const int right = menu.Width() - Frame;
    const auto firstInk = [&](int y) {
        int x = Frame;
        while (x < right && menu.At(x, y) == ground) ++x;
        return x;
    };
    const auto inside = [&](int y) { return y >= Frame && y < menu.Height() - Frame && firstInk(y) < right; };
    std::vector<MenuRow> rows;
    std::vector<int> lefts;
    for (const Run& run : RunsOf(menu.Height(), 1, inside)) {
        int left = right;
        bool dark = false;
        for (int y = run.First; y <= run.Last; ++y) {
            left = std::min(left, firstInk(y));
            for (int x = Frame; x < right; ++x) dark |= (menu.At(x, y) & 0xFF) < Grey;
        }
        const bool separator = run.Last - run.First < SeparatorHeight;
        rows.push_back({(run.First + run.Last) / 2, separator, false, dark});
        lefts.push_back(separator ? 0 : left);
    }
    const int textLeft = lefts.empty() ? 0 : *std::max_element(lefts.begin(), lefts.end());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].Checked = !rows[i].Separator && lefts[i] < textLeft - Indent;
    }
    return rows;
}

std::vector<int> ReadMenuBar(const Surface& window, int height) {
    const Colour ground = CommonColour(window, height);
    const auto inked = [&](int x) {
        for (int y = Frame; y < height - Frame; ++y) {
            if (window.At(x, y) != ground) return true;
        }
        return false;
    };
    std::vector<int> middles;
    for (const Run& run : RunsOf(window.Width(), WordGap, inked)) middles.push_back((run.First + run.Last) / 2);
    return middles;
}

} // namespace quarnel::xdriver
