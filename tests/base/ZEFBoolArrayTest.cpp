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
    return p ? p : throw std::bad_alloc();
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

class Probe : public ZEFBoolArray { // opens the storage to the checks
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

// Checks a against the model and the storage rules: intact guards, exact capacity, the
// shared block when empty. The searches are checked on any bytes by the fast-path test.
void expectMatches(const Probe &a, const Model &m, std::size_t capBytes) {
    const int n = int(m.size());
    ASSERT_TRUE(a.numBits() == n && a.guardsIntact() && a.capBits() == (long long)(capBytes * 8));
    ASSERT_TRUE(capBytes != 0 || a.block() == Probe().block());
    Probe same(n, false);
    for (int i = 0; i < n; ++i) {
        ASSERT_TRUE(a.get(i) == m[i] && a[i] == m[i] && a.getAsMask(i) == (m[i] ? 1 << (i & 7) : 0)) << i;
        m[i] ? same.set(i) : void();
    }
    ASSERT_TRUE(!a.get(n) && !a.get(-1) && a == same &&
                !(a == Probe(n + 1, false))); // spare bits do not count
    n > 0 ? same.toggle(n / 2) : void();
    ASSERT_EQ(a == same, n == 0);
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
            const int i = n ? pick(rng, 0, n - 1) : 0, at = pick(rng, -2, n + 20), count = pick(rng, -2, 20);
            const bool value = pick(rng, 0, 1) == 1;
            const Model before = a.raw();
            bool spareKept = false; // bits from the size up to the capacity keep their contents
            int spareAll = -1;      // or all of them must equal this value
            auto grow = [&](long long size) { m.resize(std::max<long long>(m.size(), size), false); };
            // Another array of up to 120 bits, its spare bits all set or all clear.
            Probe other(pick(rng, 0, 120), true);
            Model om(std::size_t(other.numBits()), true);
            for (int k = 0; k < other.numBits(); ++k)
                pick(rng, 0, 1) ? void(other.clear(k)), void(om[k] = false) : void();
            pick(rng, 0, 1) ? other.toggleAll(), om.flip() : void();
            std::vector<int> list(std::size_t(pick(rng, 0, 6)));
            for (int &e : list)
                e = pick(rng, kind == 4 ? 0 : -3, kind == 4 ? std::max(at, 0) : n + 16);
            if (op == 0 && kind < 3 && n > 0) { // one bit, unchecked
                kind == 0 ? a.set(i) : kind == 1 ? a.clear(i) : a.toggle(i);
                m[i] = kind == 0 || (kind == 2 && !m[i]), spareKept = true;
            } else if (op == 0 && at >= 0) { // with growth
                value ? a.setAutoResize(at) : kind & 1 ? a.clearAutoResize(at) : a.toggleAutoResize(at);
                grow(at + 1);
                m[at] = value || (!(kind & 1) && !m[at]);
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
                size >= 0 ? m.assign(std::size_t(size), false) : void();
                for (int e : list)
                    e >= 0 ? grow(e + 1), void(m[e] = kind != 2) : void();
            } else if (op == 3) { // below the size only, or every data byte of the capacity (toggleAll)
                kind == 0 ? a.setAll() : kind == 1 ? a.clearAll() : kind == 2 ? a.inverse() : a.toggleAll();
                kind < 2 ? std::fill(m.begin(), m.end(), kind == 0) : m.flip();
                for (std::size_t k = m.size(); kind > 2 && n > 0 && k < before.size(); ++k)
                    ASSERT_NE(a.getNoSizeTest(int(k)), before[k]);
                spareKept = kind < 3 || n == 0;
            } else if (op == 4) { // OR, XOR to the larger size; clear(other) keeps the size
                kind < 3 ? grow((long long)om.size()) : void();
                for (std::size_t k = 0; k < std::min(om.size(), m.size()); ++k)
                    m[k] = kind > 2 ? m[k] && !om[k] : kind == 2 ? m[k] != om[k] : m[k] || om[k];
                kind == 0   ? a.set(other)
                : kind == 1 ? a.merge(other)
                : kind == 2 ? a.toggle(other)
                            : a.clear(other);
                spareKept = kind > 2;
            } else if (op == 5) { // the partial byte keeps only bits below the size, the next byte takes 1
                a.inter(other);
                const std::size_t smaller = n ? std::min(om.size(), m.size()) : 0,
                                  after = bytesFor(smaller) * 8;
                m.resize(smaller); // an empty array stays as it is
                for (std::size_t k = 0; k < smaller; ++k)
                    m[k] = m[k] && om[k];
                for (std::size_t k = smaller; n && k < after + 8 && k < std::size_t(a.capBits()); ++k)
                    ASSERT_EQ(a.getNoSizeTest(int(k)), k == after) << step;
                spareKept = n == 0;
            } else if (op == 6) {
                bool common = false, contains = true;
                for (std::size_t k = 0; k < om.size(); ++k) {
                    common = common || (om[k] && k < m.size() && m[k]);
                    contains = contains && (!om[k] || (k < m.size() && m[k]));
                }
                ASSERT_TRUE(a.hasInter(other) == common && a.bitTest(other) == contains && a.bitTest(a));
                ASSERT_TRUE(a.hasInter(a) == (a.findFirst(true) != -1) && a.raw() == before);
            } else if (op == 7) { // in place: the new last byte keeps its bits, old spare bits take value
                const int size = n > 300 ? pick(rng, 0, 60) : pick(rng, 0, n + 40);
                a.resize(size, value);
                for (std::size_t k = std::size_t(size); size < n && k < capBytes * 8; ++k)
                    ASSERT_EQ(a.getNoSizeTest(int(k)),
                              k < bytesFor(size) * 8 && k < m.size() ? before[k] : value);
                m.resize(std::size_t(size), value);
            } else if (op == 8) {
                a.assign(at + 2, value);
                m.assign(std::size_t(at + 2), value), spareAll = value;
            } else if (op == 9) { // raw bytes: spare bits of the last byte come from the source too
                std::vector<char> bytes(std::size_t(pick(rng, 0, 12)));
                Model all;
                for (char &c : bytes)
                    for (int k = 0, b = c = char(pick(rng, -128, 127)); k < 8; ++k)
                        all.push_back((b >> k) & 1);
                const int size = bytes.empty() ? 0 : int(bytes.size()) * 8 - pick(rng, 0, 7);
                a.assign(size, bytes.data());
                m.assign(all.begin(), all.begin() + size);
                ASSERT_TRUE(std::equal(all.begin(), all.end(), a.raw().begin()));
            } else if (op == 10) { // copy with a fill, or assignment; also from itself
                if (kind < 2)
                    a.copy(value ? other : a, kind & 1);
                else
                    ASSERT_TRUE(ZEFBoolArray(a = value ? other : a) == a);
                spareAll = kind < 2 && (kind & 1), m = value ? om : m;
            } else if (op == 11) { // nothing at the end, nothing into an empty array
                value ? a.insert(at, kind & 1) : a.erase(at);
                if (at >= 0 && at < n)
                    value ? void(m.insert(m.begin() + at, kind & 1)) : void(m.erase(m.begin() + at));
                spareKept = !value;
            } else if (op == 12) {
                a.clearArray(), m.clear(), capBytes = 0;
            } else if (op == 13) {
                Probe copy(a); // a copy is exact: no room beyond its size, spare bits clear
                const Model r = copy.raw();
                ASSERT_TRUE(r.size() == bytesFor(m.size()) * 8 &&
                            std::count(r.begin() + n, r.end(), true) == 0);
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
            ASSERT_FALSE(HasFatalFailure())
                << "seed " << seed << " step " << step << " op " << op << "." << kind;
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
