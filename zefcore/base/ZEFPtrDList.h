/// \file
/// ZEFPtrDList: a doubly linked list of untyped pointers with a built-in cursor, a
/// current element and its position from 0. The list never follows or frees the
/// pointers it stores. Most operations work at the cursor or move it; even a read
/// by position moves it, so every use of a list needs exclusive access.
/// Positions are ints; on an empty list the cursor is null at position -1.
#pragma once

#include "zefcore/ZEFExport.h"

/// One link of a ZEFPtrDList. The list owns its links.
struct s_ZEFPtrDListElement {
    void *m_data;                 ///< the stored pointer, not owned
    s_ZEFPtrDListElement *m_prev; ///< null at the first element
    s_ZEFPtrDListElement *m_next; ///< null at the last element
};

/// A doubly linked list of untyped pointers with a built-in cursor.
class ZEFCORE_API ZEFPtrDList {
public:
    /// Sets an empty list.
    ZEFPtrDList();
    /// Sets a list of other's pointers, in order, with the cursor on the first.
    ZEFPtrDList(const ZEFPtrDList &other);
    /// Releases every element; the stored pointers are not touched.
    virtual ~ZEFPtrDList();
    /// Sets this list to other's pointers, in order, with the cursor on the first;
    /// other's cursor is not copied. Returns this.
    /// Aliasing: assigning a list to itself does nothing.
    ZEFPtrDList &operator=(const ZEFPtrDList &other);

    /// Adds data as the first element. Returns true. The cursor stays on its
    /// element, one position higher; on an empty list it goes to the new element.
    bool prepend(void *data);
    /// Adds data as the last element. Returns true. The cursor is unchanged; on an
    /// empty list it goes to the new element.
    bool append(void *data);
    /// Adds data at position: 0 as prepend, size() as append, otherwise the cursor
    /// goes to the new element. Returns true.
    /// Unchanged on failure: a position outside [0, size()], or an empty list, gives false.
    bool insert(void *data, int position);

    ///@{
    /// Returns the first, the last, the current pointer; null on an empty list.
    /// The cursor is unchanged.
    void *getFirstData();
    void *getLastData();
    void *getCurrentData();
    ///@}
    /// Returns the pointer at position and moves the cursor there.
    /// Unchanged on failure: a position outside [0, size()) gives null.
    void *getData(int position);
    /// Returns the element at position and moves the cursor there.
    /// Unchanged on failure: a position outside [0, size()) gives null.
    s_ZEFPtrDListElement *getElement(int position);

    /// Returns the number of elements.
    int size();
    /// Returns true if the list has no element.
    bool isEmpty();
    /// Returns the cursor's position, -1 on an empty list.
    int getCurrentPosition();

    /// Sets the cursor on the first element. Returns false on an empty list.
    bool goToStart();
    /// Sets the cursor on the last element. Returns false on an empty list.
    bool goToEnd();
    /// Moves the cursor one forward. Unchanged on failure: at the last element or on
    /// an empty list, false.
    bool goToNext();
    /// Moves the cursor one back. Unchanged on failure: at the first element or on
    /// an empty list, false.
    bool goToPrev();
    /// Sets the cursor on the first element from the start that holds data.
    /// Unchanged on failure: null data, an empty list, or data not stored gives false.
    bool goToData(void *data);
    /// Sets the cursor on position, walking forward from the cursor, or from the
    /// start if the cursor stands beyond position.
    /// Unchanged on failure: a position outside [0, size()) gives false.
    bool goToPosition(int position);

    /// Reverses the order by relinking; the elements, and pointers to them, stay
    /// valid. Sets the cursor on the new first element. Returns true.
    /// Unchanged on failure: fewer than 2 elements gives false.
    bool reverseList();

    /// Removes the first element. The cursor stays on its element, one position
    /// lower, or goes to the new first if it stood on the removed one.
    /// Unchanged on failure: an empty list gives false.
    bool removeFirstData();
    /// Removes the last element. The cursor always ends on the new last element,
    /// reached by a walk forward (from the start if it stood on the last).
    /// Unchanged on failure: an empty list gives false.
    bool removeLastData();
    /// Removes the element at position: 0 as removeFirstData, size() - 1 as
    /// removeLastData; otherwise the cursor ends on the element before the gap.
    /// Unchanged on failure: a position outside [0, size()) gives false.
    bool removeData(int position);
    /// Removes one element that holds data: the first element if it holds it, else
    /// the last if it holds it, else the lowest position; the cursor then ends on
    /// the element before the gap. Returns false for null data or an empty list, and
    /// when data is not stored, with the cursor then on the last element.
    bool removeData(void *data);
    /// Removes every element; the stored pointers are not touched. flag has no effect.
    /// Returns false on an empty list.
    bool removeAll(bool flag);

protected:
    /// Empties this list, then appends other's pointers in order; the cursor ends on
    /// the first element. other is unchanged. Unchanged on failure: the new elements
    /// are allocated before the old ones go.
    void copy(const ZEFPtrDList &other);
    /// Sets the empty state without releasing any element.
    void init();

private:
    s_ZEFPtrDListElement *m_first;
    s_ZEFPtrDListElement *m_last;
    s_ZEFPtrDListElement *m_current;
    int m_currentPosition;
    int m_numElements;
};
