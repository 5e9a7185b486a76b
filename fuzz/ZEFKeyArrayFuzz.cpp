// Fuzz target: random operation sequences on two ZEFKeyArray objects, each
// checked after every step against a std::map from key number to key plus the
// order of insertion. Ownership is followed as the class defines it: keys that
// leave an array are the caller's, and at the end the array that is destroyed
// deletes the keys it holds while this target deletes the rest; the sanitizers
// report a leak or a double delete.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/base/ZEFKeyArray.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

namespace {

struct Model {
    std::vector<ZEFKey *> order;
    std::map<int, ZEFKey *> byNumber;
};

void check(const ZEFKeyArray &a, const Model &m) {
    FUZZ_CHECK(a.getNumKeys() == int(m.order.size()));
    FUZZ_CHECK(m.byNumber.size() == m.order.size());
    for (int i = -2; i < int(m.order.size()) + 2; ++i) {
        const bool in = i >= 0 && i < int(m.order.size());
        FUZZ_CHECK(a.getKey(i) == (in ? m.order[size_t(i)] : nullptr));
    }
    int largest = -1;
    for (const auto &entry : m.byNumber) {
        FUZZ_CHECK(a.findKey(entry.first) == entry.second);
        largest = entry.first;
    }
    for (int number : {-1, -100, largest + 1, largest + 1000})
        FUZZ_CHECK(a.findKey(number) == nullptr);
}

int pickNumber(FuzzInput &in) {
    switch (in.range(0, 3)) {
    case 0:
        return in.range(-3, 12);
    case 1:
        return in.range(0, 4000);
    case 2:
        return -in.range(1, 1 << 30);
    default:
        return in.range(0, 40);
    }
}

void removeNumber(Model &m, int number) {
    const auto it = m.byNumber.find(number);
    m.order.erase(std::find(m.order.begin(), m.order.end(), it->second));
    m.byNumber.erase(it);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    std::vector<ZEFKey *> made; // every key ever created, for the final release
    ZEFKeyArray *arrays[2] = {new ZEFKeyArray, new ZEFKeyArray};
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 300; ++steps) {
        const int which = in.range(0, 1);
        ZEFKeyArray &a = *arrays[which];
        Model &m = models[which];
        switch (in.range(0, 8)) {
        case 0:
        case 1: { // add a new key, an old one, or null
            ZEFKey *key = nullptr;
            const int choice = in.range(0, 5);
            if (choice < 4 && made.size() < 200) {
                made.push_back(new ZEFKey(pickNumber(in)));
                key = made.back();
            } else if (choice < 5 && !made.empty()) {
                key = made[size_t(in.range(0, int(made.size()) - 1))];
            }
            const bool ok = key && key->getKey() >= 0;
            FUZZ_CHECK(a.addKey(key) == ok);
            if (!ok)
                break;
            const auto it = m.byNumber.find(key->getKey());
            if (it == m.byNumber.end()) {
                m.order.push_back(key);
                m.byNumber[key->getKey()] = key;
            } else {
                *std::find(m.order.begin(), m.order.end(), it->second) = key;
                it->second = key;
            }
            break;
        }
        case 2: { // remove by number: a probe object that is not held will do
            const int number = in.flag() || m.order.empty()
                                   ? pickNumber(in)
                                   : m.order[size_t(in.range(0, int(m.order.size()) - 1))]->getKey();
            ZEFKey probe(number);
            const bool ok = m.byNumber.count(number) != 0;
            FUZZ_CHECK(a.removeKey(&probe) == ok);
            if (ok)
                removeNumber(m, number);
            break;
        }
        case 3:
            FUZZ_CHECK(!a.removeKey(nullptr));
            break;
        case 4:
            a.clear();
            m = Model();
            break;
        case 5:
            arrays[0]->swap(*arrays[1]);
            std::swap(models[0], models[1]);
            break;
        case 6: { // assignment shares the pointers: the other array is emptied after
            ZEFKeyArray &other = *arrays[1 - which];
            a = other;
            m = models[1 - which];
            check(a, m);
            other.clear();
            models[1 - which] = Model();
            break;
        }
        case 7: {
            const ZEFKeyArray copy(a);
            FUZZ_CHECK(copy.getNumKeys() == 0 && copy.findKey(0) == nullptr);
            break;
        }
        default: {
            const ZEFKeyArray &self = a;
            a = self;
            break;
        }
        }
        check(*arrays[0], models[0]);
        check(*arrays[1], models[1]);
    }
    // Release: array 1 is emptied, array 0 deletes what it holds, the rest is ours.
    arrays[1]->clear();
    delete arrays[1];
    const std::set<ZEFKey *> held(models[0].order.begin(), models[0].order.end());
    delete arrays[0];
    for (ZEFKey *key : made)
        if (!held.count(key))
            delete key;
    return 0;
}
