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

} // namespace

BinarySort::BinarySort() : m_numColumns(0), m_columns(nullptr) {}

BinarySort::~BinarySort() { delete[] m_columns; }

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
    int count[257] = {};
    for (int r = 0; r < numRows; ++r)
        ++count[byteAt(*column, r) + 1];
    // count[v] becomes the number of rows whose byte is below v.
    for (int v = 2; v <= 256; ++v)
        count[v] += count[v - 1];
    for (int i = 0; i < numRows; ++i) {
        const int row = source[i];
        target[count[byteAt(*column, row)]++] = row;
    }
}

void BinarySort::sort(int numRows, int *order) {
    if (numRows <= 0)
        return;
    std::unique_ptr<int[]> temporary(new int[static_cast<std::size_t>(numRows)]);
    // The last pass must land in order: an even number of passes starts there.
    int *current = (m_numColumns % 2 == 0) ? order : temporary.get();
    int *other = (current == order) ? temporary.get() : order;
    fillArithmeticalSuite(current, current + numRows, 0, 1);
    for (unsigned int c = m_numColumns; c-- > 0;) {
        radixSort(&m_columns[c], current, other, numRows);
        int *swap = current;
        current = other;
        other = swap;
    }
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
