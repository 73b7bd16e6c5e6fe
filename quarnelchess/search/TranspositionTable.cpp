#include "quarnelchess/search/TranspositionTable.h"

#include <algorithm>
#include <memory>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace quarnel::engine {
namespace {

// Data word: move 16 | value 16 | static evaluation 16 | depth 8 | generation 5 | principal variation 1 | bound 2.
constexpr int GenerationShift = 3;

constexpr std::size_t HugePage = std::size_t{1} << 21;

std::uint64_t Pack(const TableEntry& entry, unsigned generation) {
    const auto low16 = [](int value) { return static_cast<std::uint64_t>(static_cast<std::uint16_t>(value)); };
    const std::uint64_t flags =
        (generation << GenerationShift) | (entry.WasPv ? 4U : 0U) | static_cast<unsigned>(entry.Kind);
    return low16(entry.Best.Bits()) | (low16(entry.Value) << 16) | (low16(entry.StaticEval) << 32) |
           (static_cast<std::uint64_t>(static_cast<std::uint8_t>(entry.Depth)) << 48) | (flags << 56);
}

int DepthOf(std::uint64_t data) {
    return static_cast<int>((data >> 48) & 0xFF);
}
unsigned GenerationOf(std::uint64_t data) {
    return static_cast<unsigned>(data >> (56 + GenerationShift));
}

TableEntry Unpack(std::uint64_t data) {
    TableEntry entry;
    entry.Best = Move::FromBits(static_cast<std::uint16_t>(data));
    entry.Value = static_cast<std::int16_t>(data >> 16);
    entry.StaticEval = static_cast<std::int16_t>(data >> 32);
    entry.Depth = DepthOf(data);
    entry.WasPv = ((data >> 58) & 1) != 0;
    entry.Kind = static_cast<Bound>((data >> 56) & 3);
    return entry;
}

} // namespace

void TranspositionTable::Release::operator()(Cluster* clusters) const {
    ::operator delete[](clusters, std::align_val_t{HugePage});
}

/// Null when memory is short.
TranspositionTable::Cluster* TranspositionTable::Allocate(std::size_t count) {
    void* const memory = ::operator new[](count * sizeof(Cluster), std::align_val_t{HugePage}, std::nothrow);
    if (memory == nullptr) return nullptr;
#if defined(__linux__)
    // Entries are visited at random: large pages save a walk through the page tables at each visit.
    madvise(memory, count * sizeof(Cluster), MADV_HUGEPAGE);
#endif
    auto* const clusters = static_cast<Cluster*>(memory);
    std::uninitialized_value_construct_n(clusters, count);
    return clusters;
}

void TranspositionTable::Resize(std::size_t megabytes) {
    clusters_.reset();
    std::size_t count = std::max<std::size_t>(megabytes, 1) * ((1 << 20) / sizeof(Cluster));
    while (!clusters_) {
        clusters_.reset(Allocate(count));
        if (clusters_)
            clusterCount_ = count;
        else
            count = std::max<std::size_t>(count / 2, 1);
    }
    generation_ = 0;
}

void TranspositionTable::Clear() {
    for (std::size_t i = 0; i < clusterCount_; ++i) {
        for (Slot& slot : clusters_[i].Slots) {
            slot.Check.store(0, std::memory_order_relaxed);
            slot.Data.store(0, std::memory_order_relaxed);
        }
    }
    generation_ = 0;
}

bool TranspositionTable::Probe(Key key, TableEntry& entry) const {
    for (const Slot& slot : clusters_[IndexOf(key)].Slots) {
        const std::uint64_t data = slot.Data.load(std::memory_order_relaxed);
        if ((slot.Check.load(std::memory_order_relaxed) ^ data) != key || data == 0) continue;
        entry = Unpack(data);
        return true;
    }
    return false;
}

void TranspositionTable::Store(Key key, const TableEntry& entry) {
    Slot* replaced = nullptr;
    int leastWorth = 1 << 20;
    TableEntry written = entry;
    for (Slot& slot : clusters_[IndexOf(key)].Slots) {
        const std::uint64_t data = slot.Data.load(std::memory_order_relaxed);
        if ((slot.Check.load(std::memory_order_relaxed) ^ data) == key && data != 0) {
            // The same position: a much shallower bound does not displace a deep one, and an unknown
            // best move does not displace a known one.
            const bool current = GenerationOf(data) == generation_;
            if (entry.Kind != Bound::Exact && current && entry.Depth + 4 < DepthOf(data)) return;
            if (!written.Best) written.Best = Unpack(data).Best;
            replaced = &slot;
            break;
        }
        const int age = static_cast<int>((generation_ - GenerationOf(data)) & GenerationMask);
        const int worth = data == 0 ? -1000 : DepthOf(data) - 8 * age;
        if (worth < leastWorth) {
            leastWorth = worth;
            replaced = &slot;
        }
    }
    const std::uint64_t data = Pack(written, generation_);
    replaced->Data.store(data, std::memory_order_relaxed);
    replaced->Check.store(key ^ data, std::memory_order_relaxed);
}

int TranspositionTable::FilledPermille() const {
    const std::size_t sample = std::min<std::size_t>(clusterCount_, 250);
    int filled = 0;
    for (std::size_t i = 0; i < sample; ++i)
        for (const Slot& slot : clusters_[i].Slots) {
            const std::uint64_t data = slot.Data.load(std::memory_order_relaxed);
            filled += data != 0 && GenerationOf(data) == generation_;
        }
    return static_cast<int>(static_cast<std::size_t>(filled) * 1000 / (sample * 4));
}

} // namespace quarnel::engine
