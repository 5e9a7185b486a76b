#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <vector>

// Array allocations can be made to fail, to check what a failed grow leaves.
static bool g_failArrayNew = false;
void *operator new[](std::size_t n) {
    void *p = g_failArrayNew ? nullptr : std::malloc(n ? n : 1);
    if (!p)
        throw std::bad_alloc();
    return p;
}
void operator delete[](void *p) noexcept {
    std::free(p);
}
void operator delete[](void *p, std::size_t) noexcept {
    std::free(p);
}

namespace {
using Model = std::vector<bool>;
using zeftest::pick;

// Opens the storage to the checks.
class Probe : public ZEFBoolArray {
public:
    using ZEFBoolArray::ZEFBoolArray;
    Probe() = default;
    int numBits() const { return m_numBits; }
    long long capBits() const { return (m_end - m_begin) * 8LL; }
    const unsigned char *block() const { return m_block; }
    bool guardsIntact() const { return m_begin == m_block + 1 && m_block[0] == 1 && *m_end == 1; }
    Model raw() const { // every bit of the capacity, spare bits included
        Model r(static_cast<std::size_t>(capBits()));
        for (std::size_t i = 0; i < r.size(); ++i)
            r[i] = getNoSizeTest(int(i));
        return r;
    }
};

std::size_t bytesFor(std::size_t n) {
    return (n + 7) / 8;
}

// A random array of up to 120 bits whose spare bits are all set or all clear.
Probe randomArray(std::mt19937 &rng, Model &m) {
    const int n = pick(rng, 0, 120);
    Probe a(n, true);
    m.assign(std::size_t(n), true);
    for (int i = 0; i < n; ++i)
        if (pick(rng, 0, 1))
            a.clear(i), m[i] = false;
    if (pick(rng, 0, 1))
        a.toggleAll(), m.flip();
    return a;
}

// Checks every observation of a against the model, and the storage rules: intact
// guards, exact capacity, the shared block when empty.
void expectMatches(const Probe &a, const Model &m, std::size_t capBytes) {
    const int n = int(m.size());
    ASSERT_TRUE(a.numBits() == n && a.guardsIntact() && a.capBits() == (long long)(capBytes * 8));
    ASSERT_TRUE(capBytes != 0 || a.block() == Probe().block());
    for (bool v : {false, true}) {
        std::vector<int> next(std::size_t(n) + 1, -1), prev(std::size_t(n) + 1, -1),
            listed; // prev[i + 1]: up to i
        for (int i = n - 1; i >= 0; --i)
            next[i] = m[i] == v ? i : next[i + 1];
        for (int i = 0; i < n; ++i) {
            prev[i + 1] = m[i] == v ? i : prev[i];
            if (m[i] == v)
                listed.push_back(i);
        }
        for (int s = -3; s <= n + 9; ++s) {
            ASSERT_EQ(a.findFirst(v, s), s >= n ? -1 : next[std::max(s, 0)]) << v << " from " << s;
            ASSERT_EQ(a.findLast(v, s), s < 0 ? -1 : prev[std::min(s + 1, n)]) << v << " from " << s;
        }
        EXPECT_TRUE(a.findFirst(v) == next[0] && a.findLast(v) == prev[n]);
        EXPECT_EQ(v ? a.getNumberOfBitSet() : a.getNumberOfBitCleared(), int(listed.size()));
        ZEFArray<int> out;
        out.assign(3);
        EXPECT_EQ(v ? a.getIndexesSet(out) : a.getIndexesCleared(out), !listed.empty());
        EXPECT_EQ(std::vector<int>(out.vbegin(), out.vbegin() + out.size()), listed);
    }
    Probe same(n, false);
    for (int i = 0; i < n; ++i) {
        ASSERT_TRUE(a.get(i) == m[i] && a[i] == m[i] && a.getAsMask(i) == (m[i] ? 1 << (i & 7) : 0)) << i;
        if (m[i])
            same.set(i);
    }
    EXPECT_FALSE(a.get(n) || a.get(-1));
    EXPECT_TRUE(a == same); // spare bits do not count
    if (n > 0)
        same.toggle(n / 2);
    EXPECT_TRUE((n > 0) != (a == same));
    EXPECT_FALSE(a == Probe(n + 1, false));
}
} // namespace

// Every operation against std::vector<bool>, with the rules on spare bits (kept, or all
// taking one value) and on the capacity (exact; shrinks only through clearArray).
TEST(ZEFBoolArray, RandomOperationsMatchModel) {
    for (unsigned seed : {11u, 22u, 33u}) {
        std::mt19937 rng(seed);
        Probe a;
        Model m;
        std::size_t capBytes = 0;
        for (int step = 0; step < 2500; ++step) {
            const int n = int(m.size()), op = n > 300 ? 7 : pick(rng, 0, 13), kind = pick(rng, 0, 4);
            SCOPED_TRACE(::testing::Message()
                         << "seed " << seed << " step " << step << " op " << op << "." << kind);
            const int i = n ? pick(rng, 0, n - 1) : 0, at = pick(rng, -2, n + 20), count = pick(rng, -2, 20);
            const bool value = pick(rng, 0, 1) == 1;
            const Model before = a.raw();
            bool spareKept = false; // bits from the size up to the capacity keep their contents
            int spareAll = -1;      // or all of them must equal this value
            auto grow = [&](long long size) {
                m.resize(std::max(m.size(), std::size_t(std::max(size, 0LL))), false);
            };
            Model om;
            Probe other = randomArray(rng, om);
            std::vector<int> list(std::size_t(pick(rng, 0, 6)));
            for (int &e : list)
                e = pick(rng, kind == 4 ? 0 : -3, kind == 4 ? std::max(at, 0) : n + 16);
            if (op == 0) { // one bit: unchecked, or with growth
                if (kind < 3 && n > 0) {
                    kind == 0 ? a.set(i) : kind == 1 ? a.clear(i) : a.toggle(i);
                    m[i] = kind == 0 || (kind == 2 && !m[i]), spareKept = true;
                } else if (at >= 0) {
                    value ? a.setAutoResize(at) : kind & 1 ? a.clearAutoResize(at) : a.toggleAutoResize(at);
                    grow(at + 1);
                    m[at] = value || (!(kind & 1) && !m[at]);
                }
            } else if (op == 1) { // a range: a count below 1 is 1; clear grows the array too
                value ? a.set(at, count) : a.clear(at, count);
                if (at >= 0)
                    grow(at + std::max(count, 1)), std::fill_n(m.begin() + at, std::max(count, 1), value);
            } else if (op == 2) { // a list, one resize to its largest entry; negative entries skipped
                ZEFArray<int> array;
                array.assign(int(list.size()));
                std::copy(list.begin(), list.end(), array.vbegin());
                const int size = kind == 4 ? std::max(at, 0) + 1 : -1, k = int(list.size());
                kind == 0   ? a.set(array)
                : kind == 1 ? a.set(k, list.data())
                : kind == 2 ? a.clear(k, list.data())
                            : a.assign(k, list.data(), size);
                if (size >= 0)
                    m.assign(std::size_t(size), false);
                for (int e : list)
                    grow(e + 1);
                for (int e : list)
                    if (e >= 0)
                        m[e] = kind != 2;
            } else if (op == 3) { // below the size only, or every data byte of the capacity (toggleAll)
                kind == 0 ? a.setAll() : kind == 1 ? a.clearAll() : kind == 2 ? a.inverse() : a.toggleAll();
                kind < 2 ? std::fill(m.begin(), m.end(), kind == 0) : m.flip();
                for (std::size_t k = m.size(); kind > 2 && n > 0 && k < before.size(); ++k)
                    ASSERT_NE(a.getNoSizeTest(int(k)), before[k]);
                spareKept = kind < 3 || n == 0;
            } else if (op == 4) { // OR, XOR to the larger size; clear(other) keeps the size
                if (kind < 3)
                    grow((long long)om.size());
                for (std::size_t k = 0; k < std::min(om.size(), m.size()); ++k)
                    m[k] = kind > 2 ? m[k] && !om[k] : kind == 2 ? m[k] != om[k] : m[k] || om[k];
                kind == 0   ? a.set(other)
                : kind == 1 ? a.merge(other)
                : kind == 2 ? a.toggle(other)
                            : a.clear(other);
                spareKept = kind > 2;
            } else if (op == 5 && n == 0) { // an empty array stays as it is
                a.inter(other);
                spareKept = true;
            } else if (op == 5) { // the partial byte keeps only bits below the size, the next byte takes 1
                a.inter(other);
                const std::size_t smaller = std::min(om.size(), m.size());
                m.resize(smaller);
                for (std::size_t k = 0; k < smaller; ++k)
                    m[k] = m[k] && om[k];
                const int after = int(bytesFor(smaller) * 8);
                for (int k = int(smaller); k < after; ++k)
                    ASSERT_FALSE(a.getNoSizeTest(k));
                for (int k = 0; after < a.capBits() && k < 8; ++k)
                    ASSERT_EQ(a.getNoSizeTest(after + k), k == 0);
            } else if (op == 6) {
                bool common = false, contains = true;
                for (std::size_t k = 0; k < om.size(); ++k) {
                    common = common || (om[k] && k < m.size() && m[k]);
                    contains = contains && (!om[k] || (k < m.size() && m[k]));
                }
                EXPECT_TRUE(a.hasInter(other) == common && a.bitTest(other) == contains && a.bitTest(a));
                EXPECT_EQ(a.hasInter(a), a.findFirst(true) != -1);
                ASSERT_EQ(a.raw(), before);
            } else if (op == 7) { // in place: the new last byte keeps its bits, old spare bits take value
                const int size = n > 300 ? pick(rng, 0, 60) : pick(rng, 0, n + 40);
                a.resize(size, value);
                for (std::size_t k = std::size_t(size); size < n && k < capBytes * 8; ++k)
                    ASSERT_EQ(a.getNoSizeTest(int(k)),
                              k < bytesFor(size) * 8 && k < m.size() ? before[k] : value);
                m.resize(std::size_t(size), value);
            } else if (op == 8) {
                a.assign(at + 2, value);
                m.assign(std::size_t(at + 2), value);
                spareAll = value;
            } else if (op == 9) { // raw bytes: spare bits of the last byte come from the source too
                std::vector<char> bytes(std::size_t(pick(rng, 0, 12)));
                for (char &c : bytes)
                    c = char(pick(rng, -128, 127));
                const int size = bytes.empty() ? 0 : int(bytes.size()) * 8 - pick(rng, 0, 7);
                a.assign(size, bytes.data());
                m.resize(std::size_t(size));
                for (std::size_t k = 0; k < bytes.size() * 8; ++k) {
                    const bool bit = (static_cast<unsigned char>(bytes[k / 8]) >> (k & 7)) & 1;
                    if (k < m.size())
                        m[k] = bit;
                    else
                        ASSERT_EQ(a.getNoSizeTest(int(k)), bit);
                }
            } else if (op == 10) { // copy with a fill, or assignment; also from itself
                const bool fill = kind & 1;
                if (kind < 2)
                    a.copy(value ? other : a, fill);
                else
                    EXPECT_TRUE(ZEFBoolArray(a = value ? other : a) == a);
                spareAll = kind < 2 && fill;
                m = value ? om : m;
            } else if (op == 11) { // nothing at the end, nothing into an empty array
                value ? a.insert(at, kind & 1) : a.erase(at);
                if (at >= 0 && at < n)
                    value ? void(m.insert(m.begin() + at, kind & 1)) : void(m.erase(m.begin() + at));
                spareKept = !value;
            } else if (op == 12) {
                a.clearArray();
                m.clear();
                capBytes = 0;
            } else if (op == 13) {
                Probe copy(a); // a copy is exact: no room beyond its size, spare bits clear
                ASSERT_EQ(copy.capBits(), (long long)(bytesFor(m.size()) * 8));
                for (long long k = copy.numBits(); k < copy.capBits(); ++k)
                    ASSERT_FALSE(copy.getNoSizeTest(int(k)));
                a.swap(other);
                expectMatches(a, om, bytesFor(om.size()));
                a.swap(copy);
                capBytes = bytesFor(m.size());
            }
            for (long long k = a.numBits(); spareAll >= 0 && k < a.capBits(); ++k)
                ASSERT_EQ(a.getNoSizeTest(int(k)), spareAll == 1) << "op " << op;
            for (std::size_t k = m.size(); spareKept && k < before.size(); ++k)
                ASSERT_EQ(a.getNoSizeTest(int(k)), before[k]) << "op " << op;
            capBytes = std::max(capBytes, bytesFor(m.size()));
            expectMatches(a, m, capBytes);
            if (::testing::Test::HasFatalFailure())
                return;
        }
    }
}

TEST(ZEFBoolArray, FailedGrowLeavesTheArrayAsItWas) {
    Probe a(10, false);
    a.set(3);
    const Model raw = a.raw();
    const Probe big(100, true);
    const char bytes[16] = {};
    g_failArrayNew = true;
    EXPECT_THROW(a.copy(big, false), std::bad_alloc);
    EXPECT_THROW(a = big, std::bad_alloc);
    EXPECT_THROW(a.assign(100, true), std::bad_alloc);
    EXPECT_THROW(a.assign(100, bytes), std::bad_alloc);
    EXPECT_THROW(a.resize(100, true), std::bad_alloc);
    EXPECT_THROW(a.set(big), std::bad_alloc);
    EXPECT_THROW(a.setAutoResize(99), std::bad_alloc);
    g_failArrayNew = false;
    EXPECT_TRUE(a.numBits() == 10 && a.guardsIntact() && a.raw() == raw);
}
