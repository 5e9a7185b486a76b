#include "zefcore/base/ZEFPtrDList.h"

namespace {
s_ZEFPtrDListElement *newElement(void *data) {
    s_ZEFPtrDListElement *element = new s_ZEFPtrDListElement;
    element->m_data = data;
    element->m_prev = nullptr;
    element->m_next = nullptr;
    return element;
}

void releaseChain(s_ZEFPtrDListElement *element) {
    while (element) {
        s_ZEFPtrDListElement *next = element->m_next;
        delete element;
        element = next;
    }
}
} // namespace

ZEFPtrDList::ZEFPtrDList() {
    init();
}

ZEFPtrDList::ZEFPtrDList(const ZEFPtrDList &other) {
    init();
    copy(other);
}

ZEFPtrDList::~ZEFPtrDList() {
    removeAll(false);
}

ZEFPtrDList &ZEFPtrDList::operator=(const ZEFPtrDList &other) {
    if (this != &other)
        copy(other);
    return *this;
}

void ZEFPtrDList::init() {
    m_first = nullptr;
    m_last = nullptr;
    m_current = nullptr;
    m_currentPosition = -1;
    m_numElements = 0;
}

void ZEFPtrDList::copy(const ZEFPtrDList &other) {
    // The whole chain is built before this list changes.
    s_ZEFPtrDListElement *first = nullptr;
    s_ZEFPtrDListElement *last = nullptr;
    try {
        for (const s_ZEFPtrDListElement *source = other.m_first; source; source = source->m_next) {
            s_ZEFPtrDListElement *element = newElement(source->m_data);
            element->m_prev = last;
            if (last)
                last->m_next = element;
            else
                first = element;
            last = element;
        }
    } catch (...) {
        releaseChain(first);
        throw;
    }
    const int count = other.m_numElements;
    removeAll(false);
    if (!first)
        return;
    m_first = first;
    m_last = last;
    m_current = first;
    m_currentPosition = 0;
    m_numElements = count;
}

bool ZEFPtrDList::prepend(void *data) {
    s_ZEFPtrDListElement *element = newElement(data);
    if (!m_first) {
        m_first = m_last = m_current = element;
        m_currentPosition = 0;
    } else {
        element->m_next = m_first;
        m_first->m_prev = element;
        m_first = element;
        ++m_currentPosition;
    }
    ++m_numElements;
    return true;
}

bool ZEFPtrDList::append(void *data) {
    s_ZEFPtrDListElement *element = newElement(data);
    if (!m_last) {
        m_first = m_last = m_current = element;
        m_currentPosition = 0;
    } else {
        element->m_prev = m_last;
        m_last->m_next = element;
        m_last = element;
    }
    ++m_numElements;
    return true;
}

bool ZEFPtrDList::insert(void *data, int position) {
    // An empty list takes its first element only through prepend or append.
    if (position < 0 || position > m_numElements || m_numElements == 0)
        return false;
    if (position == 0)
        return prepend(data);
    if (position == m_numElements)
        return append(data);
    s_ZEFPtrDListElement *element = newElement(data);
    goToPosition(position - 1);
    element->m_prev = m_current;
    element->m_next = m_current->m_next;
    m_current->m_next->m_prev = element;
    m_current->m_next = element;
    m_current = element;
    m_currentPosition = position;
    ++m_numElements;
    return true;
}

void *ZEFPtrDList::getFirstData() {
    return m_first ? m_first->m_data : nullptr;
}

void *ZEFPtrDList::getLastData() {
    return m_last ? m_last->m_data : nullptr;
}

void *ZEFPtrDList::getCurrentData() {
    return m_current ? m_current->m_data : nullptr;
}

void *ZEFPtrDList::getData(int position) {
    s_ZEFPtrDListElement *element = getElement(position);
    return element ? element->m_data : nullptr;
}

s_ZEFPtrDListElement *ZEFPtrDList::getElement(int position) {
    return goToPosition(position) ? m_current : nullptr;
}

int ZEFPtrDList::size() {
    return m_numElements;
}

bool ZEFPtrDList::isEmpty() {
    return m_numElements == 0;
}

int ZEFPtrDList::getCurrentPosition() {
    return m_currentPosition;
}

bool ZEFPtrDList::goToStart() {
    if (!m_first)
        return false;
    m_current = m_first;
    m_currentPosition = 0;
    return true;
}

bool ZEFPtrDList::goToEnd() {
    if (!m_last)
        return false;
    m_current = m_last;
    m_currentPosition = m_numElements - 1;
    return true;
}

bool ZEFPtrDList::goToNext() {
    if (!m_current || !m_current->m_next)
        return false;
    m_current = m_current->m_next;
    ++m_currentPosition;
    return true;
}

bool ZEFPtrDList::goToPrev() {
    if (!m_current || !m_current->m_prev)
        return false;
    m_current = m_current->m_prev;
    --m_currentPosition;
    return true;
}

bool ZEFPtrDList::goToData(void *data) {
    if (!data)
        return false;
    int position = 0;
    for (s_ZEFPtrDListElement *element = m_first; element; element = element->m_next, ++position) {
        if (element->m_data == data) {
            m_current = element;
            m_currentPosition = position;
            return true;
        }
    }
    return false;
}

bool ZEFPtrDList::goToPosition(int position) {
    if (position < 0 || position >= m_numElements)
        return false;
    // Never walks backward: a cursor beyond position restarts from the first element.
    if (m_currentPosition > position)
        goToStart();
    while (m_currentPosition < position)
        goToNext();
    return true;
}

bool ZEFPtrDList::reverseList() {
    if (m_numElements < 2)
        return false;
    s_ZEFPtrDListElement *element = m_first;
    while (element) {
        s_ZEFPtrDListElement *next = element->m_next;
        element->m_next = element->m_prev;
        element->m_prev = next;
        element = next;
    }
    s_ZEFPtrDListElement *oldFirst = m_first;
    m_first = m_last;
    m_last = oldFirst;
    m_current = m_first;
    m_currentPosition = 0;
    return true;
}

bool ZEFPtrDList::removeFirstData() {
    if (!m_first)
        return false;
    s_ZEFPtrDListElement *removed = m_first;
    if (m_numElements == 1) {
        init();
    } else {
        m_first = removed->m_next;
        m_first->m_prev = nullptr;
        if (m_current == removed) {
            m_current = m_first;
            m_currentPosition = 0;
        } else {
            --m_currentPosition;
        }
        --m_numElements;
    }
    delete removed;
    return true;
}

bool ZEFPtrDList::removeLastData() {
    if (!m_last)
        return false;
    s_ZEFPtrDListElement *removed = m_last;
    if (m_numElements == 1) {
        init();
    } else {
        goToPosition(m_numElements - 2);
        m_last = m_current;
        m_last->m_next = nullptr;
        --m_numElements;
    }
    delete removed;
    return true;
}

bool ZEFPtrDList::removeData(int position) {
    if (position == 0)
        return removeFirstData();
    if (position == m_numElements - 1)
        return removeLastData();
    if (position < 0 || position >= m_numElements)
        return false;
    goToPosition(position - 1);
    s_ZEFPtrDListElement *removed = m_current->m_next;
    m_current->m_next = removed->m_next;
    removed->m_next->m_prev = m_current;
    --m_numElements;
    delete removed;
    return true;
}

bool ZEFPtrDList::removeData(void *data) {
    if (!data || !m_first)
        return false;
    if (m_first->m_data == data)
        return removeFirstData();
    if (m_last->m_data == data)
        return removeLastData();
    goToStart();
    while (m_current != m_last && m_current->m_next->m_data != data)
        goToNext();
    if (m_current == m_last)
        return false;
    // The element behind the cursor is not the last: the last does not hold data.
    s_ZEFPtrDListElement *removed = m_current->m_next;
    m_current->m_next = removed->m_next;
    removed->m_next->m_prev = m_current;
    --m_numElements;
    delete removed;
    return true;
}

bool ZEFPtrDList::removeAll(bool) {
    if (!m_first)
        return false;
    releaseChain(m_first);
    init();
    return true;
}
