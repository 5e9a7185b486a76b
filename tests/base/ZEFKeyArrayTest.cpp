#include "zefcore/base/ZEFKeyArray.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <vector>

// Deletions of keys are counted through the global operator delete (ZEFKey has no virtual
// destructor, so a counting subclass would not see them). A counted key's memory is kept
// to the end, so a second delete shows as a count of 2.
namespace {
constexpr int kMaxKeys = 4096;
void *g_keys[kMaxKeys];
int g_deletes[kMaxKeys], g_numKeys = 0;

int slotOf(const void *p) {
    return int(std::find(g_keys, g_keys + g_numKeys, p) - g_keys);
}
void freeOrCount(void *p) {
    const int i = slotOf(p);
    i < g_numKeys ? void(++g_deletes[i]) : std::free(p);
}
} // namespace

void *operator new(std::size_t size) {
    void *p = std::malloc(size ? size : 1);
    return p ? p : throw std::bad_alloc();
}
void operator delete(void *p) noexcept {
    freeOrCount(p);
}
void operator delete(void *p, std::size_t) noexcept {
    freeOrCount(p);
}

// Random additions (new keys, default and copied ones, keys seen before, null, negative
// and wide numbers), replacements, removals by number and rebuilds, against a map from
// number to key and the keys in order. The array's destructor must delete exactly the
// keys it still holds, once each; nothing else deletes a key.
TEST(ZEFKeyArray, RandomSequenceMatchesMap) {
    constexpr int kMaxNumber = 40, kWide = 1000;
    struct RenumberedKey : ZEFKey {
        using ZEFKey::setKey;
    };
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
            const int op = zeftest::pick(rng, 0, 99);
            if (op < 45) {
                ZEFKey *key = nullptr;
                if (!all.empty() && op < 15) {
                    key = all[std::size_t(zeftest::pick(rng, 0, int(all.size()) - 1))];
                } else if (op > 16) { // a default key has number 0, a copy the source's
                    const ZEFKey source(number());
                    key = source.getKey() == 0 ? new ZEFKey : new ZEFKey(source);
                    ASSERT_TRUE(g_numKeys < kMaxKeys && key->getKey() == source.getKey());
                    all.push_back(key), g_keys[g_numKeys++] = key;
                }
                const bool valid = key && key->getKey() >= 0;
                ASSERT_EQ(array.addKey(key), valid) << step;
                if (valid && byNumber.count(key->getKey()))
                    *pos(byNumber[key->getKey()]) = key; // replaced in place
                else if (valid)
                    order.push_back(key);
                if (valid)
                    byNumber[key->getKey()] = key;
            } else if (op < 90) {
                RenumberedKey probe; // the number decides, not the object
                const int n = number();
                probe.setKey(n);
                auto found = op < 88 ? byNumber.find(n) : byNumber.end();
                ASSERT_EQ(array.removeKey(op < 88 ? &probe : nullptr), found != byNumber.end()) << step;
                if (found != byNumber.end())
                    order.erase(pos(found->second)), byNumber.erase(found);
            } else if (op < 93) {
                array.clear(), byNumber.clear(), order.clear();
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
                ASSERT_EQ(array.getKey(i), i >= 0 && i < int(order.size()) ? order[i] : nullptr) << step;
            for (int n = -2; n <= kWide + 1; n += n == kMaxNumber + 2 ? kWide - kMaxNumber - 2 : 1)
                ASSERT_EQ(array.findKey(n), byNumber.count(n) ? byNumber[n] : nullptr) << step << " " << n;
        }
        for (ZEFKey *key : all)
            ASSERT_EQ(g_deletes[slotOf(key)], 0);
    }
    for (ZEFKey *key : all)
        EXPECT_EQ(g_deletes[slotOf(key)], pos(key) != order.end() ? 1 : 0);
    for (int i = 0; i < g_numKeys; ++i)
        std::free(g_keys[i]);
}
