#include "zefcore/base/ZEFKeyArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <random>
#include <vector>

// Deletions of keys are counted through the global operator delete: ZEFKey has no
// virtual destructor, so a counting subclass would not see them. Memory of a counted
// key is kept (never reused) until releaseKeys(), so a second delete shows as a count of 2.
namespace {
constexpr int kMaxKeys = 4096;
void *g_keys[kMaxKeys];
int g_deletes[kMaxKeys];
int g_numKeys = 0;

int slotOf(const void *p) {
    for (int i = 0; i < g_numKeys; ++i) {
        if (g_keys[i] == p)
            return i;
    }
    return -1;
}

ZEFKey *makeKey(int number) {
    if (g_numKeys == kMaxKeys)
        std::abort();
    ZEFKey *key = new ZEFKey(number);
    g_keys[g_numKeys] = key;
    g_deletes[g_numKeys++] = 0;
    return key;
}

int deletesOf(const ZEFKey *key) {
    const int i = slotOf(key);
    return i < 0 ? -1 : g_deletes[i];
}

void freeOrCount(void *p) {
    const int i = slotOf(p);
    if (i < 0)
        std::free(p);
    else
        ++g_deletes[i];
}

void releaseKeys() {
    for (int i = 0; i < g_numKeys; ++i)
        std::free(g_keys[i]);
    g_numKeys = 0;
}
} // namespace

void *operator new(std::size_t size) {
    if (void *p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept { return std::malloc(size ? size : 1); }
void operator delete(void *p) noexcept { freeOrCount(p); }
void operator delete(void *p, std::size_t) noexcept { freeOrCount(p); }
void operator delete(void *p, const std::nothrow_t &) noexcept { freeOrCount(p); }

TEST(ZEFKeyArray, WideNumbersCopiesAndOwnership) {
    ZEFKey *k5 = makeKey(5), *k9 = makeKey(9), *other9 = makeKey(9), *k1000 = makeKey(1000);
    {
        ZEFKeyArray array;
        for (ZEFKey *key : {k5, k9, k1000, other9})  // other9 replaces k9 in place
            EXPECT_TRUE(array.addKey(key));
        EXPECT_EQ(array.findKey(1000), k1000);
        EXPECT_EQ(array.findKey(1001), nullptr);
        EXPECT_EQ(array.getKey(1), other9);
        EXPECT_EQ(ZEFKeyArray(array).getNumKeys(), 0);  // the copy constructor copies nothing
        EXPECT_TRUE(array.removeKey(k5));
        EXPECT_EQ(array.findKey(1000), k1000);
        EXPECT_EQ(deletesOf(k5) + deletesOf(k9), 0);
    }
    // The destructor deleted what the array held, once each, and nothing else.
    EXPECT_EQ(deletesOf(k5) + deletesOf(k9), 0);
    EXPECT_EQ(deletesOf(other9), 1);
    EXPECT_EQ(deletesOf(k1000), 1);
    releaseKeys();
}

// Random additions, replacements, removals and rebuilds against a map from number to
// key and a list of keys in order. At the end the array's destructor must delete
// exactly the keys it still holds.
TEST(ZEFKeyArray, RandomSequenceMatchesMap) {
    constexpr int kMaxNumber = 40;
    constexpr int kSteps = 3000;
    std::mt19937 rng(777u);
    std::map<int, ZEFKey *> byNumber;
    std::vector<ZEFKey *> order;
    std::vector<ZEFKey *> all;
    auto number = [&] { return static_cast<int>(rng() % (kMaxNumber + 3)) - 2; };
    {
        ZEFKeyArray array;
        for (int step = 0; step < kSteps; ++step) {
            SCOPED_TRACE(step);
            const unsigned op = static_cast<unsigned>(rng() % 100);
            if (op < 45) {
                // A new object, or one seen before (still held or not).
                ZEFKey *key = nullptr;
                if (!all.empty() && rng() % 3 == 0)
                    key = all[rng() % all.size()];
                else if (rng() % 20 != 0)
                    all.push_back(key = makeKey(number()));
                const bool valid = key && key->getKey() >= 0;
                ASSERT_EQ(array.addKey(key), valid);
                if (valid) {
                    auto found = byNumber.find(key->getKey());
                    if (found == byNumber.end())
                        order.push_back(key);
                    else
                        *std::find(order.begin(), order.end(), found->second) = key;
                    byNumber[key->getKey()] = key;
                }
            } else if (op < 90) {
                ZEFKey probe(number());
                ZEFKey *key = rng() % 20 == 0 ? nullptr : &probe;
                auto found = key ? byNumber.find(key->getKey()) : byNumber.end();
                ASSERT_EQ(array.removeKey(key), found != byNumber.end());
                if (found != byNumber.end()) {
                    order.erase(std::find(order.begin(), order.end(), found->second));
                    byNumber.erase(found);
                }
            } else if (op < 93) {
                array.clear();
                byNumber.clear();
                order.clear();
            } else {
                ZEFKeyArray other;  // assignment shares the pointers, swap exchanges them
                other = array;
                array.clear();
                array.swap(other);
                ASSERT_EQ(other.getNumKeys(), 0);
            }
            ASSERT_EQ(array.getNumKeys(), static_cast<int>(order.size()));
            for (int i = -1; i <= static_cast<int>(order.size()); ++i) {
                const bool inRange = i >= 0 && i < static_cast<int>(order.size());
                ASSERT_EQ(array.getKey(i), inRange ? order[i] : nullptr) << "position " << i;
            }
            for (int n = -2; n <= kMaxNumber + 2; ++n) {
                auto found = byNumber.find(n);
                ASSERT_EQ(array.findKey(n), found == byNumber.end() ? nullptr : found->second) << "number " << n;
            }
        }
        for (ZEFKey *key : all)
            ASSERT_EQ(deletesOf(key), 0);
    }
    for (ZEFKey *key : all) {
        const bool held = std::find(order.begin(), order.end(), key) != order.end();
        EXPECT_EQ(deletesOf(key), held ? 1 : 0);
    }
    releaseKeys();
}
