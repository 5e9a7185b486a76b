/// \file
/// IDGenerator: hands out positive int identifiers, takes them back and hands the
/// freed ones out again, lowest first. It records the free identifiers only, as a
/// sorted list of disjoint intervals that it owns; touching intervals are not merged.
/// Identifiers run from 1 to 2147483646; -1 means none.
#pragma once

#include "zefcore/ZEFExport.h"

/// One interval of free identifiers: m_count identifiers from m_first on, and the
/// next interval. m_count may be 0 in the last interval only.
class IDList {
public:
    IDList() : m_first(0), m_count(0), m_next(nullptr) {}

    int m_first;    ///< the lowest free identifier of the interval
    int m_count;    ///< how many identifiers are free from m_first on
    IDList *m_next; ///< the next interval, or null
};

/// Hands out identifiers from 1 to 2147483646, the lowest free one first; -1 when none is left.
class ZEFCORE_API IDGenerator {
public:
    /// Sets every identifier free: one interval, 1 to 2147483646.
    IDGenerator();
    /// Sets an independent copy of other's intervals.
    IDGenerator(const IDGenerator &other);
    /// Releases every interval.
    ~IDGenerator();
    /// Sets this generator to a copy of other's intervals, node by node. Returns this.
    /// Aliasing: assigning a generator to itself does nothing.
    const IDGenerator &operator=(const IDGenerator &other);

    /// Sets every identifier free again; keeps the first node, releases the others.
    void clear();
    /// Returns the lowest free identifier and marks it used, or -1 if none is left.
    /// Constant time, no allocation.
    int generateID();
    /// Returns id and marks it used if it is free; otherwise the same as generateID().
    /// Degenerate: a negative id, or 0 while 0 is not free: the lowest free identifier.
    int generateID(int id);
    /// Gives id back. Returns true if that changed the free intervals. An id one below
    /// an interval joins it from below, one above the end joins from above (even if it
    /// is the first of the next, touching interval: free only identifiers you hold).
    /// So freeID(0) succeeds while 1 is free or used.
    /// Unchanged on failure: a negative id, an id already free, or an id more than one
    /// above every interval gives false.
    bool freeID(int id);

private:
    /// Releases every node; m_list becomes null.
    void releaseAll();

    IDList *m_list;
};
