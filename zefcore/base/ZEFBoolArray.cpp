#include "zefcore/base/ZEFBoolArray.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

// The five byte tables, built at compile time; "no such bit" is 8.
enum TableKind { FirstAt0, FirstAt1, LastAt0, LastAt1, CountAt1 };

struct ByteTable {
    unsigned char entry[256];
};

constexpr ByteTable makeTable(TableKind kind) {
    ByteTable t{};
    for (int b = 0; b < 256; ++b) {
        int result = 8;
        int count = 0;
        for (int bit = 0; bit < 8; ++bit) {
            const bool one = ((b >> bit) & 1) != 0;
            if (one)
                ++count;
            const bool wanted = (kind == FirstAt1 || kind == LastAt1) ? one : !one;
            if (wanted && (kind == LastAt0 || kind == LastAt1 || result == 8))
                result = bit;
        }
        t.entry[b] = static_cast<unsigned char>(kind == CountAt1 ? count : result);
    }
    return t;
}

constexpr ByteTable s_firstBitAt0 = makeTable(FirstAt0);
constexpr ByteTable s_firstBitAt1 = makeTable(FirstAt1);
constexpr ByteTable s_lastBitAt0 = makeTable(LastAt0);
constexpr ByteTable s_lastBitAt1 = makeTable(LastAt1);
constexpr ByteTable s_numBitsAt1 = makeTable(CountAt1);

// The block shared by every empty array: both bytes are guards. Never written.
unsigned char s_emptyBlock[2] = {1, 1};

// Returns the number of bytes used by n >= 0 bits.
inline std::size_t bytesFor(long long n) {
    return static_cast<std::size_t>((n + 7) / 8);
}

// Returns the mask of the bits below bit (0 to 7) of a byte.
inline unsigned lowMask(int bit) {
    return (1u << bit) - 1u;
}

// Returns the mask of the spare bits of the last byte of n bits (0 if n & 7 is 0).
inline unsigned spareMask(int n) {
    return (n & 7) ? (~lowMask(n & 7) & 0xFFu) : 0u;
}

inline unsigned char fillByte(bool value) {
    return value ? 0xFF : 0x00;
}

// Sets the bits of byte under mask to value.
inline void setUnder(unsigned char &byte, unsigned mask, bool value) {
    byte = static_cast<unsigned char>(value ? (byte | mask) : (byte & ~mask));
}

// Returns a fresh block for numBits >= 1 bits: both guards 1, data zero.
unsigned char *newBlock(int numBits) {
    const std::size_t bytes = bytesFor(numBits);
    unsigned char *block = new unsigned char[bytes + 2]();
    block[0] = 1;
    block[bytes + 1] = 1;
    return block;
}

// Sets the bits first to last (inclusive, first <= last) of data to value.
void fillRange(unsigned char *data, int first, int last, bool value) {
    const std::size_t firstByte = static_cast<std::size_t>(first / 8);
    const std::size_t lastByte = static_cast<std::size_t>(last / 8);
    const unsigned firstMask = ~lowMask(first & 7) & 0xFFu;
    const unsigned lastMask = (2u << (last & 7)) - 1u;
    if (firstByte == lastByte) {
        setUnder(data[firstByte], firstMask & lastMask, value);
        return;
    }
    setUnder(data[firstByte], firstMask, value);
    std::memset(data + firstByte + 1, fillByte(value), lastByte - firstByte - 1);
    setUnder(data[lastByte], lastMask, value);
}

// Sets all bits below numBits to value, spare bits untouched.
void fillBelow(unsigned char *data, int numBits, bool value) {
    if (numBits > 0)
        fillRange(data, 0, numBits - 1, value);
}

#define ZEF_INLINE_FIND inline __attribute__((always_inline))

// On x86 the counting loop is built twice, once with the population count
// instruction, and the loader chooses; elsewhere once. Not under the thread
// sanitizer, whose runtime is not set up when the loader runs the chooser.
#if (defined(__x86_64__) || defined(__i386__)) && !defined(__SANITIZE_THREAD__)
#define ZEF_POPCNT_CLONES __attribute__((target_clones("popcnt", "default")))
#else
#define ZEF_POPCNT_CLONES
#endif

// Word-wise access: eight data bytes at a time, bit i of the word being bit
// i & 7 of byte i / 8, whatever the byte order of the machine. Words are read
// only where all eight bytes lie inside the block.
using Word = unsigned long long;

inline Word loadWord(const unsigned char *p) {
    Word w;
    std::memcpy(&w, p, sizeof w);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    w = __builtin_bswap64(w);
#endif
    return w;
}

// Returns the number of set bits in the words 8-byte words at p.
ZEF_POPCNT_CLONES int countWords(const unsigned char *p, std::size_t words) {
    Word c0 = 0, c1 = 0, c2 = 0, c3 = 0;
    std::size_t i = 0;
    for (; i + 4 <= words; i += 4) {
        c0 += Word(__builtin_popcountll(loadWord(p + 8 * i)));
        c1 += Word(__builtin_popcountll(loadWord(p + 8 * i + 8)));
        c2 += Word(__builtin_popcountll(loadWord(p + 8 * i + 16)));
        c3 += Word(__builtin_popcountll(loadWord(p + 8 * i + 24)));
    }
    for (; i < words; ++i)
        c0 += Word(__builtin_popcountll(loadWord(p + 8 * i)));
    return static_cast<int>((c0 + c1) + (c2 + c3));
}

// Sets out[k++] to base + the index of each bit of w, lowest first.
inline int *emitBits(Word w, long long base, int *out) {
    while (w != 0) {
        *out++ = static_cast<int>(base + __builtin_ctzll(w));
        w &= w - 1;
    }
    return out;
}

// Sets indexes to the ascending indexes of the bits holding value below
// numBits; false if none. One walk over the words after the count.
bool listIndexes(const ZEFBoolArray &array, const unsigned char *data, int numBits, bool value,
                 ZEFArray<int> &indexes) {
    const int count = value ? array.getNumberOfBitSet() : array.getNumberOfBitCleared();
    if (count == 0) {
        indexes.clear();
        return false;
    }
    indexes.assign(count);
    int *out = indexes.begin();
    const Word flip = value ? 0 : ~Word(0);
    const std::size_t whole = static_cast<std::size_t>(numBits / 64);
    std::size_t i = 0;
    // Four words at a time: one test passes over 256 bits holding no index.
    for (; i + 4 <= whole; i += 4) {
        const Word w0 = loadWord(data + 8 * i) ^ flip;
        const Word w1 = loadWord(data + 8 * i + 8) ^ flip;
        const Word w2 = loadWord(data + 8 * i + 16) ^ flip;
        const Word w3 = loadWord(data + 8 * i + 24) ^ flip;
        if ((w0 | w1 | w2 | w3) == 0)
            continue;
        const long long base = 64 * static_cast<long long>(i);
        out = emitBits(w0, base, out);
        out = emitBits(w1, base + 64, out);
        out = emitBits(w2, base + 128, out);
        out = emitBits(w3, base + 192, out);
    }
    for (; i < whole; ++i)
        out = emitBits(loadWord(data + 8 * i) ^ flip, 64 * static_cast<long long>(i), out);
    for (long long bit = 64 * static_cast<long long>(whole); bit < numBits; bit += 8) {
        // The last bytes one at a time; bits at or above numBits are dropped.
        Word b = (data[bit / 8] ^ flip) & 0xFFu;
        if (numBits - bit < 8)
            b &= (Word(1) << (numBits - bit)) - 1;
        out = emitBits(b, bit, out);
    }
    return true;
}

} // namespace

// ---- storage

void ZEFBoolArray::setEmpty() {
    m_block = s_emptyBlock;
    m_begin = s_emptyBlock + 1;
    m_end = s_emptyBlock + 1;
    m_numBits = 0;
}

void ZEFBoolArray::adopt(unsigned char *block, int numBits) {
    m_block = block;
    m_begin = block + 1;
    m_end = m_begin + bytesFor(numBits);
}

void ZEFBoolArray::freeData() {
    if (owns())
        delete[] m_block;
    setEmpty();
}

void ZEFBoolArray::makeRoomDropping(int size) {
    if (size > capacityBits()) {
        unsigned char *block = newBlock(size); // before the old block goes
        freeData();
        adopt(block, size);
    }
}

void ZEFBoolArray::fillFrom(std::size_t firstByte, bool value) {
    for (unsigned char *p = m_begin + firstByte; p < m_end; ++p)
        *p = fillByte(value);
}

// ---- construction and copying

ZEFBoolArray::ZEFBoolArray() {
    setEmpty();
}

ZEFBoolArray::ZEFBoolArray(int size, bool value) {
    setEmpty();
    assign(size, value);
}

ZEFBoolArray::ZEFBoolArray(const ZEFBoolArray &source) {
    setEmpty();
    copy(source, false);
}

ZEFBoolArray::~ZEFBoolArray() {
    freeData();
}

const ZEFBoolArray ZEFBoolArray::operator=(const ZEFBoolArray &source) {
    copy(source, false);
    return *this;
}

void ZEFBoolArray::copy(const ZEFBoolArray &source, bool fill) {
    const int n = source.m_numBits;
    makeRoomDropping(n); // source is not this array when it reallocates
    m_numBits = n;
    const std::size_t used = bytesFor(n);
    if (used != 0 && m_begin != source.m_begin)
        std::memcpy(m_begin, source.m_begin, used);
    if (n & 7)
        setUnder(m_begin[used - 1], spareMask(n), fill);
    fillFrom(used, fill);
}

void ZEFBoolArray::swap(ZEFBoolArray &other) {
    std::swap(m_block, other.m_block);
    std::swap(m_begin, other.m_begin);
    std::swap(m_end, other.m_end);
    std::swap(m_numBits, other.m_numBits);
}

void ZEFBoolArray::clearArray() {
    freeData();
}

bool ZEFBoolArray::operator==(const ZEFBoolArray &other) const {
    if (m_numBits != other.m_numBits)
        return false;
    const std::size_t whole = static_cast<std::size_t>(m_numBits / 8);
    if (whole != 0 && std::memcmp(m_begin, other.m_begin, whole) != 0)
        return false;
    if ((m_numBits & 7) == 0)
        return true;
    return ((m_begin[whole] ^ other.m_begin[whole]) & lowMask(m_numBits & 7)) == 0;
}

// ---- size and whole-array assignment

void ZEFBoolArray::assign(int size, bool value) {
    if (size < 0)
        size = 0;
    makeRoomDropping(size);
    m_numBits = size;
    fillFrom(0, value);
}

void ZEFBoolArray::assign(int size, const char *bytes) {
    if (size < 0)
        size = 0;
    const std::size_t used = bytesFor(size);
    if (size > capacityBits()) {
        // Copied before the old block goes, so bytes may point into it.
        unsigned char *block = newBlock(size);
        std::memcpy(block + 1, bytes, used);
        freeData();
        adopt(block, size);
    } else if (used != 0) {
        std::memmove(m_begin, bytes, used);
    }
    m_numBits = size;
}

void ZEFBoolArray::assign(int count, const int *indexes, int size) {
    if (size == -1) {
        set(count, indexes);
        return;
    }
    assign(size, false);
    for (int i = 0; i < count; ++i)
        set(indexes[i]);
}

void ZEFBoolArray::resize(int size, bool value) {
    if (size < 0)
        size = 0;
    const int oldBits = m_numBits;
    const std::size_t oldBytes = bytesFor(oldBits);
    const std::size_t newBytes = bytesFor(size);
    const unsigned spare = spareMask(oldBits);
    if (size > capacityBits()) {
        unsigned char *block = newBlock(size);
        unsigned char *data = block + 1;
        if (oldBytes != 0)
            std::memcpy(data, m_begin, oldBytes);
        std::memset(data + oldBytes, fillByte(value), newBytes - oldBytes);
        if (spare != 0)
            setUnder(data[oldBytes - 1], spare, value);
        freeData();
        adopt(block, size);
        m_numBits = size;
        return;
    }
    if (!owns())
        return; // size is 0 here: nothing to do on the shared block
    fillFrom(std::min(oldBytes, newBytes), value);
    if (spare != 0)
        setUnder(m_begin[oldBytes - 1], spare, value);
    m_numBits = size;
}

// ---- bit access

bool ZEFBoolArray::get(int index) const {
    return static_cast<unsigned>(index) < static_cast<unsigned>(m_numBits) && getNoSizeTest(index);
}

bool ZEFBoolArray::getNoSizeTest(int index) const {
    return ((m_begin[index / 8] >> (index & 7)) & 1) != 0;
}

int ZEFBoolArray::getAsMask(int index) const {
    return m_begin[index / 8] & (1 << (index & 7));
}

void ZEFBoolArray::set(int index) {
    setUnder(m_begin[index / 8], 1u << (index & 7), true);
}

void ZEFBoolArray::clear(int index) {
    setUnder(m_begin[index / 8], 1u << (index & 7), false);
}

void ZEFBoolArray::toggle(int index) {
    m_begin[index / 8] = static_cast<unsigned char>(m_begin[index / 8] ^ (1u << (index & 7)));
}

void ZEFBoolArray::setAutoResize(int index) {
    if (index == INT_MAX)
        return;
    if (index >= m_numBits)
        resize(index + 1, false);
    set(index);
}

void ZEFBoolArray::clearAutoResize(int index) {
    if (index == INT_MAX)
        return;
    if (index >= m_numBits)
        resize(index + 1, false);
    clear(index);
}

void ZEFBoolArray::toggleAutoResize(int index) {
    if (index == INT_MAX)
        return;
    if (index >= m_numBits)
        resize(index + 1, false);
    toggle(index);
}

void ZEFBoolArray::changeRange(int index, int count, bool value) {
    if (index < 0)
        return;
    if (count < 1)
        count = 1;
    const long long end = static_cast<long long>(index) + count;
    if (end > INT_MAX)
        return;
    if (end > m_numBits)
        resize(static_cast<int>(end), false);
    fillRange(m_begin, index, static_cast<int>(end - 1), value);
}

void ZEFBoolArray::set(int index, int count) {
    changeRange(index, count, true);
}

void ZEFBoolArray::clear(int index, int count) {
    changeRange(index, count, false);
}

void ZEFBoolArray::changeList(int count, const int *indexes, bool value) {
    if (count < 1)
        return;
    const int largest = *std::max_element(indexes, indexes + count);
    if (largest == INT_MAX)
        return;
    if (largest >= m_numBits)
        resize(largest + 1, false);
    for (int i = 0; i < count; ++i) {
        if (indexes[i] >= 0)
            setUnder(m_begin[indexes[i] / 8], 1u << (indexes[i] & 7), value);
    }
}

void ZEFBoolArray::set(int count, const int *indexes) {
    changeList(count, indexes, true);
}

void ZEFBoolArray::clear(int count, const int *indexes) {
    changeList(count, indexes, false);
}

void ZEFBoolArray::set(const ZEFArray<int> &indexes) {
    if (indexes.size() > 0)
        set(indexes.size(), indexes.begin());
}

void ZEFBoolArray::setAll() {
    fillBelow(m_begin, m_numBits, true);
}

void ZEFBoolArray::clearAll() {
    fillBelow(m_begin, m_numBits, false);
}

void ZEFBoolArray::inverse() {
    const std::size_t whole = static_cast<std::size_t>(m_numBits / 8);
    for (std::size_t i = 0; i < whole; ++i)
        m_begin[i] = static_cast<unsigned char>(~m_begin[i]);
    if (m_numBits & 7)
        m_begin[whole] = static_cast<unsigned char>(m_begin[whole] ^ lowMask(m_numBits & 7));
}

void ZEFBoolArray::toggleAll() {
    if (m_numBits == 0)
        return;
    for (unsigned char *p = m_begin; p < m_end; ++p)
        *p = static_cast<unsigned char>(~*p);
}

// ---- algebra with a second array

template <class Op>
void ZEFBoolArray::combine(const ZEFBoolArray &other, Op op) {
    const int o = other.m_numBits;
    if (o == 0)
        return;
    const int n = m_numBits;
    const int smaller = std::min(n, o);
    const int larger = std::max(n, o);
    const unsigned char *longer = n >= o ? m_begin : other.m_begin;
    const unsigned char *shorter = n >= o ? other.m_begin : m_begin;
    // The old block stays until the end: it may be either operand.
    unsigned char *block = nullptr;
    unsigned char *out = m_begin;
    if (o > capacityBits()) {
        block = newBlock(o);
        out = block + 1;
    }
    const std::size_t whole = static_cast<std::size_t>(smaller / 8);
    for (std::size_t i = 0; i < whole; ++i)
        out[i] = static_cast<unsigned char>(op(m_begin[i], other.m_begin[i]));
    std::size_t next = whole;
    if (smaller & 7) {
        // The shorter operand's spare bits do not count.
        out[whole] = static_cast<unsigned char>(op(longer[whole], shorter[whole] & lowMask(smaller & 7)));
        next = whole + 1;
    }
    const std::size_t used = bytesFor(larger);
    if (out != longer && used > next)
        std::memcpy(out + next, longer + next, used - next);
    if (block != nullptr) {
        freeData();
        adopt(block, o);
    }
    m_numBits = larger;
}

void ZEFBoolArray::set(const ZEFBoolArray &other) {
    combine(other, [](unsigned a, unsigned b) { return a | b; });
}

void ZEFBoolArray::toggle(const ZEFBoolArray &other) {
    combine(other, [](unsigned a, unsigned b) { return a ^ b; });
}

void ZEFBoolArray::clear(const ZEFBoolArray &other) {
    const int smaller = std::min(m_numBits, other.m_numBits);
    const std::size_t whole = static_cast<std::size_t>(smaller / 8);
    for (std::size_t i = 0; i < whole; ++i)
        m_begin[i] = static_cast<unsigned char>(m_begin[i] & ~other.m_begin[i]);
    if (smaller & 7) {
        const unsigned drop = other.m_begin[whole] & lowMask(smaller & 7);
        m_begin[whole] = static_cast<unsigned char>(m_begin[whole] & ~drop);
    }
}

void ZEFBoolArray::inter(const ZEFBoolArray &other) {
    if (m_numBits == 0)
        return;
    if (other.m_numBits == 0) {
        m_numBits = 0;
        *m_begin = 1; // an owned block: this array was not empty
        return;
    }
    const int smaller = std::min(m_numBits, other.m_numBits);
    const std::size_t whole = static_cast<std::size_t>(smaller / 8);
    for (std::size_t i = 0; i < whole; ++i)
        m_begin[i] = static_cast<unsigned char>(m_begin[i] & other.m_begin[i]);
    if (smaller & 7)
        m_begin[whole] =
            static_cast<unsigned char>(m_begin[whole] & other.m_begin[whole] & lowMask(smaller & 7));
    m_numBits = smaller;
    unsigned char *after = m_begin + bytesFor(smaller);
    if (after <= m_end)
        *after = 1;
}

bool ZEFBoolArray::hasInter(const ZEFBoolArray &other) const {
    ZEFBoolArray common(*this);
    common.inter(other);
    return common.findFirst(true, 0) != -1;
}

bool ZEFBoolArray::bitTest(const ZEFBoolArray &other) const {
    const int n = other.findLast(true) + 1;
    if (n == 0)
        return true;
    if (n > m_numBits)
        return false;
    const std::size_t whole = static_cast<std::size_t>(n / 8);
    for (std::size_t i = 0; i < whole; ++i) {
        if ((other.m_begin[i] & ~m_begin[i]) != 0)
            return false;
    }
    if (n & 7)
        return (other.m_begin[whole] & ~m_begin[whole] & lowMask(n & 7)) == 0;
    return true;
}

// ---- counting, searching, listing

int ZEFBoolArray::getNumberOfBitSet() const {
    const std::size_t whole = static_cast<std::size_t>(m_numBits / 8);
    const std::size_t words = whole / 8;
    int count = words != 0 ? countWords(m_begin, words) : 0;
    for (std::size_t i = 8 * words; i < whole; ++i)
        count += s_numBitsAt1.entry[m_begin[i]];
    if (m_numBits & 7)
        count += s_numBitsAt1.entry[m_begin[whole] & lowMask(m_numBits & 7)];
    return count;
}

int ZEFBoolArray::getNumberOfBitCleared() const {
    return m_numBits - getNumberOfBitSet();
}

namespace {

// Returns the first bit at or above pos (0 <= pos < numBits) of the data at
// begin that holds value, or -1; end is the upper guard. Bits holding value are
// the set bits of data ^ flip. The first candidate at or above pos is the same
// whether the bytes are looked at one by one or eight at a time; eight at a
// time runs while a whole word lies before the guard, one by one after it,
// where the guard (1, neither 0x00 nor 0xFF) stops the loop.
// Returns -1: out of line, so that a found bit returns on a predicted branch
// instead of waiting for a select on the comparison.
__attribute__((cold, noinline)) int notFound() {
    return -1;
}

template <bool value>
ZEF_INLINE_FIND int findFrom(const unsigned char *begin, const unsigned char *end, int numBits,
                             unsigned pos) {
    // Bit positions stay below 2^31 + 72: 32-bit unsigned arithmetic suffices.
    const Word flip = value ? 0 : ~Word(0);
    const std::size_t at = pos >> 3;
    const unsigned char *p = begin + at;
    unsigned candidate = pos;
    Word w;
    if (static_cast<std::size_t>(end - begin) - at >= 8) {
        w = (loadWord(begin + at) ^ flip) >> (pos & 7);
        if (w == 0) {
            candidate = pos & ~7u;
            do {
                p += 8;
                candidate += 64;
                if (end - p < 8) {
                    // On with the bytes behind the last whole word, down to the guard.
                    while ((w = (*p ^ flip) & 0xFFu) == 0) {
                        ++p;
                        candidate += 8;
                    }
                    break;
                }
                w = loadWord(p) ^ flip;
            } while (w == 0);
        }
    } else {
        w = ((*p ^ flip) & 0xFFu) >> (pos & 7);
        if (w == 0) {
            candidate = pos & ~7u;
            do { // the upper guard stops the loop
                ++p;
                candidate += 8;
            } while ((w = (*p ^ flip) & 0xFFu) == 0);
        }
    }
    candidate += static_cast<unsigned>(__builtin_ctzll(w));
    // Also rejects a stop at the guard and a hit on a spare bit.
    if (candidate < static_cast<unsigned>(numBits))
        return static_cast<int>(candidate);
    return notFound();
}

} // namespace

int ZEFBoolArray::findFirst(bool value, int start) const {
    if (start >= m_numBits)
        return -1;
    unsigned pos = static_cast<unsigned>(start);
    if (__builtin_expect(start < 0, 0)) // a branch: the common case does not wait for a select
        pos = 0;
    return value ? findFrom<true>(m_begin, m_end, m_numBits, pos)
                 : findFrom<false>(m_begin, m_end, m_numBits, pos);
}

int ZEFBoolArray::findLast(bool value, int start) const {
    if (start < 0 || m_numBits == 0)
        return -1;
    if (start >= m_numBits)
        start = m_numBits - 1;
    // As findFirst, downwards: eight bytes at a time while a whole word lies
    // above the lower guard, then one by one to the guard.
    const Word flip = value ? 0 : ~Word(0);
    const unsigned char *p = m_begin + start / 8; // the byte holding start
    long long base = start & ~7;
    Word w = (*p ^ flip) & ((2u << (start & 7)) - 1u);
    if (w != 0)
        return static_cast<int>(base + (63 - __builtin_clzll(w)));
    while (p - m_begin >= 8) {
        p -= 8;
        base -= 64;
        w = loadWord(p) ^ flip;
        if (w != 0)
            return static_cast<int>(base + (63 - __builtin_clzll(w)));
    }
    do { // the lower guard stops the loop
        --p;
        base -= 8;
        w = (*p ^ flip) & 0xFFu;
    } while (w == 0);
    return base < 0 ? -1 : static_cast<int>(base + (63 - __builtin_clzll(w)));
}

bool ZEFBoolArray::getIndexesSet(ZEFArray<int> &indexes) const {
    return listIndexes(*this, m_begin, m_numBits, true, indexes);
}

bool ZEFBoolArray::getIndexesCleared(ZEFArray<int> &indexes) const {
    return listIndexes(*this, m_begin, m_numBits, false, indexes);
}

void ZEFBoolArray::insert(int index, bool value) {
    if (index < 0 || index >= m_numBits || m_numBits == INT_MAX)
        return;
    resize(m_numBits + 1, false);
    const std::size_t at = static_cast<std::size_t>(index / 8);
    const std::size_t last = bytesFor(m_numBits) - 1;
    unsigned carry = m_begin[at] >> 7;
    for (std::size_t i = at + 1; i <= last; ++i) {
        const unsigned b = m_begin[i];
        m_begin[i] = static_cast<unsigned char>((b << 1) | carry);
        carry = b >> 7;
    }
    const int bit = index & 7;
    const unsigned b = m_begin[at];
    const unsigned kept = b & lowMask(bit);
    const unsigned moved = (b << 1) & ~((2u << bit) - 1u) & 0xFFu;
    m_begin[at] = static_cast<unsigned char>(kept | moved | (value ? (1u << bit) : 0u));
}

void ZEFBoolArray::erase(int index) {
    if (index < 0 || index >= m_numBits)
        return;
    for (int i = index + 1; i < m_numBits; ++i) {
        if (getNoSizeTest(i))
            set(i - 1);
        else
            clear(i - 1);
    }
    --m_numBits;
}

// ---- byte functions

int ZEFBoolArray::getNumBitsAt1(unsigned char b) {
    return s_numBitsAt1.entry[b];
}

int ZEFBoolArray::getNumBitsAt0(unsigned char b) {
    return 8 - s_numBitsAt1.entry[b];
}

int ZEFBoolArray::getFirstBitAt0(unsigned char b) {
    return s_firstBitAt0.entry[b];
}

int ZEFBoolArray::getFirstBitAt1(unsigned char b) {
    return s_firstBitAt1.entry[b];
}

int ZEFBoolArray::getLastBitAt0(unsigned char b) {
    return s_lastBitAt0.entry[b];
}

int ZEFBoolArray::getLastBitAt1(unsigned char b) {
    return s_lastBitAt1.entry[b];
}
