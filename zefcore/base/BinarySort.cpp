#include "zefcore/base/BinarySort.h"

#include "zefcore/base/ZEFArray.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>

namespace {

inline unsigned char byteAt(const BinarySort::Column &column, int row) {
    return column.data[static_cast<std::size_t>(row) * column.stride];
}

// Columns whose byte counts are taken together in one walk over the rows.
constexpr unsigned kCountGroup = 16;
// Rows ahead whose bytes a walk asks the cache for while it handles the current one.
constexpr int kPrefetchAhead = 16;
// Parts of at most this many rows are finished by insertion.
constexpr int kInsertionRows = 32;
// Splits nested deeper than this finish their part column by column instead.
constexpr int kMaxSplitDepth = 8;

using Column = BinarySort::Column;

inline void prefetchRow(const Column &column, int row) {
    __builtin_prefetch(column.data + static_cast<std::size_t>(row) * column.stride);
}

// Sets count[c][v + 1] (count[c][0] is 0) to the number of rows of rows[0 .. n)
// whose byte in column first + c is v, for c < columns: one walk for all.
void countBytes(const Column *first, unsigned columns, const int *rows, int n, int (*count)[257]) {
    for (unsigned c = 0; c < columns; ++c)
        for (int v = 0; v < 257; ++v)
            count[c][v] = 0;
    for (int i = 0; i < n; ++i) {
        if (i + kPrefetchAhead < n)
            prefetchRow(first[0], rows[i + kPrefetchAhead]);
        for (unsigned c = 0; c < columns; ++c)
            ++count[c][byteAt(first[c], rows[i]) + 1];
    }
}

// Returns true if one byte value holds every row: a stable pass is then the identity.
bool singleValue(const int *count, int n) {
    for (int v = 1; v <= 256; ++v)
        if (count[v] != 0)
            return count[v] == n;
    return false;
}

// Turns count as countBytes leaves it into the first place of each byte value:
// count[v] becomes the number of rows whose byte is below v.
void runningSum(int *count) {
    for (int v = 2; v <= 256; ++v)
        count[v] += count[v - 1];
}

// Sets target to the rows source[0 .. n) stably ordered on the byte of column,
// given count as runningSum leaves it. Afterwards count[v] is the end of the
// rows with byte v.
void placeRows(const Column &column, const int *source, int *target, int n, int *count) {
    for (int i = 0; i < n; ++i) {
        if (i + kPrefetchAhead < n)
            prefetchRow(column, source[i + kPrefetchAhead]);
        const int row = source[i];
        target[count[byteAt(column, row)]++] = row;
    }
}

// Returns true if row a comes before row b on columns [0, end): the first
// differing byte decides; equal rows do not come before one another.
bool before(const Column *columns, unsigned end, int a, int b) {
    for (unsigned c = 0; c < end; ++c) {
        const unsigned char x = byteAt(columns[c], a);
        const unsigned char y = byteAt(columns[c], b);
        if (x != y)
            return x < y;
    }
    return false;
}

// Sorts rows[0 .. n) stably on columns [0, end) by insertion.
void insertRows(const Column *columns, unsigned end, int *rows, int n) {
    for (int i = 1; i < n; ++i) {
        const int row = rows[i];
        int j = i;
        for (; j > 0 && before(columns, end, row, rows[j - 1]); --j)
            rows[j] = rows[j - 1];
        rows[j] = row;
    }
}

// Sorts the rows x[0 .. n) stably on columns [0, end), least significant first,
// skipping columns that hold one value; y is spare room for n rows. The result
// lands in x (wantX) or y.
void sortColumns(const Column *columns, unsigned end, int *x, int *y, int n, bool wantX) {
    int count[kCountGroup][257];
    int *current = x;
    int *other = y;
    while (end > 0) {
        const unsigned group = end < kCountGroup ? end : kCountGroup;
        countBytes(columns + (end - group), group, current, n, count);
        for (unsigned c = group; c-- > 0;) {
            if (singleValue(count[c], n))
                continue;
            runningSum(count[c]);
            placeRows(columns[end - group + c], current, other, n, count[c]);
            int *swap = current;
            current = other;
            other = swap;
        }
        end -= group;
    }
    int *wanted = wantX ? x : y;
    if (current != wanted)
        std::memcpy(wanted, current, static_cast<std::size_t>(n) * sizeof(int));
}

// Sorts the rows x[0 .. n) stably on columns [0, end); y is spare room for n
// rows; the result lands in x (wantX) or y. Most significant column first: a
// stable pass on it, then each run of equal bytes sorted on the columns after
// it, which gives the order of passes from the least significant column. The
// work on a run stays in cache.
void splitSort(const Column *columns, unsigned end, int *x, int *y, int n, bool wantX, int depth) {
    unsigned col = 0;
    for (;;) {
        if (col == end)
            break; // equal on every column: the rows keep their order
        if (n <= kInsertionRows) {
            insertRows(columns + col, end - col, x, n);
            break;
        }
        if (depth >= kMaxSplitDepth) {
            sortColumns(columns + col, end - col, x, y, n, wantX);
            return;
        }
        int count[1][257];
        countBytes(columns + col, 1, x, n, count);
        if (singleValue(count[0], n)) {
            ++col;
            continue;
        }
        runningSum(count[0]);
        placeRows(columns[col], x, y, n, count[0]);
        int lo = 0;
        for (int v = 0; v < 256; ++v) {
            const int hi = count[0][v];
            if (hi > lo)
                splitSort(columns + col + 1, end - col - 1, y + lo, x + lo, hi - lo, !wantX, depth + 1);
            lo = hi;
        }
        return;
    }
    if (!wantX)
        std::memcpy(y, x, static_cast<std::size_t>(n) * sizeof(int));
}

} // namespace

BinarySort::BinarySort() : m_numColumns(0), m_columns(nullptr) {}

BinarySort::~BinarySort() {
    delete[] m_columns;
}

void BinarySort::append(const Column *columns, unsigned int count) {
    if (count == 0 || count > UINT_MAX - m_numColumns)
        return;
    // Exactly the new size: tables have few columns.
    Column *grown = new Column[m_numColumns + count];
    for (unsigned int j = 0; j < m_numColumns; ++j)
        grown[j] = m_columns[j];
    for (unsigned int j = 0; j < count; ++j)
        grown[m_numColumns + j] = columns[j];
    delete[] m_columns;
    m_columns = grown;
    m_numColumns += count;
}

void BinarySort::addItem(const unsigned char *data, unsigned int size) {
    if (size == 0)
        return;
    std::unique_ptr<Column[]> added(new Column[size]);
    // A null record array (an empty table) gives null columns: no offset is applied
    // to a null pointer.
    for (unsigned int j = 0; j < size; ++j)
        added[j] = Column{data ? data + j : nullptr, size};
    append(added.get(), size);
}

void BinarySort::addColumn(const unsigned char *data) {
    const Column column{data, 1};
    append(&column, 1);
}

void BinarySort::radixSort(Column *column, int *source, int *target, int numRows) {
    int count[1][257];
    countBytes(column, 1, source, numRows, count);
    runningSum(count[0]);
    placeRows(*column, source, target, numRows, count[0]);
}

void BinarySort::sort(int numRows, int *order) {
    if (numRows <= 0)
        return;
    std::unique_ptr<int[]> temporary(new int[static_cast<std::size_t>(numRows)]);
    fillArithmeticalSuite(order, order + numRows, 0, 1);
    splitSort(m_columns, m_numColumns, order, temporary.get(), numRows, true, 0);
}

int BinarySort::getUniqueRows(int numRows, const int *order, unsigned char *flags) const {
    if (numRows <= 0)
        return 0;
    const std::size_t bytes = (static_cast<std::size_t>(numRows) + 7) / 8;
    flags[0] = 1;
    std::memset(flags + 1, 0, bytes - 1);
    int distinct = 1;
    for (int i = 1; i < numRows; ++i) {
        for (unsigned int c = 0; c < m_numColumns; ++c) {
            if (byteAt(m_columns[c], order[i - 1]) != byteAt(m_columns[c], order[i])) {
                flags[i / 8] = static_cast<unsigned char>(flags[i / 8] | (1u << (i & 7)));
                ++distinct;
                break;
            }
        }
    }
    return distinct;
}
