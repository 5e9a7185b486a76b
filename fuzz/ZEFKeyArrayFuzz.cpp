// Fuzz target: operation sequences on two ZEFKeyArray objects, compared after every
// step with a vector of the keys in order of insertion. Ownership is followed as the
// class defines it: keys that leave an array are the caller's; at the end the array
// destroyed deletes the keys it holds and this target deletes the rest, so that the
// sanitizers report a leak or a double delete.
#include "FuzzInput.h"
#include "zefcore/base/ZEFKeyArray.h"

#include <algorithm>
#include <vector>

namespace {

using Model = std::vector<ZEFKey *>;

Model::iterator findNumber(Model &m, int number) {
    return std::find_if(m.begin(), m.end(), [&](ZEFKey *k) { return k->getKey() == number; });
}

void check(const ZEFKeyArray &a, Model &m) {
    const int n = int(m.size());
    FUZZ_CHECK(a.getNumKeys() == n && !a.getKey(-1) && !a.getKey(n) && !a.findKey(-1));
    int largest = -1;
    for (int i = 0; i < n; ++i) {
        FUZZ_CHECK(a.getKey(i) == m[size_t(i)] && a.findKey(m[size_t(i)]->getKey()) == m[size_t(i)]);
        largest = std::max(largest, m[size_t(i)]->getKey());
    }
    FUZZ_CHECK(!a.findKey(largest + 1) && !a.findKey(-100));
    for (int number = 0; number < 8; ++number) // numbers below the largest that are not held
        FUZZ_CHECK(findNumber(m, number) != m.end() || !a.findKey(number));
}

int pickNumber(FuzzInput &in) {
    const int kind = in.range(0, 2);
    return kind == 0 ? in.range(-3, 40) : kind == 1 ? in.range(0, 4000) : -in.range(1, 1 << 30);
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
        switch (in.range(0, 6)) {
        case 0:
        case 1: { // a new key, one made before, or null; a held number is replaced in place
            const int choice = in.range(0, 5);
            ZEFKey *key = nullptr;
            if (choice < 4 && made.size() < 200)
                key = made.emplace_back(new ZEFKey(pickNumber(in)));
            else if (choice < 5 && !made.empty())
                key = made[size_t(in.range(0, int(made.size()) - 1))];
            const bool ok = key && key->getKey() >= 0;
            FUZZ_CHECK(a.addKey(key) == ok);
            if (ok) {
                const auto it = findNumber(m, key->getKey());
                it == m.end() ? m.push_back(key) : void(*it = key);
            }
            break;
        }
        case 2: { // by number: a probe object that is not held will do
            ZEFKey probe(in.flag() || m.empty() ? pickNumber(in)
                                                : m[size_t(in.range(0, int(m.size()) - 1))]->getKey());
            const auto it = findNumber(m, probe.getKey());
            FUZZ_CHECK(a.removeKey(&probe) == (it != m.end()) && !a.removeKey(nullptr));
            if (it != m.end())
                m.erase(it);
            break;
        }
        case 3:
            a.clear();
            m.clear();
            break;
        case 4:
            arrays[0]->swap(*arrays[1]);
            std::swap(models[0], models[1]);
            break;
        case 5: { // the two share the pointers: the other one is emptied after
            a = *arrays[1 - which];
            m = models[1 - which];
            check(a, m);
            const ZEFKeyArray copy(a); // reads nothing
            FUZZ_CHECK(copy.getNumKeys() == 0 && !copy.findKey(0));
            arrays[1 - which]->clear();
            models[1 - which].clear();
            break;
        }
        default:
            a = static_cast<const ZEFKeyArray &>(a);
            break;
        }
        check(*arrays[0], models[0]);
        check(*arrays[1], models[1]);
    }
    arrays[1]->clear();
    delete arrays[1];
    const Model held = models[0];
    delete arrays[0];
    for (ZEFKey *key : made)
        if (std::find(held.begin(), held.end(), key) == held.end())
            delete key;
    return 0;
}
