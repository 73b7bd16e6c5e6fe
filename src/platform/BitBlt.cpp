#include "platform/Surface.h"

#include <algorithm>
#include <cstddef>

namespace quarnel {

namespace {

constexpr Colour Opaque = 0xFF000000U;

// The part of a blit along one axis that lies inside both surfaces.
struct Span {
    int Target;
    int Source;
    int Length;
};

Span Clip(int target, int source, int length, int targetSize, int sourceSize) {
    const long long skipped = std::max({0LL, -static_cast<long long>(target), -static_cast<long long>(source)});
    const long long left =
        std::min({static_cast<long long>(length) - skipped, static_cast<long long>(targetSize) - target - skipped,
                  static_cast<long long>(sourceSize) - source - skipped});
    if (left <= 0) return {0, 0, 0};
    return {static_cast<int>(target + skipped), static_cast<int>(source + skipped), static_cast<int>(left)};
}

template <class Combine>
void BlitRows(Surface& target, const Surface& source, Span across, Span down, Combine combine) {
    for (int row = 0; row < down.Length; ++row) {
        Colour* to = target.Pixels() + static_cast<std::size_t>(down.Target + row) * target.Width() + across.Target;
        const Colour* from =
            source.Pixels() + static_cast<std::size_t>(down.Source + row) * source.Width() + across.Source;
        for (int i = 0; i < across.Length; ++i) to[i] = combine(from[i], to[i]) | Opaque;
    }
}

} // namespace

void BitBlt(Surface& target, int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
            RasterOp operation) {
    // Inverting needs no source: the target stands in for it, so that only its own edges clip.
    const bool alone = operation == RasterOp::DstInvert;
    const Surface& from = alone ? target : source;
    const Span across = Clip(x, alone ? x : sourceX, width, target.Width(), from.Width());
    const Span down = Clip(y, alone ? y : sourceY, height, target.Height(), from.Height());
    if (across.Length == 0 || down.Length == 0) return;
    switch (operation) {
    case RasterOp::SrcCopy:
        BlitRows(target, from, across, down, [](Colour s, Colour) { return s; });
        break;
    case RasterOp::SrcAnd:
        BlitRows(target, from, across, down, [](Colour s, Colour d) { return s & d; });
        break;
    case RasterOp::SrcPaint:
        BlitRows(target, from, across, down, [](Colour s, Colour d) { return s | d; });
        break;
    case RasterOp::MergePaint:
        BlitRows(target, from, across, down, [](Colour s, Colour d) { return ~s | d; });
        break;
    case RasterOp::DstInvert:
        BlitRows(target, from, across, down, [](Colour, Colour d) { return ~d; });
        break;
    }
}

} // namespace quarnel
