// Fuzz target: operation sequences on two ZEFPtrDList objects against std::list, checked after
// every step by walking a copy both ways; the cursor stands on an element (-1 when empty).
// Pointers come from four addresses and null, so that equal pointers are stored several times.
#include "FuzzInput.h"
#include "zefcore/base/ZEFPtrDList.h"

#include <algorithm>
#include <iterator>
#include <list>

using Model = std::list<void *>;
static char g_pool[4];

static void check(ZEFPtrDList &list, Model &m) { // then empties long ones
    const int n = int(m.size()), cursor = list.getCurrentPosition();
    FUZZ_CHECK(list.size() == n && cursor >= (n ? 0 : -1) && cursor < n &&
               list.getCurrentData() == (n ? *std::next(m.begin(), cursor) : nullptr));
    ZEFPtrDList copy(list);
    int position = 0;
    for (void *data : m)
        FUZZ_CHECK(copy.getCurrentData() == data && copy.goToNext() == (++position < n));
    for (auto it = m.rbegin(); it != m.rend(); ++it)
        FUZZ_CHECK(copy.getCurrentData() == *it && copy.goToPrev() == (std::next(it) != m.rend()));
    m.size() > 64 ? list.removeAll(false), m.clear() : void();
}

static void step(FuzzInput &in, ZEFPtrDList &list, Model &m, ZEFPtrDList &other, Model &om) {
    const int op = in.range(0, 7), n = int(m.size()), pos = in.range(-2, n + 2), k = in.range(0, 4);
    void *d = k == 4 ? nullptr : &g_pool[k];
    const auto found = std::find(m.begin(), m.end(), d);
    const bool valid = pos >= 0 && pos < n, held = d && found != m.end();
    const auto at = std::next(m.begin(), std::clamp(pos, 0, n));
    if (op == 0) {
        FUZZ_CHECK(list.prepend(d) && list.append(d));
        m.push_front(d), m.push_back(d);
    } else if (op == 1) { // at the end too, but not into an empty list
        const bool ok = n > 0 && pos >= 0 && pos <= n;
        FUZZ_CHECK(list.insert(d, pos) == ok);
        ok ? void(m.insert(at, d)) : void();
    } else if (op == 2) {
        FUZZ_CHECK(list.reverseList() == (n >= 2));
        m.reverse();
    } else if (op == 3) {
        FUZZ_CHECK((k & 1 ? list.removeFirstData() : list.removeLastData()) == (n > 0));
        n == 0 ? void() : k & 1 ? m.pop_front() : m.pop_back();
    } else if (op == 4) {
        FUZZ_CHECK(list.removeData(pos) == valid);
        valid ? void(m.erase(at)) : void();
    } else if (op == 5) { // the first element, else the last, else the first occurrence
        FUZZ_CHECK(list.removeData(d) == held);
        held ? void(m.erase(found != m.begin() && m.back() == d ? std::prev(m.end()) : found)) : void();
    } else if (op == 6) {
        FUZZ_CHECK(list.removeAll(in.flag()) == (n > 0));
        m.clear();
    } else { // from the other list, or from itself
        list = k & 1 ? other : list;
        m = k & 1 ? om : m;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return runTwo<ZEFPtrDList, Model>(data, size, 400, step, check);
}
