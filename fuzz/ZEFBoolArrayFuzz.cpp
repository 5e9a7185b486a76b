// Fuzz target: operation sequences on two ZEFBoolArray objects, each the other's operand
// in the bitwise forms, compared after every step with a std::vector<bool> and checked
// against the storage rules: both guard bytes 1, the size within the capacity.
#include "FuzzInput.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <algorithm>
#include <vector>

namespace {

using B = ZEFBoolArray;
using Model = std::vector<bool>;

void put(Model &m, int i, bool value) {
    m.resize(std::max(m.size(), size_t(i) + 1), false);
    m[size_t(i)] = value;
}

// The guards and the capacity are protected: a probe reads them.
struct Probe : B {
    void check(const Model &m) const {
        const int n = int(m.size());
        FUZZ_CHECK(m_begin == m_block + 1 && *m_block == 1 && *m_end == 1 && (m_end - m_begin) * 8 >= n);
        FUZZ_CHECK(m_numBits == n && getNumberOfBitSet() == std::count(m.begin(), m.end(), true));
        for (int i = -1; i <= n; ++i)
            FUZZ_CHECK(get(i) == (i >= 0 && i < n && m[size_t(i)]));
        for (int start : {-3, 0, n / 3, n - 1, n + 5}) {
            const bool value = start & 1;
            int first = std::max(start, 0), last = start < 0 ? -1 : std::min(start, n - 1);
            while (first < n && m[size_t(first)] != value)
                ++first;
            while (last >= 0 && m[size_t(last)] != value)
                --last;
            FUZZ_CHECK(findFirst(value, start) == (first < n ? first : -1) && findLast(value, start) == last);
        }
    }
};

void step(FuzzInput &in, Probe *arrays, Model *models) {
    static void (B::*const bit[])(int) = {&B::set,           &B::clear,           &B::toggle,
                                          &B::setAutoResize, &B::clearAutoResize, &B::toggleAutoResize};
    static void (B::*const whole[])() = {&B::setAll, &B::clearAll, &B::inverse, &B::toggleAll};
    static void (B::*const bitwise[])(const B &) = {&B::set, &B::merge, &B::toggle, &B::clear, &B::inter};
    const int which = in.range(0, 1), op = in.range(0, 8), kind = in.range(0, 5);
    Probe &a = arrays[which], &b = arrays[1 - which];
    Model &m = models[which];
    const int n = int(m.size()), i = in.range(-4, n + 30), count = in.range(-3, 40);
    const bool value = in.flag();
    if (op == 0) { // a size and a value, or a size and bytes
        const int size = in.range(0, 300);
        std::vector<char> bytes(size_t(size + 7) / 8);
        for (char &c : bytes)
            c = char(in.byte());
        kind < 2 ? a.assign(size, value) : a.assign(size, bytes.data());
        m.assign(size_t(size), kind < 2 && value);
        for (int k = 0; kind >= 2 && k < size; ++k)
            m[size_t(k)] = (bytes[size_t(k / 8)] >> (k & 7)) & 1;
    } else if (op == 1 && i >= 0 && (i < n || kind >= 3)) { // one bit; the auto-resizing forms also above
        (a.*bit[kind])(i);
        put(m, i, kind % 3 == 0 || (kind % 3 == 2 && !(i < n && m[size_t(i)])));
    } else if (op == 2) { // a run: a negative index does nothing, a count below 1 counts as 1
        value ? a.set(i, count) : a.clear(i, count);
        for (int k = i; i >= 0 && k < i + std::max(count, 1); ++k)
            put(m, k, value);
    } else if (op == 8) { // a list: negative indexes are ignored
        std::vector<int> list(size_t(kind) + 1);
        for (int &k : list)
            k = in.range(-3, n + 30);
        value ? a.set(kind - 1, list.data()) : a.clear(kind - 1, list.data());
        for (int k = 0; k < kind - 1; ++k)
            if (list[size_t(k)] >= 0)
                put(m, list[size_t(k)], value);
    } else if (op == 3) {
        (a.*whole[kind % 4])();
        kind % 4 < 2 ? m.assign(m.size(), kind % 4 == 0) : m.flip();
    } else if (op == 4) { // OR, XOR (also with itself), AND NOT, AND
        const bool self = kind < 3 && value;
        const Model o = models[self ? which : 1 - which];
        (a.*bitwise[kind % 5])(self ? a : b);
        m.resize(kind % 5 < 3                 ? std::max(m.size(), o.size())
                 : kind % 5 == 3 || m.empty() ? m.size()
                                              : std::min(m.size(), o.size()));
        for (size_t k = 0; k < std::min(m.size(), o.size()); ++k)
            m[k] = kind % 5 < 2    ? m[k] || o[k]
                   : kind % 5 == 2 ? m[k] != o[k]
                   : kind % 5 == 3 ? m[k] && !o[k]
                                   : m[k] && o[k];
    } else if (op == 5) { // copies; spare bits must never leak into the value (fill = true)
        if (kind == 0) {
            a.swap(b);
            std::swap(models[0], models[1]);
            return;
        }
        kind == 1 ? void(static_cast<B &>(a) = b) : a.copy(value ? a : b, kind == 2);
        m = models[kind > 1 && value ? which : 1 - which];
    } else if (op == 6) { // insert, erase (mostly inside), resize
        const int at = kind < 4 ? i % (n + 2) - 1 : i + 4;
        kind < 2 ? a.insert(at, value) : kind < 4 ? a.erase(at) : a.resize(at, value);
        if (kind >= 4)
            m.resize(size_t(at), value);
        else if (at >= 0 && at < n)
            kind < 2 ? void(m.insert(m.begin() + at, value)) : void(m.erase(m.begin() + at));
    } else if (op == 7) {
        a.clearArray();
        m.clear();
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
            arrays[k].check(models[k]);
            if (models[k].size() > 300) // small enough for a full check after every step
                arrays[k].clearArray(), models[k].clear();
        }
    }
    return 0;
}
