#include "zefcore/base/IDGenerator.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <set>
#include <type_traits>

namespace {
constexpr int kLastID = 2147483646;

// IDGenerator is standard layout with its interval list as only field: exhaustion is
// set up directly instead of by two billion calls.
static_assert(std::is_standard_layout_v<IDGenerator> && sizeof(IDGenerator) == sizeof(IDList *));
IDList *headOf(IDGenerator &gen) {
    return *reinterpret_cast<IDList **>(&gen);
}
} // namespace

// What the random sequence below leaves out: touching intervals, the top of the range,
// exhaustion.
TEST(IDGenerator, TouchingIntervalsRangeEndAndExhaustion) {
    IDGenerator gen, wide, full;
    for (int i = 1; i <= 8; ++i)
        EXPECT_EQ(gen.generateID(), i);
    EXPECT_TRUE(gen.freeID(5) && gen.freeID(7) && gen.freeID(6)); // 6 joins 5; touches 7, not merged
    EXPECT_TRUE(gen.freeID(7)); // free, but the end of the interval below: accepted again
    for (int expected : {5, 6, 7, 7, 9})
        EXPECT_EQ(gen.generateID(), expected);
    EXPECT_TRUE(gen.generateID(kLastID) == kLastID && !gen.freeID(kLastID + 1));
    EXPECT_TRUE(wide.freeID(kLastID + 1) && wide.generateID() == 1); // an end past the int range
    headOf(full)->m_first = kLastID;                                 // as after handing out 1 to kLastID - 1
    headOf(full)->m_count = 1;
    EXPECT_EQ(full.generateID(), kLastID);
    EXPECT_TRUE(full.generateID() == -1 && full.generateID(7) == -1 && full.generateID(kLastID) == -1);
    EXPECT_TRUE(full.freeID(7) && full.freeID(kLastID)); // 7: a node in front of the empty one
    EXPECT_EQ(full.generateID(kLastID), kLastID);        // emptied, not alone: the node goes
    EXPECT_TRUE(full.generateID(7) == 7 && full.generateID() == -1);
    EXPECT_TRUE(full.freeID(3) && full.generateID() == 3 && full.generateID() == -1);
}

// Random use within identifiers below kCap, against the set of free identifiers. After
// every step a copy is drained and must give exactly the free set, then kCap.
TEST(IDGenerator, RandomSequenceMatchesSetOfFreeIDs) {
    constexpr int kCap = 160;
    std::mt19937 rng(5150u);
    IDGenerator gen;
    std::set<int> freeIds;
    for (int step = 0; step < 20000; ++step) {
        const int op = zeftest::pick(rng, 0, 99), id = zeftest::pick(rng, -3, kCap - 1);
        if (step == 0 || op == 96) {
            step ? gen.clear() : void();
            freeIds.clear();
            for (int i = 1; i < kCap; ++i)
                freeIds.insert(i);
        } else if (op < 50 && freeIds.size() >= 20) { // a negative, used or 0 id: the lowest
            const int expected = op < 30 || !freeIds.count(id) ? *freeIds.begin() : id;
            ASSERT_EQ(op < 30 ? gen.generateID() : gen.generateID(id), expected) << step;
            freeIds.erase(expected);
        } else if (op < 96) { // a free id next to a free one may end a touching interval: left out
            const bool isFree = freeIds.count(id) != 0;
            if (isFree && id > 0 && freeIds.count(id - 1))
                continue;
            ASSERT_EQ(gen.freeID(id), id >= 0 && !isFree) << step << " id " << id;
            if (id >= 0)
                freeIds.insert(id);
        } else {
            IDGenerator saved(gen);
            gen.clear();
            gen = saved;
            gen = gen;
        }
        IDGenerator probe(gen);
        for (int expected : freeIds)
            ASSERT_EQ(probe.generateID(), expected) << step;
        ASSERT_EQ(probe.generateID(), kCap) << step;
    }
}
