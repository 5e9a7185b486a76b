// Fuzz target: sequences of generateID, generateID(id), freeID, clear, copy and
// assignment on two IDGenerator objects, checked against a std::set of the
// identifiers in use (0 counts as in use until freed). An identifier is freed only
// while held, as the class requires: one more than one above the highest free one is
// refused. A last phase gives freeID and generateID any int, for the sanitizers.
#include "FuzzInput.h"
#include "zefcore/base/IDGenerator.h"

#include <climits>
#include <iterator>
#include <set>

namespace {

constexpr int kLastID = 2147483646;

struct Model {
    std::set<int> used{0};

    int lowestFree() const {
        long long id = 0;
        for (auto it = used.begin(); it != used.end() && *it == id; ++it)
            ++id;
        return id > kLastID ? -1 : int(id);
    }
    int highestFree() const {
        int id = kLastID;
        for (auto it = used.rbegin(); it != used.rend() && *it == id; ++it)
            --id;
        return id;
    }
    bool isFree(int id) const { return id >= 0 && id <= kLastID && used.count(id) == 0; }
    int take(int id) {
        if (id != -1)
            used.insert(id);
        return id;
    }
    int anyHeld(FuzzInput &in) const { return *std::next(used.begin(), in.range(0, int(used.size()) - 1)); }
};

// Small identifiers, the top of the range, held ones and their neighbours, any int.
int pickID(FuzzInput &in, const Model &m) {
    switch (in.range(0, 3)) {
    case 0:
        return in.range(-2, 40);
    case 1:
        return kLastID - in.range(0, 40);
    case 2:
        return m.used.empty() ? 1 : m.anyHeld(in) + in.range(-1, 1);
    default:
        return in.i32();
    }
}

void step(FuzzInput &in, IDGenerator *gens, Model *models) {
    const int which = in.range(0, 1);
    IDGenerator &g = gens[which];
    Model &m = models[which];
    switch (in.range(0, 5)) {
    case 0:
        FUZZ_CHECK(g.generateID() == m.take(m.lowestFree()));
        break;
    case 1: {
        const int id = pickID(in, m);
        FUZZ_CHECK(g.generateID(id) == m.take(m.isFree(id) ? id : m.lowestFree()));
        break;
    }
    case 2: {
        if (m.used.empty())
            break;
        const int id = m.anyHeld(in);
        const bool joins = id <= m.highestFree() + 1;
        FUZZ_CHECK(g.freeID(id) == joins);
        if (joins)
            m.used.erase(id);
        break;
    }
    case 3: { // refused for certain: negative, or free and not touching the free interval below
        const int id = pickID(in, m);
        if (id < 0 || (m.isFree(id) && !m.isFree(id - 1) && id != INT_MAX))
            FUZZ_CHECK(!g.freeID(id));
        break;
    }
    case 4:
        g.clear();
        m = Model();
        break;
    default: { // from the other generator, or from itself
        const int from = in.range(0, 1);
        g = gens[from];
        m = models[from];
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    IDGenerator gens[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 300 && in.byte() != 0xFF; ++steps) {
        step(in, gens, models);
        for (int k = 0; k < 2; ++k) { // the next identifiers, on a copy so that the original stays
            IDGenerator copy(gens[k]);
            Model mc = models[k];
            for (int next = 0; next < 4; ++next)
                FUZZ_CHECK(copy.generateID() == mc.take(mc.lowestFree()));
        }
    }
    IDGenerator loose; // no undefined behaviour, no leak; -1 or an identifier in range
    for (int steps = 0; !in.empty() && steps < 200; ++steps) {
        const int id = in.flag() ? in.i32() : INT_MAX - in.range(0, 3);
        const int op = in.range(0, 2);
        const int got = op == 0 ? int(loose.freeID(id)) : op == 1 ? loose.generateID(id) : loose.generateID();
        FUZZ_CHECK(got >= -1);
    }
    return 0;
}
