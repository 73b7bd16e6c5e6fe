#include "quarnelchess/TranspositionTable.h"

#include <gtest/gtest.h>

#include <thread>

namespace quarnel::engine {
namespace {

TEST(TranspositionTable, GivesBackWhatItWasGiven) {
    TranspositionTable table(1);
    TableEntry entry;
    EXPECT_FALSE(table.Probe(42, entry));
    for (const int value : {0, 1, -1, 31900, -31900, NoValue}) {
        table.Store(42, {Move(12, 28), value, -value, 77, Bound::Lower, true});
        ASSERT_TRUE(table.Probe(42, entry));
        EXPECT_EQ(entry.Value, value);
        EXPECT_EQ(entry.StaticEval, -value);
        EXPECT_EQ(entry.Best, Move(12, 28));
        EXPECT_EQ(entry.Depth, 77);
        EXPECT_EQ(entry.Kind, Bound::Lower);
        EXPECT_TRUE(entry.WasPv);
        table.Clear();
        EXPECT_FALSE(table.Probe(42, entry));
    }
}

TEST(TranspositionTable, KeepsDeepEntriesOfThisSearchAndDropsOldOnes) {
    TranspositionTable table(1);
    TableEntry entry;
    // Neighbouring keys share a cluster of four.
    for (Key key = 1; key <= 4; ++key)
        table.Store(key, {Move(1, 2), 10, 10, static_cast<int>(10 * key), Bound::Exact, false});
    table.Store(5, {Move(1, 2), 10, 10, 3, Bound::Exact, false});
    EXPECT_FALSE(table.Probe(1, entry)); // the shallowest made room
    EXPECT_TRUE(table.Probe(4, entry));
    for (int search = 0; search < 6; ++search) table.NextGeneration();
    for (Key key = 6; key <= 9; ++key) table.Store(key, {Move(1, 2), 10, 10, 1, Bound::Exact, false});
    for (Key key = 6; key <= 9; ++key) EXPECT_TRUE(table.Probe(key, entry)) << key;
}

TEST(TranspositionTable, CountsMatesFromTheStoredPosition) {
    const int mateInThree = MateValue - 3;
    EXPECT_EQ(ValueFromTable(ValueToTable(mateInThree, 2), 2), mateInThree);
    EXPECT_EQ(ValueFromTable(ValueToTable(mateInThree, 2), 4), mateInThree - 2);
    EXPECT_EQ(ValueFromTable(ValueToTable(-mateInThree, 2), 4), -mateInThree + 2);
    EXPECT_EQ(ValueFromTable(ValueToTable(150, 9), 3), 150);
}

TEST(TranspositionTable, NeverHandsOutAMixtureOfTwoEntries) {
    TranspositionTable table(1);
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
