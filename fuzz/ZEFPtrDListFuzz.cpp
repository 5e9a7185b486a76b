// Fuzz target: operation sequences on two ZEFPtrDList objects, compared after every step
// with a std::list of the stored pointers; the cursor must stand on an element (at -1 on an
// empty list). The pointers come from a pool of four addresses and null, so that equal
// pointers stand in a list several times.
#include "FuzzInput.h"
#include "zefcore/base/ZEFPtrDList.h"

#include <algorithm>
#include <iterator>
#include <list>

namespace {

using Model = std::list<void *>;
char g_pool[4];

// Also walks a copy both ways, so that every link is followed.
void check(ZEFPtrDList &list, const Model &m) {
    const int n = int(m.size()), cursor = list.getCurrentPosition();
    FUZZ_CHECK(list.size() == n && list.isEmpty() == (n == 0) && cursor >= (n ? 0 : -1) &&
               cursor < std::max(n, 0));
    FUZZ_CHECK(list.getCurrentData() == (n ? *std::next(m.begin(), cursor) : nullptr));
    FUZZ_CHECK(list.getFirstData() == (n ? m.front() : nullptr) &&
               list.getLastData() == (n ? m.back() : nullptr));
    ZEFPtrDList copy(list);
    int position = 0;
    for (void *data : m)
        FUZZ_CHECK(copy.getCurrentPosition() == position && copy.getCurrentData() == data &&
                   copy.goToNext() == (++position < n));
    for (auto it = m.rbegin(); it != m.rend(); ++it)
        FUZZ_CHECK(copy.getCurrentData() == *it && copy.goToPrev() == (std::next(it) != m.rend()));
}

void step(FuzzInput &in, ZEFPtrDList *lists, Model *models) {
    const int which = in.range(0, 1), op = in.range(0, 10);
    ZEFPtrDList &list = lists[which];
    Model &m = models[which];
    const int n = int(m.size()), position = in.range(-2, n + 2), k = in.range(0, 4);
    void *d = k == 4 ? nullptr : &g_pool[k];
    const bool valid = position >= 0 && position < n;
    const auto at = [&](int p) { return std::next(m.begin(), p); };
    if (op == 0) {
        FUZZ_CHECK(list.prepend(d) && list.append(d));
        m.push_front(d);
        m.push_back(d);
    } else if (op == 1) { // at the end too, but not into an empty list
        const bool ok = n > 0 && position >= 0 && position <= n;
        FUZZ_CHECK(list.insert(d, position) == ok);
        if (ok)
            m.insert(at(position), d);
    } else if (op == 2) {
        s_ZEFPtrDListElement *e = list.getElement(position);
        FUZZ_CHECK(list.getData(position) == (valid ? *at(position) : nullptr) && (e != nullptr) == valid);
        FUZZ_CHECK(!e || ((e->m_prev == nullptr) == (position == 0) &&
                          (e->m_next == nullptr) == (position == n - 1)));
    } else if (op == 3) {
        FUZZ_CHECK(list.goToStart() == (n > 0) && list.goToEnd() == (n > 0) &&
                   list.goToPosition(position) == valid);
        FUZZ_CHECK(list.goToNext() == (valid && position < n - 1) && list.goToPrev() == (n > 1));
        const bool held = d && std::find(m.begin(), m.end(), d) != m.end();
        FUZZ_CHECK(list.goToData(d) == held && (!held || list.getCurrentData() == d));
    } else if (op == 4) {
        FUZZ_CHECK(list.reverseList() == (n >= 2));
        m.reverse();
    } else if (op == 5 || op == 6) { // the first or the last
        FUZZ_CHECK((op == 5 ? list.removeFirstData() : list.removeLastData()) == (n > 0));
        if (n > 0)
            m.erase(op == 5 ? m.begin() : std::prev(m.end()));
    } else if (op == 7) {
        FUZZ_CHECK(list.removeData(position) == valid);
        if (valid)
            m.erase(at(position));
    } else if (op == 8) { // the first element, else the last, else the first occurrence
        const auto it = !d || n == 0     ? m.end()
                        : m.front() == d ? m.begin()
                        : m.back() == d  ? std::prev(m.end())
                                         : std::find(m.begin(), m.end(), d);
        FUZZ_CHECK(list.removeData(d) == (it != m.end()));
        if (it != m.end())
            m.erase(it);
    } else if (op == 9) {
        FUZZ_CHECK(list.removeAll(in.flag()) == (n > 0));
        m.clear();
    } else { // from the other list, or from itself
        lists[which] = lists[k & 1];
        models[which] = models[k & 1];
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    ZEFPtrDList lists[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 400; ++steps) {
        step(in, lists, models);
        for (int k = 0; k < 2; ++k) {
            check(lists[k], models[k]);
            if (models[k].size() > 64)
                lists[k].removeAll(false), models[k].clear();
        }
    }
    return 0;
}
