// Fuzz target: random sequences of generateID, generateID(id), freeID, clear,
// copy and assignment on two IDGenerator objects, each checked against a
// std::set model of the identifiers in use (0 counts as in use until freed).
// Identifiers are freed only while held, as the class requires (a held identifier
// more than one above the highest free one is refused); a free identifier is
// offered back only where that must be refused. A last phase calls freeID and
// generateID with any int on a third generator, checked for sanitizer findings only.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/base/IDGenerator.h"

#include <climits>
#include <iterator>
#include <set>

namespace {

constexpr int kLastID = 2147483646;

struct Model {
    std::set<int> used{0};

    // Returns the lowest free identifier, or -1.
    int lowestFree() const {
        long long candidate = 0;
        for (auto it = used.begin(); it != used.end() && *it == candidate; ++it)
            ++candidate;
        return candidate > kLastID ? -1 : int(candidate);
    }
    // Returns the highest free identifier, or -1.
    int highestFree() const {
        long long candidate = kLastID;
        for (auto it = used.rbegin(); it != used.rend() && *it == candidate; ++it)
            --candidate;
        return int(candidate);
    }
    bool isFree(int id) const { return id >= 0 && id <= kLastID && used.count(id) == 0; }
    int take(int id) {
        if (id != -1)
            used.insert(id);
        return id;
    }
};

// Picks an identifier near the interesting places: small ones, held ones and
// their neighbours, the top of the range.
int pickID(FuzzInput &in, const Model &m) {
    switch (in.range(0, 3)) {
    case 0:
        return in.range(-2, 40);
    case 1:
        return kLastID - in.range(0, 40);
    case 2:
        if (!m.used.empty()) {
            auto it = m.used.begin();
            std::advance(it, in.range(0, int(m.used.size()) - 1));
            return *it + in.range(-1, 1);
        }
        return 1;
    default:
        return in.range(0, 2000);
    }
}

// Checks the generator's next identifiers on a copy, so that the original stays.
void checkNext(const IDGenerator &g, const Model &m) {
    IDGenerator copy(g);
    Model mc = m;
    for (int k = 0; k < 4; ++k)
        FUZZ_CHECK(copy.generateID() == mc.take(mc.lowestFree()));
}

void step(FuzzInput &in, IDGenerator *gens, Model *models) {
    const int which = in.range(0, 1);
    IDGenerator &g = gens[which];
    Model &m = models[which];
    switch (in.range(0, 7)) {
    case 0:
    case 1:
        FUZZ_CHECK(g.generateID() == m.take(m.lowestFree()));
        break;
    case 2: {
        const int id = in.flag() ? in.i32() : pickID(in, m);
        const int want = m.isFree(id) ? id : m.lowestFree();
        FUZZ_CHECK(g.generateID(id) == m.take(want));
        break;
    }
    case 3: { // free a held identifier: refused only above the highest free one plus 1
        if (m.used.empty())
            break;
        auto it = m.used.begin();
        std::advance(it, in.range(0, int(m.used.size()) - 1));
        const int id = *it;
        const bool joins = id <= m.highestFree() + 1;
        FUZZ_CHECK(g.freeID(id) == joins);
        if (joins)
            m.used.erase(id);
        break;
    }
    case 4: { // offer an identifier that is not held: refused where that is certain
        const int id = in.flag() ? in.i32() : pickID(in, m);
        if (id < 0) {
            FUZZ_CHECK(!g.freeID(id));
        } else if (m.isFree(id) && !m.isFree(id - 1) && id != INT_MAX) {
            // The first of its interval, not touching the interval below: already free.
            FUZZ_CHECK(!g.freeID(id));
        }
        break;
    }
    case 5:
        g.clear();
        m = Model();
        break;
    case 6:
        if (in.flag()) {
            gens[which] = gens[1 - which];
            models[which] = models[1 - which];
        } else {
            const IDGenerator &self = g;
            g = self;
        }
        break;
    default: {
        IDGenerator copy(g);
        Model mc = m;
        FUZZ_CHECK(copy.generateID() == mc.take(mc.lowestFree()));
        break; // the copy's identifier stays free in g: checked by the next checkNext
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    IDGenerator gens[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 300; ++steps) {
        step(in, gens, models);
        checkNext(gens[0], models[0]);
        checkNext(gens[1], models[1]);
        if (in.byte() == 0xFF)
            break; // the rest of the input is for the unchecked phase
    }
    // Any int: no undefined behaviour, no leak, and -1 or an identifier in range.
    IDGenerator loose;
    for (int steps = 0; !in.empty() && steps < 200; ++steps) {
        const int id = in.flag() ? in.i32() : INT_MAX - in.range(0, 3);
        switch (in.range(0, 2)) {
        case 0:
            loose.freeID(id);
            break;
        case 1: {
            const int got = loose.generateID(id);
            FUZZ_CHECK(got == -1 || got >= 0);
            break;
        }
        default: {
            const int got = loose.generateID();
            FUZZ_CHECK(got == -1 || got >= 0);
            break;
        }
        }
    }
    return 0;
}
