#include "zefcore/base/ZEFArray.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

struct Counted {
    static int live;
    Counted() { ++live; }
    ~Counted() { --live; }
};
int Counted::live = 0;

} // namespace

TEST(ZEFArray, BeginAndEndAreNullWhenEmpty) {
    ZEFArray<int> a;
    EXPECT_EQ(a.begin(), nullptr);
    EXPECT_EQ(a.end(), nullptr);
    a.push_back(1);
    a.push_back(2);
    EXPECT_EQ(a.end() - a.begin(), 2);
    a.clear();
    EXPECT_EQ(a.begin(), nullptr);
    EXPECT_EQ(a.end(), nullptr);
    int n = 0;
    for (const int *p = a.begin(); p != a.end(); ++p)
        ++n;
    EXPECT_EQ(n, 0);
}

TEST(ZEFArray, EraseByIndexReturnsWhatNowStandsThere) {
    ZEFArray<int> one;
    one.push_back(7);
    EXPECT_EQ(one.erase(0), nullptr);
    EXPECT_EQ(one.size(), 0);

    ZEFArray<int> two;
    two.push_back(1);
    two.push_back(2);
    int *p = two.erase(0);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(*p, 2);
    two.push_back(3);
    int *last = two.erase(two.size() - 1);
    EXPECT_EQ(last, two.end());
    EXPECT_EQ(two.size(), 1);

    EXPECT_EQ(two.erase(-1), nullptr);
    EXPECT_EQ(two.erase(two.size()), nullptr);
    EXPECT_EQ(two.erase(INT_MAX), nullptr);
    EXPECT_EQ(two.size(), 1);
}

TEST(ZEFArray, EraseByPointerRefusesOutsideTheArray) {
    ZEFArray<int> a;
    int outside = 0;
    EXPECT_EQ(a.erase(&outside), nullptr);
    a.push_back(10);
    a.push_back(20);
    a.push_back(30);
    EXPECT_EQ(a.erase(a.end()), nullptr);
    EXPECT_EQ(a.erase(a.begin() - 1), nullptr);
    EXPECT_EQ(a.size(), 3);
    int *p = a.erase(a.begin() + 1);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(*p, 30);
    EXPECT_EQ(a[0], 10);
}

TEST(ZEFArray, AssignZeroesExactlyCount) {
    ZEFArray<int> a;
    a.push_back(5);
    a.assign(3);
    ASSERT_EQ(a.size(), 3);
    EXPECT_EQ(a[0], 0);
    EXPECT_EQ(a[2], 0);
    a.assign(0);
    EXPECT_EQ(a.begin(), nullptr);
}

TEST(ZEFArray, DeletePtrArraySkipsNullsAndKeepsSize) {
    ZEFArray<Counted *> a;
    a.push_back(new Counted);
    a.push_back(nullptr);
    a.push_back(new Counted);
    EXPECT_EQ(Counted::live, 2);
    deletePtrArray(a);
    EXPECT_EQ(Counted::live, 0);
    EXPECT_EQ(a.size(), 3);
    a.clear();
}

TEST(ZEFArray, FillArithmeticalSuite) {
    int v[4] = {9, 9, 9, 9};
    fillArithmeticalSuite(v, v, 1, 1);
    fillArithmeticalSuite(v + 2, v + 1, 1, 1);
    EXPECT_EQ(v[0], 9);
    EXPECT_EQ(v[1], 9);
    fillArithmeticalSuite(v, v + 3, 5, -2);
    EXPECT_EQ(v[0], 5);
    EXPECT_EQ(v[1], 3);
    EXPECT_EQ(v[2], 1);
    EXPECT_EQ(v[3], 9);
    // Integer progressions wrap instead of overflowing.
    fillArithmeticalSuite(v, v + 2, INT_MAX, 1);
    EXPECT_EQ(v[1], INT_MIN);
}
