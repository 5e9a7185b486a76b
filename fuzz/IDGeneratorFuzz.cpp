// Fuzz target: sequences of generateID, generateID(id), freeID, clear and assignment on
// two IDGenerator objects, checked against a std::set of the identifiers in use (0 counts
// as in use until freed); after every step the next identifiers of a copy are checked.
// Identifiers are freed only while held, as the class requires: one more than one above
// the highest free one is refused. A last phase gives any int, for the sanitizers.
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
    int take(int id) { return id == -1 ? -1 : *used.insert(id).first; }
    int anyHeld(FuzzInput &in) const { return *std::next(used.begin(), in.range(0, int(used.size()) - 1)); }
};

void step(FuzzInput &in, IDGenerator *gens, Model *models) {
    const int which = in.range(0, 1), op = in.range(0, 5), near = in.range(0, 3);
    IDGenerator &g = gens[which];
    Model &m = models[which];
    // Small identifiers, the top of the range, held ones and their neighbours, any int.
    const int id = near == 0   ? in.range(-2, 40)
                   : near == 1 ? kLastID - in.range(0, 40)
                   : near == 2 ? (m.used.empty() ? 1 : m.anyHeld(in) + in.range(-1, 1))
                               : in.i32();
    if (op == 0) {
        FUZZ_CHECK(g.generateID() == m.take(m.lowestFree()));
    } else if (op == 1) {
        FUZZ_CHECK(g.generateID(id) == m.take(m.isFree(id) ? id : m.lowestFree()));
    } else if (op == 2 && !m.used.empty()) { // a held one
        const int held = m.anyHeld(in);
        const bool joins = held <= m.highestFree() + 1;
        FUZZ_CHECK(g.freeID(held) == joins);
        if (joins)
            m.used.erase(held);
    } else if (op == 3 && (id < 0 || (m.isFree(id) && !m.isFree(id - 1)))) { // refused for certain
        FUZZ_CHECK(!g.freeID(id));
    } else if (op == 4) {
        g.clear();
        m = Model();
    } else if (op == 5) { // from the other generator, or from itself
        g = gens[near & 1];
        m = models[near & 1];
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    IDGenerator gens[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 300 && in.byte() != 0xFF; ++steps) {
        step(in, gens, models);
        for (int k = 0; k < 2; ++k) { // on a copy, so that the original stays
            IDGenerator copy(gens[k]);
            Model mc = models[k];
            for (int next = 0; next < 4; ++next)
                FUZZ_CHECK(copy.generateID() == mc.take(mc.lowestFree()));
        }
    }
    IDGenerator loose; // no undefined behaviour, no leak; -1 or an identifier in range
    for (int steps = 0; !in.empty() && steps < 200; ++steps) {
        const int id = in.flag() ? in.i32() : INT_MAX - in.range(0, 3), op = in.range(0, 2);
        FUZZ_CHECK((op == 0   ? int(loose.freeID(id))
                    : op == 1 ? loose.generateID(id)
                              : loose.generateID()) >= -1);
    }
    return 0;
}
