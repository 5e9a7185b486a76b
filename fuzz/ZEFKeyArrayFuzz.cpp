// Fuzz target: operation sequences on two ZEFKeyArray objects against a vector of the keys in order of
// insertion. The keys belong to this target, which deletes them after the arrays have let go of them
// (clear): the sanitizers see a key an array deletes or loses, or a read after the end.
#include "FuzzInput.h"
#include "zefcore/base/ZEFKeyArray.h"

#include <algorithm>
#include <memory>
#include <vector>

using Model = std::vector<ZEFKey *>;
static std::vector<std::unique_ptr<ZEFKey>> g_keys; // every key made for this input

struct Keys : ZEFKeyArray { // lets go of its keys before it goes
    ~Keys() { clear(); }
};

static Model::iterator findNumber(Model &m, int number) {
    return std::find_if(m.begin(), m.end(), [&](ZEFKey *k) { return k->getKey() == number; });
}

static void check(const ZEFKeyArray &a, Model &m) {
    const int n = int(m.size());
    FUZZ_CHECK(a.getNumKeys() == n && !a.getKey(-1) && !a.getKey(n));
    for (int i = 0; i < n; ++i)
        FUZZ_CHECK(a.getKey(i) == m[i] && a.findKey(m[i]->getKey()) == m[i]);
    for (int number = -1; number < 8; ++number)
        FUZZ_CHECK(findNumber(m, number) != m.end() || !a.findKey(number));
}

static void step(FuzzInput &in, Keys &a, Model &m, Keys &b, Model &mb) {
    const int op = in.range(0, 4), kind = in.range(0, 2);
    const int number = kind == 0 ? in.range(-3, 40) : kind == 1 ? in.range(0, 4000) : -in.range(1, 1 << 30);
    if (op <= 1) { // a new key, one made before, or null; a held number is replaced in place
        const int made = int(g_keys.size());
        ZEFKey *key = op == 0 && made < 200   ? g_keys.emplace_back(new ZEFKey(number)).get()
                      : in.flag() && made > 0 ? g_keys[in.range(0, made - 1)].get()
                                              : nullptr;
        const bool ok = key && key->getKey() >= 0;
        FUZZ_CHECK(a.addKey(key) == ok);
        const auto it = ok ? findNumber(m, key->getKey()) : m.end();
        it != m.end() ? void(*it = key) : ok ? m.push_back(key) : void();
    } else if (op == 2) { // by number: a probe object that is not held will do
        ZEFKey probe(in.flag() || m.empty() ? number : m[in.range(0, int(m.size()) - 1)]->getKey());
        const auto it = findNumber(m, probe.getKey());
        FUZZ_CHECK(a.removeKey(&probe) == (it != m.end()) && !a.removeKey(nullptr));
        it != m.end() ? void(m.erase(it)) : void();
    } else if (op == 3) {
        kind == 0 ? a.swap(b), std::swap(m, mb) : (a.clear(), m.clear());
    } else { // from the other (the two then share keys), or from itself
        static_cast<ZEFKeyArray &>(a) = kind == 0 ? a : b;
        m = kind == 0 ? m : mb;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    runTwo<Keys, Model>(data, size, 300, step, check);
    g_keys.clear();
    return 0;
}
