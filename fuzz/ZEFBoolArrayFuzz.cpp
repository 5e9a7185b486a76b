// Fuzz target: random operation sequences on two ZEFBoolArray objects, each
// checked after every step against a std::vector<bool> model of its bits, and
// against the storage rules (both guard bytes 1, size within the capacity).
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <algorithm>
#include <vector>

namespace {

using Model = std::vector<bool>;

// The guards and the capacity are protected: a probe reads them.
class Probe : public ZEFBoolArray {
public:
    void checkStorage(const Model &model) const {
        FUZZ_CHECK(m_begin == m_block + 1);
        FUZZ_CHECK(*m_block == 1 && *m_end == 1);
        FUZZ_CHECK(m_end >= m_begin);
        FUZZ_CHECK(m_numBits == int(model.size()));
        FUZZ_CHECK(static_cast<long long>(m_end - m_begin) * 8 >= m_numBits);
    }
};

constexpr int kMaxBits = 300;

void check(const Probe &a, const Model &m) {
    a.checkStorage(m);
    const int n = int(m.size());
    int set = 0;
    for (int i = 0; i < n; ++i) {
        FUZZ_CHECK(a.get(i) == m[size_t(i)]);
        FUZZ_CHECK(a.getNoSizeTest(i) == m[size_t(i)]);
        set += m[size_t(i)] ? 1 : 0;
    }
    FUZZ_CHECK(!a.get(n) && !a.get(-1));
    FUZZ_CHECK(a.getNumberOfBitSet() == set);
    FUZZ_CHECK(a.getNumberOfBitCleared() == n - set);
}

int modelFindFirst(const Model &m, bool value, int start) {
    for (int i = std::max(start, 0); i < int(m.size()); ++i)
        if (m[size_t(i)] == value)
            return i;
    return -1;
}

int modelFindLast(const Model &m, bool value, int start) {
    if (start < 0)
        return -1;
    for (int i = std::min(start, int(m.size()) - 1); i >= 0; --i)
        if (m[size_t(i)] == value)
            return i;
    return -1;
}

void growTo(Model &m, int size) {
    if (size > int(m.size()))
        m.resize(size_t(size), false);
}

void step(FuzzInput &in, Probe *arrays, Model *models) {
    const int which = in.range(0, 1);
    Probe &a = arrays[which];
    Model &m = models[which];
    Probe &b = arrays[1 - which];
    const Model &mb = models[1 - which];
    const int n = int(m.size());
    switch (in.range(0, 27)) {
    case 0: {
        const int size = in.range(0, kMaxBits);
        const bool value = in.flag();
        a.assign(size, value);
        m.assign(size_t(size), value);
        break;
    }
    case 1: {
        const int size = in.range(0, kMaxBits);
        std::vector<char> bytes(size_t((size + 7) / 8));
        for (char &c : bytes)
            c = char(in.byte());
        a.assign(size, bytes.data());
        m.assign(size_t(size), false);
        for (int i = 0; i < size; ++i)
            m[size_t(i)] = (bytes[size_t(i / 8)] >> (i & 7)) & 1;
        break;
    }
    case 2: {
        const bool keep = in.flag();
        const int size = keep ? -1 : in.range(0, kMaxBits);
        const int count = in.range(keep ? -1 : 0, 8);
        std::vector<int> idx(size_t(std::max(count, 0)) + 1);
        for (int &i : idx)
            i = keep ? in.range(-3, n + 20) : in.range(0, std::max(size - 1, 0));
        if (!keep && size == 0)
            break; // every listed bit must lie below the size
        a.assign(count, idx.data(), size);
        if (keep) {
            if (count >= 1) {
                growTo(m, *std::max_element(idx.begin(), idx.begin() + count) + 1);
                for (int k = 0; k < count; ++k)
                    if (idx[size_t(k)] >= 0)
                        m[size_t(idx[size_t(k)])] = true;
            }
        } else {
            m.assign(size_t(size), false);
            for (int k = 0; k < count; ++k)
                m[size_t(idx[size_t(k)])] = true;
        }
        break;
    }
    case 3: {
        const int size = in.range(0, kMaxBits);
        const bool value = in.flag();
        a.resize(size, value);
        // An array with no block of its own keeps size 0.
        if (!(n == 0 && size == 0))
            m.resize(size_t(size), value);
        break;
    }
    case 4: {
        const int i = in.range(-8, n + 8);
        FUZZ_CHECK(a.get(i) == (i >= 0 && i < n && m[size_t(i)]));
        FUZZ_CHECK(a[i] == a.get(i));
        if (i >= 0 && i < n)
            FUZZ_CHECK(a.getAsMask(i) == (m[size_t(i)] ? 1 << (i & 7) : 0));
        break;
    }
    case 5: {
        if (n == 0)
            break;
        const int i = in.range(0, n - 1);
        switch (in.range(0, 2)) {
        case 0:
            a.set(i);
            m[size_t(i)] = true;
            break;
        case 1:
            a.clear(i);
            m[size_t(i)] = false;
            break;
        default:
            a.toggle(i);
            m[size_t(i)] = !m[size_t(i)];
            break;
        }
        break;
    }
    case 6: {
        const int i = in.range(0, n + 40);
        growTo(m, i + 1);
        switch (in.range(0, 2)) {
        case 0:
            a.setAutoResize(i);
            m[size_t(i)] = true;
            break;
        case 1:
            a.clearAutoResize(i);
            m[size_t(i)] = false;
            break;
        default:
            a.toggleAutoResize(i);
            m[size_t(i)] = !m[size_t(i)];
            break;
        }
        break;
    }
    case 7: {
        const int index = in.range(-4, n + 30);
        const int count = in.range(-3, 40);
        const bool value = in.flag();
        if (value)
            a.set(index, count);
        else
            a.clear(index, count);
        if (index >= 0) {
            const int c = std::max(count, 1);
            growTo(m, index + c);
            for (int k = index; k < index + c; ++k)
                m[size_t(k)] = value;
        }
        break;
    }
    case 8: {
        const int count = in.range(-1, 8);
        std::vector<int> idx(size_t(std::max(count, 0)) + 1);
        for (int &i : idx)
            i = in.range(-3, n + 30);
        const bool value = in.flag();
        if (value)
            a.set(count, idx.data());
        else
            a.clear(count, idx.data());
        if (count >= 1) {
            growTo(m, *std::max_element(idx.begin(), idx.begin() + count) + 1);
            for (int k = 0; k < count; ++k)
                if (idx[size_t(k)] >= 0)
                    m[size_t(idx[size_t(k)])] = value;
        }
        break;
    }
    case 9: {
        ZEFArray<int> idx;
        const int count = in.range(0, 6);
        for (int k = 0; k < count; ++k)
            idx.push_back(in.range(0, n + 30));
        a.set(idx);
        for (int i : idx) {
            growTo(m, i + 1);
            m[size_t(i)] = true;
        }
        break;
    }
    case 10:
        switch (in.range(0, 3)) {
        case 0:
            a.setAll();
            m.assign(m.size(), true);
            break;
        case 1:
            a.clearAll();
            m.assign(m.size(), false);
            break;
        case 2:
            a.inverse();
            m.flip();
            break;
        default:
            a.toggleAll();
            m.flip();
            break;
        }
        break;
    case 11: { // OR and XOR, the other array or this one
        const bool self = in.flag();
        const bool xorOp = in.flag();
        const Model other = self ? m : mb;
        if (xorOp)
            a.toggle(self ? a : b);
        else if (in.flag())
            a.set(self ? a : b);
        else
            a.merge(self ? a : b);
        if (other.empty())
            break;
        growTo(m, int(other.size()));
        for (size_t i = 0; i < other.size(); ++i)
            m[i] = xorOp ? (m[i] != other[i]) : (m[i] || other[i]);
        break;
    }
    case 12:
        a.clear(b);
        for (size_t i = 0; i < std::min(m.size(), mb.size()); ++i)
            if (mb[i])
                m[i] = false;
        break;
    case 13:
        a.inter(b);
        if (m.empty())
            break;
        m.resize(std::min(m.size(), mb.size()));
        for (size_t i = 0; i < m.size(); ++i)
            m[i] = m[i] && mb[i];
        break;
    case 14: {
        bool common = false, contained = true;
        for (size_t i = 0; i < mb.size(); ++i) {
            const bool mine = i < m.size() && m[i];
            common = common || (mine && mb[i]);
            contained = contained && (!mb[i] || mine);
        }
        FUZZ_CHECK(a.hasInter(b) == common);
        FUZZ_CHECK(a.bitTest(b) == contained);
        FUZZ_CHECK((a == b) == (m == mb));
        FUZZ_CHECK(a == a);
        break;
    }
    case 15: {
        const bool self = in.flag();
        const bool fill = in.flag();
        if (self)
            a.copy(a, fill);
        else {
            a.copy(b, fill);
            m = mb;
        }
        break;
    }
    case 16: {
        const ZEFBoolArray result = (static_cast<ZEFBoolArray &>(a) = b);
        m = mb;
        FUZZ_CHECK(result == b);
        break;
    }
    case 17:
        a.swap(b);
        std::swap(models[0], models[1]);
        break;
    case 18: {
        const Probe &self = a;
        ZEFBoolArray copy(self);
        FUZZ_CHECK(copy == a);
        copy.resize(int(m.size()) + 9, true); // the copy owns its block
        FUZZ_CHECK(copy.getNumberOfBitSet() == a.getNumberOfBitSet() + 9);
        break;
    }
    case 19: {
        const bool value = in.flag();
        const int start = in.range(-10, n + 10);
        FUZZ_CHECK(a.findFirst(value, start) == modelFindFirst(m, value, start));
        FUZZ_CHECK(a.findFirst(value) == modelFindFirst(m, value, 0));
        break;
    }
    case 20: {
        const bool value = in.flag();
        const int start = in.flag() ? in.range(-10, n + 10) : in.i32();
        FUZZ_CHECK(a.findLast(value, start) == modelFindLast(m, value, start));
        FUZZ_CHECK(a.findLast(value) == modelFindLast(m, value, n - 1));
        break;
    }
    case 21: {
        const bool value = in.flag();
        ZEFArray<int> got;
        got.Base::assign(3, 12345); // stale content that must be replaced
        const bool any = value ? a.getIndexesSet(got) : a.getIndexesCleared(got);
        std::vector<int> want;
        for (int i = 0; i < n; ++i)
            if (m[size_t(i)] == value)
                want.push_back(i);
        FUZZ_CHECK(any == !want.empty());
        FUZZ_CHECK(std::equal(got.begin(), got.end(), want.begin(), want.end()));
        break;
    }
    case 22: {
        const int i = in.range(-2, n + 1);
        const bool value = in.flag();
        a.insert(i, value);
        if (i >= 0 && i < n)
            m.insert(m.begin() + i, value);
        break;
    }
    case 23: {
        const int i = in.range(-2, n + 1);
        a.erase(i);
        if (i >= 0 && i < n)
            m.erase(m.begin() + i);
        break;
    }
    case 24:
        a.clearArray();
        m.clear();
        break;
    case 25: { // Spare bits must never leak into the value: forced by fill = true.
        a.copy(b, true);
        m = mb;
        break;
    }
    case 26: {
        const unsigned char v = in.byte();
        int count = 0, first1 = 8, first0 = 8, last1 = 8, last0 = 8;
        for (int k = 0; k < 8; ++k) {
            const bool bit = (v >> k) & 1;
            count += bit;
            if (bit && first1 == 8)
                first1 = k;
            if (!bit && first0 == 8)
                first0 = k;
            if (bit)
                last1 = k;
            if (!bit)
                last0 = k;
        }
        FUZZ_CHECK(ZEFBoolArray::getNumBitsAt1(v) == count);
        FUZZ_CHECK(ZEFBoolArray::getNumBitsAt0(v) == 8 - count);
        FUZZ_CHECK(ZEFBoolArray::getFirstBitAt1(v) == first1 && ZEFBoolArray::getFirstBitAt0(v) == first0);
        FUZZ_CHECK(ZEFBoolArray::getLastBitAt1(v) == last1 && ZEFBoolArray::getLastBitAt0(v) == last0);
        break;
    }
    default: { // A fresh array of a given size and value.
        const int size = in.range(0, kMaxBits);
        const bool value = in.flag();
        ZEFBoolArray fresh(size, value);
        FUZZ_CHECK(fresh.getNumberOfBitSet() == (value ? size : 0));
        FUZZ_CHECK(fresh.findFirst(!value) == -1);
        break;
    }
    }
    // Keep the arrays small enough for a full check after every step.
    for (int k = 0; k < 2; ++k)
        if (models[k].size() > size_t(2 * kMaxBits)) {
            arrays[k].clearArray();
            models[k].clear();
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    Probe arrays[2];
    Model models[2];
    for (int steps = 0; !in.empty() && steps < 200; ++steps) {
        step(in, arrays, models);
        check(arrays[0], models[0]);
        check(arrays[1], models[1]);
    }
    return 0;
}
