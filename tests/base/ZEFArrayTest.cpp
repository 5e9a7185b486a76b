#include "zefcore/base/ZEFArray.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace {
struct Counted {
    static int live;
    Counted() { ++live; }
    ~Counted() { --live; }
};
int Counted::live = 0;
} // namespace

TEST(ZEFArray, NullEndsWhenEmptyAndEraseReturnsWhatNowStandsThere) {
    ZEFArray<int> a;
    EXPECT_TRUE(a.begin() == nullptr && a.end() == nullptr);
    int outside = 0;
    EXPECT_EQ(a.erase(&outside), nullptr);
    for (int v : {10, 20, 30, 40})
        a.push_back(v);
    EXPECT_EQ(a.end() - a.begin(), 4);
    EXPECT_TRUE(a.erase(-1) == nullptr && a.erase(4) == nullptr && a.erase(INT_MAX) == nullptr);
    EXPECT_TRUE(a.erase(a.end()) == nullptr && a.erase(&outside) == nullptr);
    ASSERT_EQ(a.size(), 4);
    int *p = a.erase(a.begin() + 1);
    ASSERT_TRUE(p == a.begin() + 1 && *p == 30);
    p = a.erase(2); // the last: the new end
    EXPECT_EQ(p, a.end());
    EXPECT_EQ(*a.erase(0), 30);
    EXPECT_EQ(a.erase(0), nullptr); // now empty
    EXPECT_TRUE(a.begin() == nullptr && a.end() == nullptr);

    a.push_back(5);
    a.assign(3);
    EXPECT_EQ(std::vector<int>(a.vbegin(), a.vbegin() + a.size()), std::vector<int>(3, 0));
    a.assign(0);
    EXPECT_EQ(a.end(), nullptr);
}

TEST(ZEFArray, DeletePtrArraySkipsNullsAndKeepsSize) {
    ZEFArray<Counted *> a;
    for (Counted *p : {new Counted, static_cast<Counted *>(nullptr), new Counted})
        a.push_back(p);
    deletePtrArray(a);
    EXPECT_EQ(Counted::live, 0);
    EXPECT_EQ(a.size(), 3);
}

TEST(ZEFArray, FillArithmeticalSuiteStopsBeforeLastAndWraps) {
    int v[4] = {9, 9, 9, 9};
    fillArithmeticalSuite(v + 2, v + 1, 1, 1); // empty range
    fillArithmeticalSuite(v, v + 3, 5, -2);
    EXPECT_EQ(std::vector<int>(v, v + 4), (std::vector<int>{5, 3, 1, 9}));
    fillArithmeticalSuite(v, v + 2, INT_MAX, 1);
    EXPECT_EQ(v[1], INT_MIN);
    float f[3] = {0, 0, 7};
    fillArithmeticalSuite(f, f + 2, 0.5f, 0.25f);
    EXPECT_TRUE(f[0] == 0.5f && f[1] == 0.75f && f[2] == 7.0f);
}
