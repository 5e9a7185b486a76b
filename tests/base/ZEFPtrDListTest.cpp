#include "zefcore/base/ZEFPtrDList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <list>
#include <random>
#include <vector>

namespace {
int g_pool[5];
void *P(int i) { return &g_pool[i]; }

// Checks size, cursor and both link chains of list against the model, then puts the
// cursor back where it was (positional reads move it).
void expectMatches(ZEFPtrDList &list, const std::list<void *> &model, int cursor) {
    const std::vector<void *> items(model.begin(), model.end());
    const int n = static_cast<int>(items.size());
    ASSERT_EQ(list.size(), n);
    ASSERT_EQ(list.isEmpty(), n == 0);
    ASSERT_EQ(list.getCurrentPosition(), n ? cursor : -1);
    ASSERT_EQ(list.getCurrentData(), n ? items[cursor] : nullptr);
    ASSERT_EQ(list.getFirstData(), n ? items.front() : nullptr);
    ASSERT_EQ(list.getLastData(), n ? items.back() : nullptr);
    // Both chains, each walk bounded so that a cycle cannot hang the test.
    std::vector<void *> forward, backward;
    for (const s_ZEFPtrDListElement *e = list.getElement(0); e && forward.size() <= items.size(); e = e->m_next)
        forward.push_back(e->m_data);
    for (const s_ZEFPtrDListElement *e = list.getElement(n - 1); e && backward.size() <= items.size(); e = e->m_prev)
        backward.insert(backward.begin(), e->m_data);
    ASSERT_EQ(forward, items);
    ASSERT_EQ(backward, items);
    ASSERT_TRUE(n == 0 || list.goToPosition(cursor));
}
} // namespace

TEST(ZEFPtrDList, ReverseRelinksTheSameElements) {
    ZEFPtrDList list;
    for (int i = 0; i < 4; ++i)
        list.append(P(i));
    std::vector<s_ZEFPtrDListElement *> elements;
    for (int i = 0; i < 4; ++i)
        elements.push_back(list.getElement(i));
    EXPECT_TRUE(list.reverseList());
    expectMatches(list, {P(3), P(2), P(1), P(0)}, 0);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(list.getElement(i), elements[3 - i]);

}

// Random operations against a std::list and a model cursor, with every cursor rule
// written out again here; size, cursor and both link chains are checked after each.
// Five distinct pointers and null make duplicates frequent.
TEST(ZEFPtrDList, RandomSequenceMatchesListAndCursor) {
    constexpr int kSteps = 30000;
    constexpr int kMaxSize = 30;
    std::mt19937 rng(4242u);
    ZEFPtrDList list;
    std::list<void *> model;
    int cur = -1;
    auto at = [&](int i) { return std::next(model.begin(), i); };
    auto removeFirst = [&](int n) { model.pop_front(); cur = n == 1 ? -1 : cur == 0 ? 0 : cur - 1; };
    auto removeLast = [&](int n) { model.pop_back(); cur = n - 2; };  // walks to the new last
    for (int step = 0; step < kSteps; ++step) {
        SCOPED_TRACE(step);
        const int n = static_cast<int>(model.size());
        const int pos = static_cast<int>(rng() % static_cast<unsigned>(n + 3)) - 1;  // -1 .. n + 1
        const bool valid = pos >= 0 && pos < n;
        const unsigned r = static_cast<unsigned>(rng() % 6);
        void *p = r < 5 ? P(static_cast<int>(r)) : nullptr;
        const unsigned op = static_cast<unsigned>(rng() % (n < kMaxSize ? 16 : 13)) + (n < kMaxSize ? 0 : 3);
        bool expected = n > 0;
        bool result = false;
        switch (op) {
        case 0:
            result = list.prepend(p), expected = true;
            model.push_front(p);
            cur = n ? cur + 1 : 0;
            break;
        case 1:
            result = list.append(p), expected = true;
            model.push_back(p);
            cur = n ? cur : 0;
            break;
        case 2:
            result = list.insert(p, pos);
            if ((expected = pos >= 0 && pos <= n && n > 0)) {
                model.insert(at(pos), p);
                cur = pos == 0 ? cur + 1 : pos == n ? cur : pos;
            }
            break;
        case 3:
            ASSERT_EQ(list.getData(pos), valid ? *at(pos) : nullptr);
            result = expected = valid;
            cur = valid ? pos : cur;
            break;
        case 4: {
            s_ZEFPtrDListElement *e = list.getElement(pos);
            ASSERT_EQ(e ? e->m_data : p, valid ? *at(pos) : p);
            result = e != nullptr, expected = valid;
            cur = valid ? pos : cur;
            break;
        }
        case 5: result = list.goToStart(); cur = n ? 0 : -1; break;
        case 6: result = list.goToEnd(); cur = n - 1; break;
        case 7: result = list.goToNext(); expected = n > 0 && cur < n - 1; cur += expected; break;
        case 8: result = list.goToPrev(); expected = n > 0 && cur > 0; cur -= expected; break;
        case 9: {
            result = list.goToData(p);
            auto found = p ? std::find(model.begin(), model.end(), p) : model.end();
            if ((expected = found != model.end()))
                cur = static_cast<int>(std::distance(model.begin(), found));
            break;
        }
        case 10:
            result = list.goToPosition(pos), expected = valid;
            cur = valid ? pos : cur;
            break;
        case 11:
            result = list.reverseList();
            if ((expected = n >= 2))
                model.reverse(), cur = 0;
            break;
        case 12: {
            const bool first = rng() % 2 == 0;
            result = first ? list.removeFirstData() : list.removeLastData();
            if (n > 0)
                first ? removeFirst(n) : removeLast(n);
            break;
        }
        case 13:
            result = list.removeData(pos), expected = valid;
            if (valid && (pos == 0 || pos == n - 1))
                pos == 0 ? removeFirst(n) : removeLast(n);
            else if (valid)
                model.erase(at(pos)), cur = pos - 1;  // on the element before the gap
            break;
        case 14:
            result = list.removeData(p);
            if (!p || n == 0) {
                expected = false;
            } else if (model.front() == p) {
                removeFirst(n);
            } else if (model.back() == p) {
                removeLast(n);
            } else {
                auto found = std::find(model.begin(), model.end(), p);
                expected = found != model.end();
                cur = expected ? static_cast<int>(std::distance(model.begin(), found)) - 1 : n - 1;
                if (expected)
                    model.erase(found);
            }
            break;
        default:
            if (rng() % 8 == 0) {
                result = list.removeAll(rng() % 2 == 0);
                model.clear();
                cur = -1;
            } else if (rng() % 2) {
                ZEFPtrDList copy(list);
                list = copy;
                result = expected = true;
                cur = n ? 0 : -1;
            } else {
                list = list;
                result = expected = true;
            }
            break;
        }
        ASSERT_EQ(result, expected);
        expectMatches(list, model, cur);
    }
}
