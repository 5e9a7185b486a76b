/// \file
/// BinarySort: orders the rows of a table of raw bytes and finds the duplicate
/// rows. A column is one byte per row, read from the caller's memory at a fixed
/// stride; the first column added is the most significant. Bytes compare as
/// unsigned values, so multi-byte values order by their stored bytes, lowest
/// address first. The caller keeps the row data alive and unchanged.
#pragma once

#include "zefcore/ZEFExport.h"

/// Radix sort of rows of raw bytes, one byte column at a time, and the count of distinct rows.
class ZEFCORE_API BinarySort {
public:
    /// One byte column: the byte of row r is data[r * stride]. data is not owned.
    struct Column {
        const unsigned char *data; ///< the byte of row 0; not owned
        unsigned int stride;       ///< bytes from one row to the next
    };

    /// Sets a table with no columns.
    BinarySort();
    /// Releases the column array; the row data is not touched.
    ~BinarySort();
    BinarySort(const BinarySort &) = delete;
    BinarySort &operator=(const BinarySort &) = delete;

    /// Adds size columns for an array of records of size bytes: column j reads
    /// data + j at stride size, for j from 0 to size - 1 in that order.
    void addItem(const unsigned char *data, unsigned int size);
    /// Adds one column of single bytes: data at stride 1.
    void addColumn(const unsigned char *data);

    /// Sets order (numRows ints of the caller's) to the row numbers 0 to
    /// numRows - 1, ascending in the column bytes, first column first; rows equal
    /// in all columns stay in ascending row number. With no columns: 0, 1, 2, ...
    /// Degenerate: numRows 0 or below writes nothing.
    void sort(int numRows, int *order);
    /// Sets flags ((numRows + 7) / 8 bytes, bit i in byte i / 8 under mask
    /// 1 << (i & 7)) so that bit i marks position i of order starting a new run of
    /// equal rows (bit 0 always), all other bits clear; returns the number of runs.
    /// Only adjacent entries of order are compared.
    /// Degenerate: numRows 0 or below returns 0, flags untouched.
    int getUniqueRows(int numRows, const int *order, unsigned char *flags) const;

private:
    /// One stable counting sort pass of source into target on one column.
    void radixSort(Column *column, int *source, int *target, int numRows);
    void append(const Column *columns, unsigned int count);

    unsigned int m_numColumns;
    Column *m_columns;
};
