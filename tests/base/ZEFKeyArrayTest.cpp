#include "zefcore/base/ZEFKeyArray.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <vector>

// Deletions of keys are counted through the global operator delete: ZEFKey has no
// virtual destructor, so a counting subclass would not see them. The memory of a
// counted key is kept until releaseKeys(), so a second delete shows as a count of 2.
namespace {
constexpr int kMaxKeys = 4096;
void *g_keys[kMaxKeys];
int g_deletes[kMaxKeys];
int g_numKeys = 0;

int slotOf(const void *p) {
    return int(std::find(g_keys, g_keys + g_numKeys, p) - g_keys);
}

ZEFKey *makeKey(int number) {
    if (g_numKeys == kMaxKeys)
        std::abort();
    g_deletes[g_numKeys] = 0;
    return static_cast<ZEFKey *>(g_keys[g_numKeys++] = new ZEFKey(number));
}

void freeOrCount(void *p) {
    const int i = slotOf(p);
    i < g_numKeys ? void(++g_deletes[i]) : std::free(p);
}
} // namespace

void *operator new(std::size_t size) {
    if (void *p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void *p) noexcept {
    freeOrCount(p);
}
void operator delete(void *p, std::size_t) noexcept {
    freeOrCount(p);
}

// Random additions (new objects, objects seen before, null, negative and wide numbers),
// replacements, removals by number and rebuilds, against a map from number to key and
// the list of keys in order. The array's destructor must delete exactly the keys it
// still holds, once each; nothing else deletes a key.
TEST(ZEFKeyArray, RandomSequenceMatchesMap) {
    constexpr int kMaxNumber = 40, kWide = 1000;
    std::mt19937 rng(777u);
    std::map<int, ZEFKey *> byNumber;
    std::vector<ZEFKey *> order, all;
    auto number = [&] {
        const int n = zeftest::pick(rng, -2, kMaxNumber + 1);
        return n > kMaxNumber ? kWide : n;
    };
    auto pos = [&](ZEFKey *key) { return std::find(order.begin(), order.end(), key); };
    {
        ZEFKeyArray array;
        for (int step = 0; step < 3000; ++step) {
            SCOPED_TRACE(step);
            const int op = zeftest::pick(rng, 0, 99);
            if (op < 45) {
                ZEFKey *key = nullptr;
                if (!all.empty() && op < 15)
                    key = all[std::size_t(zeftest::pick(rng, 0, int(all.size()) - 1))];
                else if (op > 16)
                    all.push_back(key = makeKey(number()));
                const bool valid = key && key->getKey() >= 0;
                ASSERT_EQ(array.addKey(key), valid);
                if (valid && byNumber.count(key->getKey()))
                    *pos(byNumber[key->getKey()]) = key; // replaced in place
                else if (valid)
                    order.push_back(key);
                if (valid)
                    byNumber[key->getKey()] = key;
            } else if (op < 90) {
                ZEFKey probe(number()); // the number decides, not the object
                auto found = op < 88 ? byNumber.find(probe.getKey()) : byNumber.end();
                ASSERT_EQ(array.removeKey(op < 88 ? &probe : nullptr), found != byNumber.end());
                if (found != byNumber.end())
                    order.erase(pos(found->second)), byNumber.erase(found);
            } else if (op < 93) {
                array.clear();
                byNumber.clear();
                order.clear();
            } else {
                ASSERT_EQ(ZEFKeyArray(array).getNumKeys(), 0); // the copy constructor copies nothing
                ZEFKeyArray other; // assignment shares the pointers, swap exchanges them
                other = array;
                array.clear();
                array.swap(other);
                ASSERT_EQ(other.getNumKeys(), 0);
            }
            ASSERT_EQ(array.getNumKeys(), int(order.size()));
            for (int i = -1; i <= int(order.size()); ++i)
                ASSERT_EQ(array.getKey(i), i >= 0 && i < int(order.size()) ? order[i] : nullptr)
                    << "position " << i;
            for (int n = -2; n <= kWide + 1; n += n == kMaxNumber + 2 ? kWide - kMaxNumber - 2 : 1)
                ASSERT_EQ(array.findKey(n), byNumber.count(n) ? byNumber[n] : nullptr) << "number " << n;
        }
        for (ZEFKey *key : all)
            ASSERT_EQ(g_deletes[slotOf(key)], 0);
    }
    for (ZEFKey *key : all)
        EXPECT_EQ(g_deletes[slotOf(key)], pos(key) != order.end() ? 1 : 0);
    for (int i = 0; i < g_numKeys; ++i)
        std::free(g_keys[i]);
}

// A key is filed under the number it has when added: 0 by default, the source's for a
// copy, the one set by a subclass (which opens the protected renumbering) before.
TEST(ZEFKeyArray, KeysAreFiledUnderTheirNumberWhenAdded) {
    struct RenumberedKey : ZEFKey {
        using ZEFKey::setKey;
    } renumbered;
    renumbered.setKey(5);
    ZEFKey plain, seven(7), copy(seven);
    ZEFKeyArray array;
    ASSERT_TRUE(array.addKey(&plain) && array.addKey(&copy) && array.addKey(&renumbered));
    EXPECT_TRUE(array.findKey(0) == &plain && array.findKey(7) == &copy && array.findKey(5) == &renumbered);
    array.clear(); // these keys are not the array's to delete
}
