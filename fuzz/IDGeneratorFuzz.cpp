// Fuzz target: two IDGenerator objects against the identifiers in use (0 until freed); after every
// step a copy must hand out the next ones. Only held identifiers are freed, as the class requires:
// one more than one above the highest free one is refused.
#include "FuzzInput.h"
#include "zefcore/base/IDGenerator.h"

#include <iterator>
#include <set>

constexpr int kLastID = 2147483646;

struct Model {
    std::set<int> used{0};
    int lowestFree() const {
        int id = 0;
        while (used.count(id))
            ++id;
        return id;
    }
    int highestFree() const {
        int id = kLastID;
        while (used.count(id))
            --id;
        return id;
    }
    bool isFree(int id) const { return id >= 0 && id <= kLastID && used.count(id) == 0; }
    int take(int id) { return *used.insert(id).first; }
    int anyHeld(FuzzInput &in) const { return *std::next(used.begin(), in.range(0, int(used.size()) - 1)); }
};

static void step(FuzzInput &in, IDGenerator &g, Model &m, IDGenerator &other, Model &om) {
    const int op = in.range(0, 4), near = in.range(0, 3);
    // Small identifiers, the top of the range, held ones and their neighbours, any int.
    const int id = near == 0   ? in.range(-2, 40)
                   : near == 1 ? kLastID - in.range(0, 40)
                   : near == 2 ? (m.used.empty() ? 1 : m.anyHeld(in) + in.range(-1, 1))
                               : int(in.u32());
    if (op <= 1) {
        const int got = op == 0 ? g.generateID() : g.generateID(id);
        FUZZ_CHECK(got == m.take(op == 1 && m.isFree(id) ? id : m.lowestFree()));
    } else if (op == 2 && !m.used.empty()) {
        const int held = m.anyHeld(in);
        const bool joins = held <= m.highestFree() + 1;
        FUZZ_CHECK(g.freeID(held) == joins);
        joins ? void(m.used.erase(held)) : void();
    } else if (op == 3) {
        g.clear();
        m = Model();
    } else if (op == 4) { // from the other generator, or from itself
        g = near & 1 ? other : g;
        m = near & 1 ? om : m;
    }
}

static void check(const IDGenerator &g, Model m) { // on a copy, so that the original stays
    IDGenerator copy(g);
    for (int next = 0; next < 4; ++next)
        FUZZ_CHECK(copy.generateID() == m.take(m.lowestFree()));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return runTwo<IDGenerator, Model>(data, size, 300, step, check);
}
