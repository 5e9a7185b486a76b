#include "zefcore/base/ZEFPtrDList.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <vector>

namespace {
int g_pool[5];
using Links = std::vector<s_ZEFPtrDListElement *>;

// Returns the elements along the next links, or along the prev links from the last (in list
// order), at most limit + 1 of them: a cycle cannot hang the test.
Links chain(ZEFPtrDList &list, std::size_t limit, bool back = false) {
    Links out;
    for (auto *e = list.getElement(back ? list.size() - 1 : 0); e && out.size() <= limit;
         e = back ? e->m_prev : e->m_next)
        out.insert(back ? out.begin() : out.end(), e);
    return out;
}

// Checks size, cursor and both link chains against the model, then puts the cursor back
// where it was (positional reads move it).
void expectMatches(ZEFPtrDList &list, const std::list<void *> &model, int cursor) {
    const std::vector<void *> items(model.begin(), model.end());
    const int n = int(items.size());
    ASSERT_TRUE(list.size() == n && list.isEmpty() == (n == 0) &&
                list.getCurrentPosition() == (n ? cursor : -1));
    ASSERT_TRUE(list.getCurrentData() == (n ? items[cursor] : nullptr) &&
                list.getFirstData() == (n ? items.front() : nullptr) &&
                list.getLastData() == (n ? items.back() : nullptr));
    const Links forward = chain(list, items.size());
    std::vector<void *> data;
    for (s_ZEFPtrDListElement *e : forward)
        data.push_back(e->m_data);
    ASSERT_TRUE(data == items && chain(list, items.size(), true) == forward);
    ASSERT_TRUE(n == 0 || list.goToPosition(cursor));
}
} // namespace

// Random operations against a std::list and a model cursor, with every cursor rule
// written out again here. Five distinct pointers and null make duplicates frequent.
TEST(ZEFPtrDList, RandomSequenceMatchesListAndCursor) {
    std::mt19937 rng(4242u);
    ZEFPtrDList list;
    std::list<void *> model;
    int cur = -1;
    auto at = [&](int i) { return std::next(model.begin(), i); };
    auto removeFirst = [&](int n) { model.pop_front(), cur = n == 1 ? -1 : cur == 0 ? 0 : cur - 1; };
    auto removeLast = [&](int n) { model.pop_back(), cur = n - 2; }; // walks to the new last
    for (int step = 0; step < 30000; ++step) {
        const int n = int(model.size()), pos = zeftest::pick(rng, -1, n + 1), r = zeftest::pick(rng, 0, 5);
        const int op = zeftest::pick(rng, n < 30 ? 0 : 3, 15);
        void *p = r < 5 ? &g_pool[r] : nullptr;
        const auto found = p ? std::find(model.begin(), model.end(), p) : model.end();
        const int where = int(std::distance(model.begin(), found)); // n if not stored
        const bool valid = pos >= 0 && pos < n;
        bool expected = n > 0, result = false;
        Links elements;
        if (op == 0) {
            result = list.prepend(p), expected = true, model.push_front(p), cur = n ? cur + 1 : 0;
        } else if (op == 1) {
            result = list.append(p), expected = true, model.push_back(p), cur = n ? cur : 0;
        } else if (op == 2) {
            result = list.insert(p, pos), expected = pos >= 0 && pos <= n && n > 0;
            if (expected)
                model.insert(at(pos), p), cur = pos == 0 ? cur + 1 : pos == n ? cur : pos;
        } else if (op == 3 || op == 4) {
            s_ZEFPtrDListElement *e = op == 4 ? list.getElement(pos) : nullptr;
            void *got = op == 3 ? list.getData(pos) : e ? e->m_data : nullptr;
            ASSERT_EQ(got, valid ? *at(pos) : nullptr) << step;
            result = expected = valid, cur = valid ? pos : cur;
        } else if (op == 5 || op == 6) {
            result = op == 5 ? list.goToStart() : list.goToEnd(), cur = op == 5 && n ? 0 : n - 1;
        } else if (op == 7 || op == 8) {
            result = op == 7 ? list.goToNext() : list.goToPrev();
            expected = n > 0 && (op == 7 ? cur < n - 1 : cur > 0), cur += expected * (op == 7 ? 1 : -1);
        } else if (op == 9) {
            result = list.goToData(p), expected = where < n, cur = where < n ? where : cur;
        } else if (op == 10) {
            result = list.goToPosition(pos), expected = valid, cur = valid ? pos : cur;
        } else if (op == 11) { // relinks: the same elements, in reverse (checked below)
            elements = chain(list, model.size());
            ASSERT_TRUE(n == 0 || list.goToPosition(cur));
            result = list.reverseList(), expected = n >= 2;
            if (expected)
                model.reverse(), cur = 0, std::reverse(elements.begin(), elements.end());
        } else if (op == 12) {
            result = r < 3 ? list.removeFirstData() : list.removeLastData();
            if (n > 0)
                r < 3 ? removeFirst(n) : removeLast(n);
        } else if (op == 13) {
            result = list.removeData(pos), expected = valid;
            if (valid && (pos == 0 || pos == n - 1))
                pos == 0 ? removeFirst(n) : removeLast(n);
            else if (valid)
                model.erase(at(pos)), cur = pos - 1; // on the element before the gap
        } else if (op == 14) { // first, then last, then the lowest position; not found: on the last
            result = list.removeData(p), expected = where < n;
            if (where < n && (where == 0 || model.back() == p))
                where == 0 ? removeFirst(n) : removeLast(n);
            else if (where < n)
                model.erase(found), cur = where - 1;
            else
                cur = p && n ? n - 1 : cur;
        } else if (r == 0) {
            result = list.removeAll(pos & 1), model.clear(), cur = -1;
        } else { // copies start at the first element; assigning to itself keeps all
            ZEFPtrDList copy(list);
            r < 3 ? void(list = copy) : void(list = list);
            result = expected = true, cur = r < 3 && n ? 0 : cur;
        }
        ASSERT_EQ(result, expected) << step << " op " << op;
        expectMatches(list, model, cur);
        ASSERT_FALSE(HasFatalFailure()) << step << " op " << op;
        ASSERT_TRUE(op != 11 ||
                    (chain(list, model.size()) == elements && (n == 0 || list.goToPosition(cur))));
    }
}
