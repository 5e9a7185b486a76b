#include "zefcore/base/IDGenerator.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <random>
#include <set>
#include <type_traits>

namespace {
constexpr int kLastID = 2147483646;

// The generator's one field, its interval list. IDGenerator is standard layout, so a
// pointer to it is a pointer to that first member: exhaustion can be set up directly
// instead of by two billion calls.
static_assert(std::is_standard_layout_v<IDGenerator> && sizeof(IDGenerator) == sizeof(IDList *));
IDList *headOf(IDGenerator &gen) {
    return *reinterpret_cast<IDList **>(&gen);
}
} // namespace

TEST(IDGenerator, StatedQuirks) {
    IDGenerator gen;
    EXPECT_EQ(gen.generateID(-5), 1);
    EXPECT_EQ(gen.generateID(0), 2);
    EXPECT_EQ(gen.generateID(10), 10);
    EXPECT_EQ(gen.generateID(10), 3); // taken: the lowest free instead
    EXPECT_EQ(gen.generateID(kLastID), kLastID);
    EXPECT_FALSE(gen.freeID(kLastID + 1) || gen.freeID(5) || gen.freeID(-1));

    IDGenerator fresh; // freeID(0) joins the first interval from below
    EXPECT_TRUE(fresh.freeID(0));
    EXPECT_FALSE(fresh.freeID(0));
    EXPECT_EQ(fresh.generateID(), 0);
    for (int i = 1; i <= 8; ++i)
        EXPECT_EQ(fresh.generateID(), i);
    EXPECT_TRUE(fresh.freeID(5) && fresh.freeID(7) && fresh.freeID(6)); // 6 joins 5; touches 7, not merged
    EXPECT_TRUE(fresh.freeID(7)); // free, but the end of the interval below: accepted again
    for (int expected : {5, 6, 7, 7, 9})
        EXPECT_EQ(fresh.generateID(), expected);

    IDGenerator wide;
    EXPECT_TRUE(wide.freeID(2147483647)); // the interval's end passes the int range
    EXPECT_EQ(wide.generateID(), 1);
}

TEST(IDGenerator, ExhaustionGivesMinusOneUntilAFree) {
    IDGenerator gen;
    headOf(gen)->m_first = kLastID; // as after handing out 1 to kLastID - 1
    headOf(gen)->m_count = 1;
    EXPECT_EQ(gen.generateID(), kLastID);
    EXPECT_TRUE(gen.generateID() == -1 && gen.generateID(7) == -1 && gen.generateID(kLastID) == -1);
    EXPECT_TRUE(gen.freeID(7)); // a node in front of the empty one
    EXPECT_TRUE(gen.freeID(kLastID));
    EXPECT_EQ(gen.generateID(kLastID), kLastID); // emptied, not alone: the node goes
    EXPECT_EQ(gen.generateID(7), 7);
    EXPECT_EQ(gen.generateID(), -1);
    EXPECT_TRUE(gen.freeID(3));
    EXPECT_TRUE(gen.generateID() == 3 && gen.generateID() == -1);
}

// Random use within identifiers below kCap, against the set of free identifiers.
// After every step a copy is drained and must give exactly the free set, then kCap.
TEST(IDGenerator, RandomSequenceMatchesSetOfFreeIDs) {
    constexpr int kCap = 160;
    std::mt19937 rng(5150u);
    IDGenerator gen;
    std::set<int> freeIds;
    auto reset = [&] {
        freeIds.clear();
        for (int id = 1; id < kCap; ++id)
            freeIds.insert(id);
    };
    reset();
    for (int step = 0; step < 20000; ++step) {
        SCOPED_TRACE(step);
        const int op = zeftest::pick(rng, 0, 99), id = zeftest::pick(rng, -3, kCap - 1);
        if (op < 50 && freeIds.size() >= 20) {
            const int expected = op < 30 || !freeIds.count(id) ? *freeIds.begin() : id;
            ASSERT_EQ(op < 30 ? gen.generateID() : gen.generateID(id), expected);
            freeIds.erase(expected);
        } else if (op < 96) {
            // A free id whose lower neighbour is free may end a touching interval: never freed.
            const bool isFree = freeIds.count(id) != 0;
            if (isFree && id > 0 && freeIds.count(id - 1))
                continue;
            ASSERT_EQ(gen.freeID(id), id >= 0 && !isFree) << "id " << id;
            if (id >= 0)
                freeIds.insert(id);
        } else if (op < 97) {
            gen.clear();
            reset();
        } else {
            IDGenerator saved(gen);
            gen.clear();
            gen = saved;
            gen = gen;
        }
        IDGenerator probe(gen);
        for (int expected : freeIds)
            ASSERT_EQ(probe.generateID(), expected);
        ASSERT_EQ(probe.generateID(), kCap);
    }
}
