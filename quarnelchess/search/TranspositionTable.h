// Transposition table: what earlier searches found out about a position, shared by all search threads.
//
// Clusters of four entries fill one cache line. An entry is two words, the second scrambled with the
// first; a reader that catches a half-written entry sees a key that does not fit, so no lock is needed.
// Allocate() and Clear() only while no search runs.
#pragma once

#include "quarnelchess/board/Types.h"
#include "quarnelchess/search/OperatingSystem.h"

#include <atomic>

namespace quarnel::engine {

enum class Bound : std::uint8_t { None, Upper, Lower, Exact };

struct TableEntry {
    Move Best;
    int Value = NoValue; // as seen from the stored node: mates count plies from there
    int StaticEval = NoValue;
    int Depth = 0;
    Bound Kind = Bound::None;
    bool WasPv = false;
};

class TranspositionTable {
  public:
    /// Empty, and so small that it always fits.
    TranspositionTable() = default;
    ~TranspositionTable() { ReleaseTableMemory(memory_); }
    TranspositionTable(const TranspositionTable&) = delete;
    TranspositionTable& operator=(const TranspositionTable&) = delete;

    /// Takes memory for a table of this size, or for a smaller one when it is short. What it holds is undefined until
    /// Clear().
    void Allocate(std::size_t megabytes);
    /// Empties one of `parts` equal parts, so that threads can share the work; by itself the whole table.
    void Clear(std::size_t part = 0, std::size_t parts = 1);
    /// A new search begins: older entries give way first.
    void NextGeneration() { generation_ = (generation_ + 1) & GenerationMask; }

    /// False when nothing is known about the position.
    bool Probe(Key key, TableEntry& entry) const;
    void Store(Key key, const TableEntry& entry);
    void Prefetch(Key key) const { __builtin_prefetch(&clusters_[IndexOf(key)]); }

    /// Share of entries written by the current search, in thousandths, from a sample.
    int FilledPermille() const;

  private:
    static constexpr unsigned GenerationMask = 31;

    struct Slot {
        std::atomic<std::uint64_t> Check{0}; // key ^ Data
        std::atomic<std::uint64_t> Data{0};
    };
    struct alignas(64) Cluster {
        Slot Slots[4];
    };

    __extension__ using WideKey = unsigned __int128;
    // The high half of key times count spreads keys evenly over any number of clusters.
    std::size_t IndexOf(Key key) const {
        return static_cast<std::size_t>((static_cast<WideKey>(key) * clusterCount_) >> 64);
    }

    Cluster smallest_;       // in use while there is no memory for more
    void* memory_ = nullptr; // of all others
    Cluster* clusters_ = &smallest_;
    std::size_t clusterCount_ = 1;
    unsigned generation_ = 0;
};

/// Mate scores count plies from the root in the search and from the node in the table.
constexpr int ValueToTable(int value, int ply) {
    if (value >= MateInMaxPly) return value + ply;
    if (value <= -MateInMaxPly) return value - ply;
    return value;
}
constexpr int ValueFromTable(int value, int ply) {
    if (value == NoValue) return NoValue;
    if (value >= MateInMaxPly) return value - ply;
    if (value <= -MateInMaxPly) return value + ply;
    return value;
}

} // namespace quarnel::engine
