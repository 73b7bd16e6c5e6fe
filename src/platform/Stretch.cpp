#include "platform/Stretch.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quarnel {

// Stretching works along the rows first and down the columns then, on single bytes and in whole numbers:
// each result is a sum of neighbouring samples with weights that add up to exactly one, so that a plain
// area keeps its colour to the bit.

namespace {

constexpr int Channels = 4;
constexpr int WeightBits = 14;
constexpr int One = 1 << WeightBits;
constexpr int SampleBits = 7;                         ///< of a sample below the point
constexpr int SumBits = SampleBits + WeightBits - 16; ///< of a weighted sum below the point

using Range = std::pair<int, int>; // from the first to before the second

Resampling Empty(int taps, int sourceSize, int size) {
    Resampling table;
    table.Taps = std::min(taps, sourceSize);
    table.SourceSize = sourceSize;
    table.First.resize(static_cast<std::size_t>(size));
    table.Weights.resize(static_cast<std::size_t>(size) * static_cast<std::size_t>(table.Taps));
    return table;
}

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
    Resampling table = Empty((sourceSize + size - 1) / size + 1, sourceSize, size);
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
    Resampling table = Empty(4, sourceSize, size);
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

// The result samples that depend on the source samples from `from` to before `to`.
Range Dependent(const Resampling& table, int from, int to) {
    const auto begin = table.First.begin();
    const auto first = std::upper_bound(begin, table.First.end(), from - table.Taps);
    const auto end = std::lower_bound(first, table.First.end(), to);
    return {static_cast<int>(first - begin), static_cast<int>(end - begin)};
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

// Stretches up to Bundle rows of `source` from row `y` on into the rows of `middle`, `length` samples each, as far as
// the result's columns of `columns` go. `bundle` holds a block for each source column.
void StretchAcross(const Surface& source, int y, const Resampling& across, Range columns, std::int16_t* bundle,
                   std::int16_t* middle, std::ptrdiff_t length, int rows) {
    const int first = across.FirstOf(columns.first);
    const int end = across.FirstOf(columns.second - 1) + across.Taps;
    for (int r = 0; r < rows; ++r) {
        const std::uint8_t* bytes = RowBytes(source, y + r) + static_cast<std::ptrdiff_t>(first) * Channels;
        for (int x = first; x < end; ++x, bytes += Channels) {
            std::int16_t* samples = bundle + static_cast<std::ptrdiff_t>(x) * Block + r * Channels;
            for (int c = 0; c < Channels; ++c) samples[c] = static_cast<std::int16_t>(bytes[c] << SampleBits);
        }
    }
    const auto weighUp = WeighUpFor(across.Taps);
    for (int x = columns.first; x < columns.second; ++x) {
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

// Makes the bytes of `bytes` of one row of the result, of the `down.Taps` rows of `middle` that belong to row `y`.
void StretchDown(const std::int16_t* middle, std::ptrdiff_t length, const Resampling& down, int y, Range bytes,
                 std::uint8_t* to) {
    const auto weighUp = WeighUpFor(down.Taps);
    const std::int16_t* from = middle + down.FirstOf(y) * length;
    for (int i = bytes.first; i < bytes.second; i += Block) {
        std::int16_t sums[Block];
        std::uint8_t block[Block];
        weighUp(from + i, length, down.WeightsOf(y), down.Taps, sums);
        for (int k = 0; k < Block; ++k) {
            const auto rounded = static_cast<std::int16_t>((sums[k] + (1 << (SumBits - 1))) >> SumBits);
            block[k] = static_cast<std::uint8_t>(std::clamp<std::int16_t>(rounded, 0, 255));
        }
        std::copy_n(block, std::min(Block, bytes.second - i), to + i);
    }
}

} // namespace

bool Stretcher::SetSizes(int sourceWidth, int sourceHeight, int width, int height) {
    if (across_.SourceSize == sourceWidth && down_.SourceSize == sourceHeight && result_.Width() == width &&
        result_.Height() == height)
        return false;
    result_ = Surface(width, height);
    isCopy_ = width == sourceWidth && height == sourceHeight;
    across_ = TableFor(sourceWidth, width);
    down_ = TableFor(sourceHeight, height);
    // Rows of whole blocks, and one block more for a row that is begun in the middle of one.
    rowLength_ = (static_cast<std::ptrdiff_t>(width) * Channels + 2 * Block - 1) / Block * Block;
    middle_.assign(isCopy_ ? 0 : static_cast<std::size_t>(rowLength_ * sourceHeight), 0);
    bundle_.assign(isCopy_ ? 0 : static_cast<std::size_t>(sourceWidth) * Block, 0);
    return true;
}

Rectangle Stretcher::Update(const Surface& source, const Rectangle& part) {
    const Rectangle inside{std::max(part.Left, 0), std::max(part.Top, 0), std::min(part.Right, across_.SourceSize),
                           std::min(part.Bottom, down_.SourceSize)};
    if (inside.Left >= inside.Right || inside.Top >= inside.Bottom) return {};
    if (isCopy_) {
        for (int y = inside.Top; y < inside.Bottom; ++y) {
            std::copy_n(RowBytes(source, y) + inside.Left * Channels, (inside.Right - inside.Left) * Channels,
                        RowBytes(result_, y) + inside.Left * Channels);
        }
        return inside;
    }
    const Range columns = Dependent(across_, inside.Left, inside.Right);
    const Range rows = Dependent(down_, inside.Top, inside.Bottom);
    for (int y = inside.Top; y < inside.Bottom; y += Bundle) {
        StretchAcross(source, y, across_, columns, bundle_.data(), middle_.data() + y * rowLength_, rowLength_,
                      std::min(Bundle, inside.Bottom - y));
    }
    const Range bytes(columns.first * Channels, columns.second * Channels);
    for (int y = rows.first; y < rows.second; ++y)
        StretchDown(middle_.data(), rowLength_, down_, y, bytes, RowBytes(result_, y));
    return {columns.first, rows.first, columns.second, rows.second};
}

Surface StretchBlt(const Surface& source, int sourceWidth, int sourceHeight, int width, int height) {
    Stretcher stretcher;
    stretcher.SetSizes(sourceWidth, sourceHeight, width, height);
    stretcher.Update(source, {0, 0, sourceWidth, sourceHeight});
    return stretcher.TakeResult();
}

} // namespace quarnel
