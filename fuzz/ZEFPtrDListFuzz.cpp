// Fuzz target: random operation sequences on two ZEFPtrDList objects, each
// checked after every step against a std::list of the stored pointers plus a
// model cursor position. The pointers come from a pool of four addresses and
// null, so that equal pointers stand in a list several times.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/base/ZEFPtrDList.h"

#include <algorithm>
#include <iterator>
#include <list>

namespace {

char g_pool[4];

struct Model {
    std::list<void *> items;
    int cursor = -1;

    int size() const { return int(items.size()); }
    void *at(int position) const { return *std::next(items.begin(), position); }
};

void *pickData(FuzzInput &in) {
    const int k = in.range(0, 4);
    return k == 4 ? nullptr : &g_pool[k];
}

// Compares size, cursor and, on a copy walked both ways, every link.
void check(ZEFPtrDList &list, const Model &m) {
    FUZZ_CHECK(list.size() == m.size());
    FUZZ_CHECK(list.isEmpty() == m.items.empty());
    FUZZ_CHECK(list.getCurrentPosition() == m.cursor);
    if (m.items.empty()) {
        FUZZ_CHECK(m.cursor == -1);
        FUZZ_CHECK(!list.getCurrentData() && !list.getFirstData() && !list.getLastData());
        return;
    }
    FUZZ_CHECK(list.getCurrentData() == m.at(m.cursor));
    FUZZ_CHECK(list.getFirstData() == m.items.front());
    FUZZ_CHECK(list.getLastData() == m.items.back());
    ZEFPtrDList copy(list);
    FUZZ_CHECK(copy.getCurrentPosition() == 0);
    int position = 0;
    for (void *data : m.items) {
        FUZZ_CHECK(copy.getCurrentPosition() == position);
        FUZZ_CHECK(copy.getCurrentData() == data);
        FUZZ_CHECK(copy.goToNext() == (position + 1 < m.size()));
        ++position;
    }
    FUZZ_CHECK(copy.goToEnd());
    for (auto it = m.items.rbegin(); it != m.items.rend(); ++it) {
        FUZZ_CHECK(copy.getCurrentData() == *it);
        const bool more = std::next(it) != m.items.rend();
        FUZZ_CHECK(copy.goToPrev() == more);
    }
    FUZZ_CHECK(copy.getCurrentPosition() == 0);
}

void removeAt(Model &m, int position) {
    m.items.erase(std::next(m.items.begin(), position));
}

// The model of removeFirstData and removeLastData; returns false on an empty list.
bool removeFirst(Model &m) {
    if (m.items.empty())
        return false;
    m.items.pop_front();
    m.cursor = m.items.empty() ? -1 : std::max(m.cursor - 1, 0);
    return true;
}
bool removeLast(Model &m) {
    if (m.items.empty())
        return false;
    m.items.pop_back();
    m.cursor = m.size() - 1;
    return true;
}

void step(FuzzInput &in, ZEFPtrDList *lists, Model *models) {
    const int which = in.range(0, 1);
    ZEFPtrDList &list = lists[which];
    Model &m = models[which];
    const int n = m.size();
    switch (in.range(0, 18)) {
    case 0: {
        void *d = pickData(in);
        FUZZ_CHECK(list.prepend(d));
        m.items.push_front(d);
        m.cursor = n == 0 ? 0 : m.cursor + 1;
        break;
    }
    case 1: {
        void *d = pickData(in);
        FUZZ_CHECK(list.append(d));
        m.items.push_back(d);
        if (n == 0)
            m.cursor = 0;
        break;
    }
    case 2: {
        void *d = pickData(in);
        const int position = in.range(-2, n + 2);
        const bool ok = position >= 0 && position <= n && n > 0;
        FUZZ_CHECK(list.insert(d, position) == ok);
        if (!ok)
            break;
        m.items.insert(std::next(m.items.begin(), position), d);
        if (position == 0)
            m.cursor += 1;
        else if (position < n)
            m.cursor = position;
        break;
    }
    case 3: {
        const int position = in.range(-2, n + 2);
        const bool ok = position >= 0 && position < n;
        if (in.flag()) {
            FUZZ_CHECK(list.getData(position) == (ok ? m.at(position) : nullptr));
        } else {
            s_ZEFPtrDListElement *e = list.getElement(position);
            FUZZ_CHECK((e != nullptr) == ok);
            if (e) {
                FUZZ_CHECK(e->m_data == m.at(position));
                FUZZ_CHECK((e->m_prev == nullptr) == (position == 0));
                FUZZ_CHECK((e->m_next == nullptr) == (position == n - 1));
                FUZZ_CHECK(!e->m_next || e->m_next->m_prev == e);
            }
        }
        if (ok)
            m.cursor = position;
        break;
    }
    case 4:
        FUZZ_CHECK(list.goToStart() == (n > 0));
        if (n > 0)
            m.cursor = 0;
        break;
    case 5:
        FUZZ_CHECK(list.goToEnd() == (n > 0));
        if (n > 0)
            m.cursor = n - 1;
        break;
    case 6: {
        const bool ok = n > 0 && m.cursor < n - 1;
        FUZZ_CHECK(list.goToNext() == ok);
        m.cursor += ok ? 1 : 0;
        break;
    }
    case 7: {
        const bool ok = n > 0 && m.cursor > 0;
        FUZZ_CHECK(list.goToPrev() == ok);
        m.cursor -= ok ? 1 : 0;
        break;
    }
    case 8: {
        void *d = pickData(in);
        const auto it = std::find(m.items.begin(), m.items.end(), d);
        const bool ok = d && it != m.items.end();
        FUZZ_CHECK(list.goToData(d) == ok);
        if (ok)
            m.cursor = int(std::distance(m.items.begin(), it));
        break;
    }
    case 9: {
        const int position = in.range(-2, n + 2);
        const bool ok = position >= 0 && position < n;
        FUZZ_CHECK(list.goToPosition(position) == ok);
        if (ok)
            m.cursor = position;
        break;
    }
    case 10:
        FUZZ_CHECK(list.reverseList() == (n >= 2));
        if (n >= 2) {
            m.items.reverse();
            m.cursor = 0;
        }
        break;
    case 11:
        FUZZ_CHECK(list.removeFirstData() == removeFirst(m));
        break;
    case 12:
        FUZZ_CHECK(list.removeLastData() == removeLast(m));
        break;
    case 13: {
        const int position = in.range(-2, n + 1);
        bool ok;
        if (position == 0)
            ok = removeFirst(m);
        else if (position == n - 1)
            ok = removeLast(m);
        else if (position < 0 || position >= n)
            ok = false;
        else {
            removeAt(m, position);
            m.cursor = position - 1;
            ok = true;
        }
        FUZZ_CHECK(list.removeData(position) == ok);
        break;
    }
    case 14: {
        void *d = pickData(in);
        bool ok;
        if (!d || n == 0)
            ok = false;
        else if (m.items.front() == d)
            ok = removeFirst(m);
        else if (m.items.back() == d)
            ok = removeLast(m);
        else {
            const auto it = std::find(m.items.begin(), m.items.end(), d);
            ok = it != m.items.end();
            if (ok) {
                const int position = int(std::distance(m.items.begin(), it));
                m.items.erase(it);
                m.cursor = position - 1;
            } else {
                m.cursor = n - 1;
            }
        }
        FUZZ_CHECK(list.removeData(d) == ok);
        break;
    }
    case 15:
        FUZZ_CHECK(list.removeAll(in.flag()) == (n > 0));
        m = Model();
        break;
    case 16: {
        if (in.flag()) {
            lists[which] = lists[1 - which];
            models[which] = models[1 - which];
            m.cursor = m.items.empty() ? -1 : 0;
        } else {
            ZEFPtrDList &self = list;
            list = self; // does nothing, the cursor included
        }
        break;
    }
    default: {
        ZEFPtrDList copy(list);
        Model mc{m.items, m.items.empty() ? -1 : 0};
        check(copy, mc);
        break;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    ZEFPtrDList lists[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 400; ++steps) {
        step(in, lists, models);
        check(lists[0], models[0]);
        check(lists[1], models[1]);
        for (int k = 0; k < 2; ++k)
            if (models[k].size() > 64) {
                lists[k].removeAll(false);
                models[k] = Model();
            }
    }
    return 0;
}
