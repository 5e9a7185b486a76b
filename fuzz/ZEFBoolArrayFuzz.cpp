// Fuzz target: operation sequences on two ZEFBoolArray objects, each the other's
// operand in the bitwise forms, compared after every step with a std::vector<bool>
// and checked against the storage rules: both guard bytes 1, the size within the capacity.
#include "FuzzInput.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <algorithm>
#include <vector>

namespace {

using Model = std::vector<bool>;
using B = ZEFBoolArray;
constexpr int kMaxBits = 300;

void put(Model &m, int i, bool value) {
    if (i >= int(m.size()))
        m.resize(size_t(i) + 1, false);
    m[size_t(i)] = value;
}

// The guards and the capacity are protected: a probe reads them.
class Probe : public ZEFBoolArray {
public:
    void check(const Model &m, FuzzInput &in) const {
        const int n = int(m.size());
        FUZZ_CHECK(m_begin == m_block + 1 && *m_block == 1 && *m_end == 1);
        FUZZ_CHECK(m_numBits == n && (m_end - m_begin) * 8 >= m_numBits);
        ZEFArray<int> set;
        set.Base::assign(3, 12345); // stale content that must be replaced
        FUZZ_CHECK(getIndexesSet(set) == (std::count(m.begin(), m.end(), true) > 0));
        int k = 0;
        for (int i = 0; i < n; ++i) {
            FUZZ_CHECK(get(i) == m[size_t(i)]);
            if (m[size_t(i)])
                FUZZ_CHECK(k < set.size() && set[size_t(k++)] == i);
        }
        FUZZ_CHECK(k == set.size() && getNumberOfBitSet() == k && !get(n) && !get(-1));
        const bool value = in.flag();
        const int start = in.flag() ? in.range(-10, n + 10) : in.i32();
        int first = std::max(start, 0), last = start < 0 ? -1 : std::min(start, n - 1);
        while (first < n && m[size_t(first)] != value)
            ++first;
        while (last >= 0 && m[size_t(last)] != value)
            --last;
        FUZZ_CHECK(findFirst(value, start) == (first < n ? first : -1) && findLast(value, start) == last);
    }
};

void step(FuzzInput &in, Probe *arrays, Model *models) {
    static void (B::*const bit[])(int) = {&B::set,           &B::clear,           &B::toggle,
                                          &B::setAutoResize, &B::clearAutoResize, &B::toggleAutoResize};
    static void (B::*const whole[])() = {&B::setAll, &B::clearAll, &B::inverse, &B::toggleAll};
    static void (B::*const bitwise[])(const B &) = {&B::set, &B::merge, &B::toggle, &B::clear, &B::inter};
    const int which = in.range(0, 1), kind = in.range(0, 5);
    Probe &a = arrays[which], &b = arrays[1 - which];
    Model &m = models[which];
    const int n = int(m.size()), i = in.range(-4, n + 30), count = in.range(-3, 40);
    const bool value = in.flag();
    switch (in.range(0, 8)) {
    case 0: { // a size and a value, or a size and bytes
        const int size = kind == 1 ? i + 4 : in.range(0, kMaxBits);
        std::vector<char> bytes(size_t(size + 7) / 8);
        for (char &c : bytes)
            c = char(in.byte());
        kind == 0 ? a.assign(size, value) : kind == 1 ? a.resize(size, value) : a.assign(size, bytes.data());
        if (kind != 1)
            m.assign(size_t(size), value && kind == 0);
        m.resize(size_t(size), value);
        for (int k = 0; kind >= 2 && k < size; ++k)
            m[size_t(k)] = (bytes[size_t(k / 8)] >> (k & 7)) & 1;
        break;
    }
    case 1: // one bit, below the size; the auto-resizing forms also above
        if (i >= 0 && (i < n || kind >= 3)) {
            (a.*bit[kind])(i);
            put(m, i, kind % 3 == 0 || (kind % 3 == 2 && !(i < n && m[size_t(i)])));
        }
        break;
    case 2: // a run: a negative index does nothing, a count below 1 counts as 1
        value ? a.set(i, count) : a.clear(i, count);
        for (int k = i; i >= 0 && k < i + std::max(count, 1); ++k)
            put(m, k, value);
        break;
    case 3: { // a list: negative indexes are ignored
        std::vector<int> list(size_t(kind) + 1);
        for (int &k : list)
            k = in.range(-3, n + 30);
        value ? a.set(kind - 1, list.data()) : a.clear(kind - 1, list.data());
        for (int k = 0; k < kind - 1; ++k)
            if (list[size_t(k)] >= 0)
                put(m, list[size_t(k)], value);
        break;
    }
    case 4:
        (a.*whole[kind % 4])();
        if (kind % 4 < 2)
            m.assign(m.size(), kind % 4 == 0);
        else
            m.flip();
        break;
    case 5: { // OR, XOR (also with itself), AND NOT, AND
        const bool self = kind < 3 && value;
        const Model o = self ? m : models[1 - which];
        const int op = kind % 5;
        FUZZ_CHECK((a == (self ? a : b)) == (m == o));
        (a.*bitwise[op])(self ? a : b);
        if (op == 4 && !m.empty())
            m.resize(std::min(m.size(), o.size()));
        if (op < 3 && o.size() > m.size())
            m.resize(o.size(), false);
        for (size_t k = 0; k < std::min(m.size(), o.size()); ++k)
            m[k] = op < 2 ? m[k] || o[k] : op == 2 ? m[k] != o[k] : op == 3 ? m[k] && !o[k] : m[k] && o[k];
        break;
    }
    case 6: // copies; spare bits must never leak into the value (fill = true)
        if (kind == 0) {
            a.swap(b);
            std::swap(models[0], models[1]);
        } else if (kind == 1) {
            ZEFBoolArray copy(a);
            copy.resize(n + 9, true); // the copy owns its block
            FUZZ_CHECK(copy.getNumberOfBitSet() == a.getNumberOfBitSet() + 9);
        } else if (kind == 2) {
            FUZZ_CHECK((static_cast<ZEFBoolArray &>(a) = b) == b);
            m = models[1 - which];
        } else {
            a.copy(value ? a : b, kind == 3);
            m = models[value ? which : 1 - which];
        }
        break;
    case 7:
        value ? a.insert(i, kind & 1) : a.erase(i);
        if (i >= 0 && i < n && value)
            m.insert(m.begin() + i, kind & 1);
        else if (i >= 0 && i < n)
            m.erase(m.begin() + i);
        break;
    default:
        a.clearArray();
        m.clear();
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    Probe arrays[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 200; ++steps) {
        step(in, arrays, models);
        for (int k = 0; k < 2; ++k) {
            arrays[k].check(models[k], in);
            if (models[k].size() > size_t(2 * kMaxBits)) { // small enough for a full check per step
                arrays[k].clearArray();
                models[k].clear();
            }
        }
    }
    return 0;
}
