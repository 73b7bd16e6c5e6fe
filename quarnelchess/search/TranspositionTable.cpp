#include "quarnelchess/search/TranspositionTable.h"

#include <algorithm>
#include <memory>

namespace quarnel::engine {
namespace {

// Data word: move 16 | value 16 | static evaluation 16 | depth 8 | generation 5 | principal variation 1 | bound 2.
constexpr int GenerationShift = 3;

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

void TranspositionTable::Allocate(std::size_t megabytes) {
    ReleaseTableMemory(memory_);
    clusterCount_ = std::max<std::size_t>(megabytes, 1) * ((1 << 20) / sizeof(Cluster));
    do {
        memory_ = AllocateTableMemory(clusterCount_ * sizeof(Cluster));
    } while (memory_ == nullptr && (clusterCount_ /= 2) > 1);
    clusters_ = memory_ != nullptr ? static_cast<Cluster*>(memory_) : &smallest_;
    clusterCount_ = std::max<std::size_t>(clusterCount_, 1);
}

void TranspositionTable::Clear(std::size_t part, std::size_t parts) {
    const std::size_t first = clusterCount_ * part / parts;
    std::uninitialized_value_construct(clusters_ + first, clusters_ + clusterCount_ * (part + 1) / parts);
    if (part == 0) generation_ = 0;
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
