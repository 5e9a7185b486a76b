// Fuzz target: operation sequences on two ZEFKeyArray objects, compared after every step
// with a vector of the keys in order of insertion. Ownership is followed as the class
// defines it: keys that leave an array are the caller's; at the end the array destroyed
// deletes the keys it holds and this target the rest, so that the sanitizers see a leak
// or a double delete.
#include "FuzzInput.h"
#include "zefcore/base/ZEFKeyArray.h"

#include <algorithm>
#include <vector>

namespace {

using Model = std::vector<ZEFKey *>;

Model::iterator findNumber(Model &m, int number) {
    return std::find_if(m.begin(), m.end(), [&](ZEFKey *k) { return k->getKey() == number; });
}

// By position, by each number held, by numbers not held below and above the largest.
void check(const ZEFKeyArray &a, Model &m) {
    const int n = int(m.size());
    FUZZ_CHECK(a.getNumKeys() == n && !a.getKey(-1) && !a.getKey(n) && !a.findKey(-1));
    int largest = -1;
    for (int i = 0; i < n; ++i) {
        FUZZ_CHECK(a.getKey(i) == m[size_t(i)] && a.findKey(m[size_t(i)]->getKey()) == m[size_t(i)]);
        largest = std::max(largest, m[size_t(i)]->getKey());
    }
    for (int number = 0; number < 8; ++number)
        FUZZ_CHECK(findNumber(m, number) != m.end() || !a.findKey(number));
    FUZZ_CHECK(!a.findKey(largest + 1) && !a.findKey(largest + 1000));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    std::vector<ZEFKey *> made; // every key ever created, for the final release
    ZEFKeyArray *arrays[2] = {new ZEFKeyArray, new ZEFKeyArray};
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 300; ++steps) {
        const int which = in.range(0, 1), op = in.range(0, 5), kind = in.range(0, 2);
        const int number = kind == 0   ? in.range(-3, 40)
                           : kind == 1 ? in.range(0, 4000)
                                       : -in.range(1, 1 << 30);
        ZEFKeyArray &a = *arrays[which];
        Model &m = models[which];
        if (op <= 1) { // a new key, one made before, or null; a held number is replaced in place
            ZEFKey *key = op == 0 && made.size() < 200 ? made.emplace_back(new ZEFKey(number))
                          : in.flag() && !made.empty() ? made[size_t(in.range(0, int(made.size()) - 1))]
                                                       : nullptr;
            const bool ok = key && key->getKey() >= 0;
            FUZZ_CHECK(a.addKey(key) == ok);
            const auto it = ok ? findNumber(m, key->getKey()) : m.end();
            if (it != m.end())
                *it = key;
            else if (ok)
                m.push_back(key);
        } else if (op == 2) { // by number: a probe object that is not held will do
            ZEFKey probe(in.flag() || m.empty() ? number
                                                : m[size_t(in.range(0, int(m.size()) - 1))]->getKey());
            const auto it = findNumber(m, probe.getKey());
            FUZZ_CHECK(a.removeKey(&probe) == (it != m.end()) && !a.removeKey(nullptr));
            if (it != m.end())
                m.erase(it);
        } else if (op == 3) {
            kind == 0 ? arrays[0]->swap(*arrays[1]) : a.clear();
            kind == 0 ? std::swap(models[0], models[1]) : m.clear();
        } else if (op == 4) { // the two share the pointers: the other one is emptied after
            a = *arrays[1 - which];
            m = models[1 - which];
            check(a, m);
            arrays[1 - which]->clear();
            models[1 - which].clear();
        } else {
            const ZEFKeyArray copy(a); // reads nothing
            FUZZ_CHECK(copy.getNumKeys() == 0 && !copy.findKey(0));
            a = static_cast<const ZEFKeyArray &>(a);
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
