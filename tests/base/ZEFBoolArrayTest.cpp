#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

// Array allocations can be made to fail, to check what a failed grow leaves.
static bool g_failArrayNew = false;
void *operator new[](std::size_t n) {
    void *p = g_failArrayNew ? nullptr : std::malloc(n ? n : 1);
    if (!p)
        throw std::bad_alloc();
    return p;
}
void operator delete[](void *p) noexcept { std::free(p); }
void operator delete[](void *p, std::size_t) noexcept { std::free(p); }

namespace {

using Model = std::vector<bool>;

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
            r[i] = getNoSizeTest(static_cast<int>(i));
        return r;
    }
};

std::size_t bytesFor(std::size_t n) { return (n + 7) / 8; }

int pick(std::mt19937 &rng, int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }

// A random array whose spare bits are all set or all clear.
Probe randomArray(std::mt19937 &rng, Model &m, int maxSize) {
    const int n = pick(rng, 0, maxSize);
    Probe a(n, true);
    m.assign(static_cast<std::size_t>(n), true);
    for (int i = 0; i < n; ++i)
        if (pick(rng, 0, 1)) {
            a.clear(i);
            m[static_cast<std::size_t>(i)] = false;
        }
    if (pick(rng, 0, 1)) {
        a.toggleAll();
        m.flip();
    }
    return a;
}

// Checks every observation of a against the model, and the storage rules.
void expectMatches(const Probe &a, const Model &m, std::size_t capBytes) {
    const int n = static_cast<int>(m.size());
    ASSERT_EQ(a.numBits(), n);
    ASSERT_TRUE(a.guardsIntact());
    ASSERT_EQ(a.capBits(), static_cast<long long>(capBytes * 8));
    if (capBytes == 0) {
        ASSERT_EQ(a.block(), Probe().block());
    }
    std::vector<int> next[2], prev[2], listed[2];
    for (int v = 0; v < 2; ++v) {
        next[v].assign(static_cast<std::size_t>(n) + 1, -1);
        prev[v].assign(static_cast<std::size_t>(n), -1);
        for (int i = n - 1; i >= 0; --i)
            next[v][i] = (m[i] == (v == 1)) ? i : next[v][i + 1];
        for (int i = 0; i < n; ++i) {
            prev[v][i] = (m[i] == (v == 1)) ? i : (i ? prev[v][i - 1] : -1);
            if (m[i] == (v == 1))
                listed[v].push_back(i);
        }
    }
    for (int i = 0; i < n; ++i) {
        ASSERT_EQ(a.get(i), m[i]) << i;
        ASSERT_EQ(a[i], m[i]);
        ASSERT_EQ(a.getAsMask(i), m[i] ? 1 << (i & 7) : 0);
    }
    EXPECT_FALSE(a.get(n));
    EXPECT_FALSE(a.get(-1));
    EXPECT_EQ(a.getNumberOfBitSet(), static_cast<int>(listed[1].size()));
    EXPECT_EQ(a.getNumberOfBitCleared(), static_cast<int>(listed[0].size()));
    for (int v = 0; v < 2; ++v) {
        const bool value = v == 1;
        for (int s = -3; s <= n + 9; ++s) {
            ASSERT_EQ(a.findFirst(value, s), s >= n ? -1 : next[v][std::max(s, 0)]) << v << " from " << s;
            ASSERT_EQ(a.findLast(value, s), (s < 0 || n == 0) ? -1 : prev[v][std::min(s, n - 1)]) << v << " " << s;
        }
        EXPECT_EQ(a.findFirst(value), n ? next[v][0] : -1);
        EXPECT_EQ(a.findLast(value), n ? prev[v][n - 1] : -1);
        ZEFArray<int> out;
        out.assign(3);
        const bool any = value ? a.getIndexesSet(out) : a.getIndexesCleared(out);
        EXPECT_EQ(any, !listed[v].empty());
        EXPECT_EQ(std::vector<int>(out.vbegin(), out.vbegin() + out.size()), listed[v]);
    }
    Probe same(n, false);
    for (int i = 0; i < n; ++i)
        if (m[i])
            same.set(i);
    EXPECT_TRUE(a == same);
    if (n > 0) {
        same.toggle(n / 2);
        EXPECT_FALSE(a == same);
    }
    EXPECT_FALSE(a == Probe(n + 1, false));
}

} // namespace

TEST(ZEFBoolArray, RandomOperationsMatchModel) {
    for (unsigned seed : {11u, 22u, 33u}) {
        std::mt19937 rng(seed);
        Probe a;
        Model m;
        std::size_t capBytes = 0; // exact allocation: grows only to the size needed
        for (int step = 0; step < 2500; ++step) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << " step " << step);
            const int n = static_cast<int>(m.size());
            const Model before = a.raw();
            const int op = n > 300 ? 18 : pick(rng, 0, 27);
            const int i = n ? pick(rng, 0, n - 1) : 0;
            const bool value = pick(rng, 0, 1) == 1;
            bool spareKept = false; // bits from the size up to the capacity keep their contents
            int spareAll = -1;      // or all of them must equal this value
            Model om;
            Probe other = randomArray(rng, om, 120);
            switch (op) {
            case 0: case 1: case 2:
                if (n == 0)
                    break;
                op == 0 ? a.set(i) : op == 1 ? a.clear(i) : a.toggle(i);
                m[i] = op == 0 ? true : op == 1 ? false : !m[i];
                spareKept = true;
                break;
            case 3: case 4: case 5: {
                const int at = pick(rng, 0, n + 20);
                op == 3 ? a.setAutoResize(at) : op == 4 ? a.clearAutoResize(at) : a.toggleAutoResize(at);
                if (at >= n)
                    m.resize(static_cast<std::size_t>(at) + 1, false);
                m[at] = op == 3 ? true : op == 4 ? false : !m[at];
                break;
            }
            case 6: case 7: {
                const int at = pick(rng, -2, n + 16), count = pick(rng, -2, 20);
                op == 6 ? a.set(at, count) : a.clear(at, count);
                if (at >= 0) {
                    const std::size_t end = static_cast<std::size_t>(at) + std::max(count, 1);
                    if (end > m.size())
                        m.resize(end, false);
                    std::fill(m.begin() + at, m.begin() + static_cast<long>(end), op == 6);
                }
                break;
            }
            case 8: case 9: {
                ZEFArray<int> list;
                list.assign(pick(rng, 0, 6));
                for (int &e : list)
                    e = pick(rng, -3, n + 16);
                if (op == 8 && value)
                    a.set(list);
                else
                    op == 8 ? a.set(list.size(), list.begin()) : a.clear(list.size(), list.begin());
                if (list.size() > 0) {
                    const int largest = *std::max_element(list.begin(), list.end());
                    if (largest >= n)
                        m.resize(static_cast<std::size_t>(largest) + 1, false);
                    for (int e : list)
                        if (e >= 0)
                            m[e] = op == 8;
                }
                break;
            }
            case 10:
                value ? a.setAll() : a.clearAll();
                std::fill(m.begin(), m.end(), value);
                spareKept = true;
                break;
            case 11:
                a.inverse();
                m.flip();
                spareKept = true;
                break;
            case 12:
                a.toggleAll();
                m.flip();
                if (n > 0)
                    for (std::size_t k = m.size(); k < before.size(); ++k)
                        ASSERT_EQ(a.getNoSizeTest(static_cast<int>(k)), !before[k]);
                else
                    spareKept = true;
                break;
            case 13: case 14:
                if (om.size() > m.size())
                    m.resize(om.size(), false);
                for (std::size_t k = 0; k < om.size(); ++k)
                    m[k] = op == 13 ? (m[k] || om[k]) : (m[k] != om[k]);
                op == 13 ? (value ? a.set(other) : a.merge(other)) : a.toggle(other);
                break;
            case 15:
                a.clear(other);
                for (std::size_t k = 0; k < std::min(om.size(), m.size()); ++k)
                    m[k] = m[k] && !om[k];
                spareKept = true;
                break;
            case 16: {
                a.inter(other);
                if (n == 0)
                    break;
                const std::size_t smaller = std::min(om.size(), m.size());
                m.resize(smaller);
                for (std::size_t k = 0; k < smaller; ++k)
                    m[k] = m[k] && om[k];
                const int after = static_cast<int>(bytesFor(smaller) * 8); // marked with 1
                for (int k = static_cast<int>(smaller); k < after; ++k)
                    ASSERT_FALSE(a.getNoSizeTest(k)); // the partial byte keeps only bits below the size
                for (int k = 0; after < a.capBits() && k < 8; ++k)
                    ASSERT_EQ(a.getNoSizeTest(after + k), k == 0);
                break;
            }
            case 17: {
                bool common = false, contains = true;
                for (std::size_t k = 0; k < om.size(); ++k) {
                    common = common || (om[k] && k < m.size() && m[k]);
                    contains = contains && (!om[k] || (k < m.size() && m[k]));
                }
                EXPECT_EQ(a.hasInter(other), common);
                EXPECT_EQ(a.bitTest(other), contains);
                EXPECT_EQ(a.bitTest(a), true);
                EXPECT_EQ(a.hasInter(a), a.findFirst(true) != -1);
                ASSERT_EQ(a.raw(), before);
                break;
            }
            case 18: {
                const int size = n > 300 ? pick(rng, 0, 60) : pick(rng, 0, n + 40);
                a.resize(size, value);
                if (size < n) { // in place: the new last byte keeps its bits, but old spare bits take value
                    for (std::size_t k = static_cast<std::size_t>(size); k < bytesFor(size) * 8; ++k)
                        ASSERT_EQ(a.getNoSizeTest(static_cast<int>(k)), k < m.size() ? before[k] : value);
                    for (std::size_t k = bytesFor(size) * 8; k < capBytes * 8; ++k)
                        ASSERT_EQ(a.getNoSizeTest(static_cast<int>(k)), value);
                }
                m.resize(static_cast<std::size_t>(size), value);
                break;
            }
            case 19:
                a.assign(pick(rng, 0, n + 40), value);
                m.assign(static_cast<std::size_t>(a.numBits()), value);
                spareAll = value;
                break;
            case 20: {
                std::vector<char> bytes(static_cast<std::size_t>(pick(rng, 0, 12)));
                for (char &c : bytes)
                    c = static_cast<char>(pick(rng, 0, 255));
                const int size = bytes.empty() ? 0 : pick(rng, static_cast<int>(bytes.size()) * 8 - 7, static_cast<int>(bytes.size()) * 8);
                a.assign(size, bytes.data());
                m.resize(static_cast<std::size_t>(size));
                for (std::size_t k = 0; k < bytes.size() * 8; ++k) { // spare bits come from the source too
                    const bool bit = (static_cast<unsigned char>(bytes[k / 8]) >> (k & 7)) & 1;
                    if (k < m.size())
                        m[k] = bit;
                    else
                        ASSERT_EQ(a.getNoSizeTest(static_cast<int>(k)), bit);
                }
                break;
            }
            case 21: {
                const int size = value ? -1 : pick(rng, 0, n + 30);
                std::vector<int> list(static_cast<std::size_t>(pick(rng, 0, 5)));
                for (int &e : list)
                    e = pick(rng, value ? -2 : 0, value ? n + 10 : std::max(size - 1, 0));
                if (size == 0)
                    list.clear();
                a.assign(static_cast<int>(list.size()), list.data(), size);
                if (size >= 0)
                    m.assign(static_cast<std::size_t>(size), false);
                for (int e : list) {
                    if (e >= static_cast<int>(m.size()))
                        m.resize(static_cast<std::size_t>(*std::max_element(list.begin(), list.end())) + 1, false);
                    if (e >= 0)
                        m[e] = true;
                }
                break;
            }
            case 22: {
                const bool fill = pick(rng, 0, 1) == 1;
                a.copy(value ? other : a, fill);
                spareAll = fill;
                if (value)
                    m = om;
                break;
            }
            case 23: {
                const ZEFBoolArray returned = (a = value ? other : a);
                EXPECT_TRUE(returned == a);
                if (value)
                    m = om;
                spareAll = 0;
                break;
            }
            case 24: case 25: {
                const int at = pick(rng, -1, n);
                op == 24 ? a.insert(at, value) : a.erase(at);
                if (at >= 0 && at < n) {
                    if (op == 24)
                        m.insert(m.begin() + at, value);
                    else
                        m.erase(m.begin() + at);
                }
                spareKept = op == 25;
                break;
            }
            case 26:
                a.clearArray();
                m.clear();
                capBytes = 0;
                break;
            case 27: {
                Probe copy(a); // a copy is exact: no room beyond its size, spare bits clear
                ASSERT_EQ(copy.capBits(), static_cast<long long>(bytesFor(m.size()) * 8));
                for (long long k = copy.numBits(); k < copy.capBits(); ++k)
                    ASSERT_FALSE(copy.getNoSizeTest(static_cast<int>(k)));
                a.swap(other);
                expectMatches(a, om, bytesFor(om.size()));
                a.swap(copy);
                capBytes = bytesFor(m.size());
                break;
            }
            }
            for (long long k = a.numBits(); spareAll >= 0 && k < a.capBits(); ++k)
                ASSERT_EQ(a.getNoSizeTest(static_cast<int>(k)), spareAll == 1) << "op " << op;
            for (std::size_t k = m.size(); spareKept && k < before.size(); ++k)
                ASSERT_EQ(a.getNoSizeTest(static_cast<int>(k)), before[k]) << "op " << op;
            if (m.size() > capBytes * 8)
                capBytes = bytesFor(m.size());
            expectMatches(a, m, capBytes);
            if (::testing::Test::HasFatalFailure())
                return;
        }
    }
}

TEST(ZEFBoolArray, SpareBitsAreNeverFound) {
    Probe a(3, true); // a hit on a spare bit is not a result
    a.clearAll();
    EXPECT_TRUE(a.getNoSizeTest(3));
    EXPECT_EQ(a.findFirst(true), -1);
    Probe b(8, false);
    b.resize(3, false);
    b.setAll();
    EXPECT_EQ(b.findFirst(false), -1);
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
    EXPECT_EQ(a.numBits(), 10);
    EXPECT_TRUE(a.guardsIntact());
    EXPECT_EQ(a.raw(), raw);
}
