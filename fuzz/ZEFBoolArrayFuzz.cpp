// Fuzz target: operation sequences on two ZEFBoolArray objects, each the other's operand in the
// bitwise forms, compared after every step with a std::vector<bool>; both guard bytes stay 1 and
// the size within the capacity.
#include "FuzzInput.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <algorithm>
#include <vector>

using B = ZEFBoolArray;
using Model = std::vector<bool>;

struct Probe : B { // the guards and the capacity are protected
    bool intact(int n) const {
        return m_begin == m_block + 1 && *m_block == 1 && *m_end == 1 && (m_end - m_begin) * 8 >= n &&
               m_numBits == n;
    }
};

static void check(Probe &a, Model &m) { // then empties large ones: a full check after every step
    const int n = int(m.size());
    FUZZ_CHECK(a.intact(n) && a.getNumberOfBitSet() == std::count(m.begin(), m.end(), true));
    for (int i = -1; i <= n; ++i)
        FUZZ_CHECK(a.get(i) == (i >= 0 && i < n && m[i]));
    m.size() > 300 ? a.clearArray(), m.clear() : void();
}

static void step(FuzzInput &in, Probe &a, Model &m, Probe &b, Model &mb) {
    static void (B::*const bit[])(int) = {&B::set,           &B::clear,           &B::toggle,
                                          &B::setAutoResize, &B::clearAutoResize, &B::toggleAutoResize};
    static void (B::*const bitwise[])(const B &) = {&B::set, &B::merge, &B::toggle, &B::clear, &B::inter};
    const int op = in.range(0, 6), kind = in.range(0, 5);
    const auto put = [&m](int k, bool v) { m.resize(std::max(m.size(), size_t(k) + 1)), m[k] = v; };
    const int n = int(m.size()), i = in.range(-4, n + 30), count = in.range(-3, 40);
    const bool value = in.flag();
    if (op == 0) { // a size and a value, or a size and bytes
        const int size = in.range(0, 300);
        std::vector<char> bytes((size + 7) / 8);
        for (char &c : bytes)
            c = char(in.byte());
        kind < 2 ? a.assign(size, value) : a.assign(size, bytes.data());
        m.assign(size, kind < 2 && value);
        for (int k = 0; kind >= 2 && k < size; ++k)
            m[k] = (bytes[k / 8] >> (k & 7)) & 1;
    } else if (op == 1 && i >= 0 && (i < n || kind >= 3)) { // the auto-resizing forms also above
        (a.*bit[kind])(i);
        put(i, kind % 3 == 0 || (kind % 3 == 2 && !(i < n && m[i])));
    } else if (op == 2) { // a run: a negative index does nothing, a count below 1 counts as 1
        value ? a.set(i, count) : a.clear(i, count);
        for (int k = i; i >= 0 && k < i + std::max(count, 1); ++k)
            put(k, value);
    } else if (op == 3) {
        kind & 1 ? a.setAll() : kind & 2 ? a.clearAll() : kind & 4 ? a.inverse() : a.toggleAll();
        kind & 3 ? m.assign(m.size(), kind & 1) : m.flip();
    } else if (op == 4) { // OR, XOR (also with itself), AND NOT, AND
        const bool self = kind < 3 && value;
        const Model o = self ? m : mb;
        (a.*bitwise[kind % 5])(self ? a : b);
        const int k5 = kind % 5; // sizes: the larger, the own, the smaller unless empty
        m.resize(k5 < 3                 ? std::max(m.size(), o.size())
                 : k5 == 3 || m.empty() ? m.size()
                                        : std::min(m.size(), o.size()));
        for (size_t k = 0; k < std::min(m.size(), o.size()); ++k)
            m[k] = k5 < 2 ? m[k] || o[k] : k5 == 2 ? m[k] != o[k] : k5 == 3 ? m[k] && !o[k] : m[k] && o[k];
    } else if (op == 5) { // copies; spare bits must never leak into the value (fill = true)
        kind == 0 ? a.swap(b) : kind == 1 ? void(static_cast<B &>(a) = b) : a.copy(value ? a : b, kind == 2);
        kind == 0 ? std::swap(m, mb) : void(m = kind > 1 && value ? m : mb);
    } else if (op == 6) { // insert, erase (mostly inside), resize
        const int at = kind < 4 ? i % (n + 2) - 1 : i + 4;
        kind < 2 ? a.insert(at, value) : kind < 4 ? a.erase(at) : a.resize(at, value);
        if (kind >= 4)
            m.resize(at, value);
        else if (at >= 0 && at < n)
            kind < 2 ? void(m.insert(m.begin() + at, value)) : void(m.erase(m.begin() + at));
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return runTwo<Probe, Model>(data, size, 200, step, check);
}
