#include "quarnelchess/search/TranspositionTable.h"

#include <gtest/gtest.h>

#include <thread>
#include <tuple>

namespace quarnel::engine {
namespace {

TEST(TranspositionTable, GivesBackWhatItWasGivenUntilSomethingBetterNeedsTheRoom) {
    TranspositionTable table;
    table.Allocate(1);
    table.Clear();
    TableEntry entry;
    for (const int value : {0, 1, -1, 31900, -31900, NoValue}) {
        EXPECT_FALSE(table.Probe(42, entry));
        table.Store(42, {Move(12, 28), value, -value, 77, Bound::Lower, true});
        ASSERT_TRUE(table.Probe(42, entry));
        EXPECT_EQ(entry.Best, Move(12, 28));
        EXPECT_EQ(std::tuple(entry.Value, entry.StaticEval, entry.Depth, entry.Kind, entry.WasPv),
                  std::tuple(value, -value, 77, Bound::Lower, true));
        table.Clear();
    }
    // Neighbouring keys share a cluster of four: the shallowest makes room, after a few searches all old ones do.
    for (Key key = 1; key <= 4; ++key)
        table.Store(key, {Move(1, 2), 10, 10, static_cast<int>(10 * key), Bound::Exact, false});
    table.Store(5, {Move(1, 2), 10, 10, 3, Bound::Exact, false});
    EXPECT_FALSE(table.Probe(1, entry));
    EXPECT_TRUE(table.Probe(4, entry));
    for (int search = 0; search < 6; ++search) table.NextGeneration();
    for (Key key = 6; key <= 9; ++key) table.Store(key, {Move(1, 2), 10, 10, 1, Bound::Exact, false});
    for (Key key = 6; key <= 9; ++key) EXPECT_TRUE(table.Probe(key, entry)) << key;
    // A mate is as far away as the position it was stored for.
    EXPECT_EQ(ValueFromTable(ValueToTable(MateValue - 3, 2), 4), MateValue - 5);
    EXPECT_EQ(ValueFromTable(ValueToTable(3 - MateValue, 2), 4), 5 - MateValue);
}

TEST(TranspositionTable, NeverHandsOutAMixtureOfTwoEntries) {
    TranspositionTable table;
    table.Allocate(1);
    table.Clear();
    // Two writers fight over one cluster; value and evaluation of a whole entry always agree with its key.
    const auto write = [&table](int from) {
        for (int i = 0; i < 20000; ++i) {
            const int key = from + i % 7;
            table.Store(static_cast<Key>(key), {Move(1, 2), key, key, i % 60, Bound::Exact, false});
        }
    };
    std::thread other([&] { write(100); });
    write(200);
    for (int i = 0; i < 20000; ++i) {
        const int key = 100 + i % 120;
        TableEntry entry;
        if (!table.Probe(static_cast<Key>(key), entry)) continue;
        ASSERT_EQ(entry.Value, key);
        ASSERT_EQ(entry.StaticEval, key);
    }
    other.join();
}

} // namespace
} // namespace quarnel::engine
