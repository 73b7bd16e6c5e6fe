#include "platform/Surface.h"

#include <algorithm>
#include <cstddef>

namespace quarnel {

namespace {

constexpr Colour Opaque = 0xFF000000U;

} // namespace

Surface::Surface(int width, int height, Colour colour)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), colour) {}

void Surface::Fill(Colour colour) {
    std::fill(pixels_.begin(), pixels_.end(), colour);
}

namespace {

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

// Stretching works along the rows first and down the columns then, on single bytes and in whole numbers:
// each result is a sum of neighbouring samples with weights that add up to exactly one, so that a plain
// area keeps its colour to the bit.

namespace {

constexpr int Channels = 4;
constexpr int WeightBits = 14;
constexpr int One = 1 << WeightBits;
constexpr int SampleBits = 7;                         ///< of a sample below the point
constexpr int SumBits = SampleBits + WeightBits - 16; ///< of a weighted sum below the point

// Which source samples make up each sample of the result: `Taps` neighbours from `First[i]` on.
struct Resampling {
    Resampling(int taps, int sourceSize, int size)
        : Taps(std::min(taps, sourceSize)), SourceSize(sourceSize), First(static_cast<std::size_t>(size)),
          Weights(static_cast<std::size_t>(size) * static_cast<std::size_t>(Taps)) {}

    int Taps;
    int SourceSize;
    std::vector<int> First;
    std::vector<std::int16_t> Weights; ///< Taps for each result sample, together One

    int FirstOf(int i) const { return First[static_cast<std::size_t>(i)]; }
    const std::int16_t* WeightsOf(int i) const { return Weights.data() + static_cast<std::ptrdiff_t>(i) * Taps; }
};

// Makes result sample `i` of the neighbours from `first` on, each with its share of `whole`. A neighbour
// beyond the edge counts as the sample at the edge.
void SetShares(Resampling& table, int i, int first, const std::vector<std::int64_t>& shares, std::int64_t whole) {
    const int start = std::clamp(first, 0, table.SourceSize - table.Taps);
    std::vector<std::int64_t> inside(static_cast<std::size_t>(table.Taps), 0);
    for (std::size_t k = 0; k < shares.size(); ++k) {
        const int neighbour = std::clamp(first + static_cast<int>(k), 0, table.SourceSize - 1);
        inside[static_cast<std::size_t>(std::clamp(neighbour - start, 0, table.Taps - 1))] += shares[k];
    }
    table.First[static_cast<std::size_t>(i)] = start;

    // The largest weight takes what rounding leaves over.
    std::int16_t* weights = table.Weights.data() + static_cast<std::ptrdiff_t>(i) * table.Taps;
    int largest = 0;
    int rest = One;
    for (int k = 0; k < table.Taps; ++k) {
        const std::int64_t scaled = 2 * One * inside[static_cast<std::size_t>(k)];
        weights[k] = static_cast<std::int16_t>((scaled + (scaled < 0 ? -whole : whole)) / (2 * whole));
        rest -= weights[k];
        if (weights[k] > weights[largest]) largest = k;
    }
    weights[largest] = static_cast<std::int16_t>(weights[largest] + rest);
}

// Each result sample is the average of the stretch of the source that it covers.
Resampling Averages(int sourceSize, int size) {
    Resampling table((sourceSize + size - 1) / size + 1, sourceSize, size);
    std::vector<std::int64_t> shares;
    for (int i = 0; i < size; ++i) {
        // In units of 1 / size of a source sample.
        const std::int64_t from = static_cast<std::int64_t>(i) * sourceSize;
        const std::int64_t to = from + sourceSize;
        const std::int64_t first = from / size;
        shares.clear();
        for (std::int64_t j = first; j * size < to; ++j) {
            shares.push_back(std::min(to, (j + 1) * size) - std::max(from, j * size));
        }
        SetShares(table, i, static_cast<int>(first), shares, sourceSize);
    }
    return table;
}

// Each result sample lies on the cubic through its four neighbours whose slopes at the inner two are the
// slopes between their own neighbours. It keeps outlines crisp where straight lines would blur them.
Resampling Cubics(int sourceSize, int size) {
    constexpr std::int64_t U = 4096; // one source sample
    Resampling table(4, sourceSize, size);
    for (int i = 0; i < size; ++i) {
        // The middle of the result sample, counted from the middle of the first source sample.
        const std::int64_t position = ((2 * i + 1LL) * sourceSize - size) * U;
        const std::int64_t fromEdge = position + 2LL * size * U; // one sample to the right, so never negative
        const auto cell = static_cast<int>(fromEdge / (2LL * size * U)) - 1;
        const std::int64_t t = (fromEdge % (2LL * size * U)) / (2LL * size);
        const std::int64_t t2 = t * t;
        const std::int64_t t3 = t2 * t;
        SetShares(table, i, cell - 1,
                  {-t3 + 2 * t2 * U - t * U * U, 3 * t3 - 5 * t2 * U + 2 * U * U * U, -3 * t3 + 4 * t2 * U + t * U * U,
                   t3 - t2 * U},
                  2 * U * U * U);
    }
    return table;
}

Resampling TableFor(int sourceSize, int size) {
    return size <= sourceSize ? Averages(sourceSize, size) : Cubics(sourceSize, size);
}

// Samples are weighed up in blocks of one size, which every compiler turns into vector instructions.
constexpr int Bundle = 8; ///< rows that are stretched side by side
constexpr int Block = Bundle * Channels;

// Adds up a block of samples: to[i] is the sum of the weighted from[i + k * stride]. Samples come with
// SampleBits below the point and leave with SumBits.
//
// With few taps every product drops its low 16 bits alone, so that eight fit a vector register; what four
// of them lose together is less than what the rounding forgives. The parts are written out because a loop
// over them keeps some compilers from vector instructions.
template <int FixedTaps>
void WeighUp(const std::int16_t* __restrict from, std::ptrdiff_t stride, const std::int16_t* __restrict weights,
             int anyTaps, std::int16_t* __restrict to) {
    if constexpr (FixedTaps != 0) {
        const auto part = [=](int i, int k) {
            return static_cast<std::int16_t>((weights[k] * from[i + k * stride]) >> 16);
        };
        for (int i = 0; i < Block; ++i) {
            std::int16_t sum = static_cast<std::int16_t>(FixedTaps / 2 + part(i, 0) + part(i, 1) + part(i, 2));
            if constexpr (FixedTaps == 4) sum = static_cast<std::int16_t>(sum + part(i, 3));
            to[i] = sum;
        }
    } else {
        std::int32_t sums[Block];
        std::fill_n(sums, Block, 1 << 15);
        for (int k = 0; k < anyTaps; ++k) {
            for (int i = 0; i < Block; ++i) sums[i] += weights[k] * from[i + k * stride];
        }
        for (int i = 0; i < Block; ++i) to[i] = static_cast<std::int16_t>(sums[i] >> 16);
    }
}

using WeighUpTaps = void (*)(const std::int16_t*, std::ptrdiff_t, const std::int16_t*, int, std::int16_t*);

WeighUpTaps WeighUpFor(int taps) {
    return taps == 4 ? WeighUp<4> : taps == 3 ? WeighUp<3> : WeighUp<0>;
}

// A picture's row as bytes; their order within a pixel does not matter here.
const std::uint8_t* RowBytes(const Surface& surface, int y) {
    return reinterpret_cast<const std::uint8_t*>(surface.Pixels() + static_cast<std::ptrdiff_t>(y) * surface.Width());
}
std::uint8_t* RowBytes(Surface& surface, int y) {
    return reinterpret_cast<std::uint8_t*>(surface.Pixels() + static_cast<std::ptrdiff_t>(y) * surface.Width());
}

// Stretches up to Bundle rows of `source` from row `y` on into the rows of `middle`, `length` samples each.
// `bundle` holds a block for each source column.
void StretchAcross(const Surface& source, int y, const Resampling& across, std::int16_t* bundle, std::int16_t* middle,
                   std::ptrdiff_t length, int rows) {
    for (int r = 0; r < rows; ++r) {
        const std::uint8_t* bytes = RowBytes(source, y + r);
        for (int x = 0; x < across.SourceSize; ++x, bytes += Channels) {
            std::int16_t* samples = bundle + static_cast<std::ptrdiff_t>(x) * Block + r * Channels;
            for (int c = 0; c < Channels; ++c) samples[c] = static_cast<std::int16_t>(bytes[c] << SampleBits);
        }
    }
    const auto weighUp = WeighUpFor(across.Taps);
    const auto width = static_cast<int>(across.First.size());
    for (int x = 0; x < width; ++x) {
        std::int16_t sums[Block];
        weighUp(bundle + static_cast<std::ptrdiff_t>(across.FirstOf(x)) * Block, Block, across.WeightsOf(x),
                across.Taps, sums);
        for (std::int16_t& sum : sums) {
            const auto inside = std::clamp<std::int16_t>(sum, 0, 255 << SumBits);
            sum = static_cast<std::int16_t>(inside << (SampleBits - SumBits));
        }
        for (int r = 0; r < rows; ++r) {
            std::copy_n(sums + r * Channels, Channels, middle + r * length + static_cast<std::ptrdiff_t>(x) * Channels);
        }
    }
}

// Makes `count` bytes, one row of the result, of the `down.Taps` rows of `middle` that belong to row `y`.
void StretchDown(const std::int16_t* middle, std::ptrdiff_t length, const Resampling& down, int y, std::uint8_t* to,
                 int count) {
    const auto weighUp = WeighUpFor(down.Taps);
    const std::int16_t* from = middle + down.FirstOf(y) * length;
    for (int i = 0; i < count; i += Block) {
        std::int16_t sums[Block];
        std::uint8_t bytes[Block];
        weighUp(from + i, length, down.WeightsOf(y), down.Taps, sums);
        for (int k = 0; k < Block; ++k) {
            const auto rounded = static_cast<std::int16_t>((sums[k] + (1 << (SumBits - 1))) >> SumBits);
            bytes[k] = static_cast<std::uint8_t>(std::clamp<std::int16_t>(rounded, 0, 255));
        }
        std::copy_n(bytes, std::min(Block, count - i), to + i);
    }
}

} // namespace

Surface StretchBlt(const Surface& source, int sourceWidth, int sourceHeight, int width, int height) {
    Surface result(width, height);
    const int count = width * Channels;
    if (width == sourceWidth && height == sourceHeight) {
        for (int y = 0; y < height; ++y) std::copy_n(RowBytes(source, y), count, RowBytes(result, y));
        return result;
    }
    const Resampling across = TableFor(sourceWidth, width);
    const Resampling down = TableFor(sourceHeight, height);
    // Rows of whole blocks.
    const std::ptrdiff_t length = (count + Block - 1) / Block * Block;
    std::vector<std::int16_t> middle(static_cast<std::size_t>(length * sourceHeight));
    std::vector<std::int16_t> bundle(static_cast<std::size_t>(sourceWidth) * Block);
    for (int y = 0; y < sourceHeight; y += Bundle) {
        const int rows = std::min(Bundle, sourceHeight - y);
        StretchAcross(source, y, across, bundle.data(), middle.data() + y * length, length, rows);
    }
    for (int y = 0; y < height; ++y) StretchDown(middle.data(), length, down, y, RowBytes(result, y), count);
    return result;
}

} // namespace quarnel
