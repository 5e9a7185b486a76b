#include "zefcore/base/IDGenerator.h"

namespace {
// The initial interval: identifiers 1 to 2147483646.
constexpr int kFirstID = 1;
constexpr int kIDCount = 0x7FFFFFFE;

// Interval arithmetic wraps instead of overflowing: freeID(2147483647) can push an
// interval's end past the int range.
int wrapAdd(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}
int wrapSub(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}
int endOf(const IDList *node) {
    return wrapAdd(node->m_first, node->m_count);
}

// Returns a new chain holding a copy of the intervals from source on, or null for
// an empty source. Frees what it built if an allocation throws.
IDList *copyChain(const IDList *source) {
    IDList *head = nullptr;
    IDList **link = &head;
    try {
        for (; source; source = source->m_next) {
            IDList *node = new IDList;
            node->m_first = source->m_first;
            node->m_count = source->m_count;
            *link = node;
            link = &node->m_next;
        }
    } catch (...) {
        while (head) {
            IDList *next = head->m_next;
            delete head;
            head = next;
        }
        throw;
    }
    return head;
}
} // namespace

IDGenerator::IDGenerator() : m_list(nullptr) {
    clear();
}

IDGenerator::IDGenerator(const IDGenerator &other) : m_list(copyChain(other.m_list)) {}

IDGenerator::~IDGenerator() {
    releaseAll();
}

const IDGenerator &IDGenerator::operator=(const IDGenerator &other) {
    if (this == &other)
        return *this;
    // Built before the old nodes go, so a failed allocation leaves this unchanged.
    IDList *copy = copyChain(other.m_list);
    releaseAll();
    m_list = copy;
    return *this;
}

void IDGenerator::releaseAll() {
    while (m_list) {
        IDList *next = m_list->m_next;
        delete m_list;
        m_list = next;
    }
}

void IDGenerator::clear() {
    if (!m_list) {
        m_list = new IDList;
    } else {
        IDList *rest = m_list->m_next;
        m_list->m_next = nullptr;
        while (rest) {
            IDList *next = rest->m_next;
            delete rest;
            rest = next;
        }
    }
    m_list->m_first = kFirstID;
    m_list->m_count = kIDCount;
}

int IDGenerator::generateID() {
    if (!m_list)
        clear();
    IDList *head = m_list;
    if (head->m_count == 0)
        return -1;
    const int id = head->m_first;
    head->m_first = wrapAdd(head->m_first, 1);
    head->m_count = wrapAdd(head->m_count, -1);
    // The last node stays even when empty, so that freeID always has a node to work on.
    if (head->m_count == 0 && head->m_next) {
        m_list = head->m_next;
        delete head;
    }
    return id;
}

int IDGenerator::generateID(int id) {
    IDList **link = &m_list;
    for (IDList *node = m_list; node; link = &node->m_next, node = node->m_next) {
        if (id < node->m_first)
            break;
        if (id >= endOf(node))
            continue;
        if (id == node->m_first) {
            node->m_first = wrapAdd(node->m_first, 1);
            node->m_count = wrapAdd(node->m_count, -1);
            if (node->m_count == 0 && !(node == m_list && !node->m_next)) {
                *link = node->m_next;
                delete node;
            }
        } else if (id == wrapAdd(endOf(node), -1)) {
            node->m_count = wrapAdd(node->m_count, -1);
        } else {
            IDList *above = new IDList;
            above->m_first = wrapAdd(id, 1);
            above->m_count = wrapSub(endOf(node), above->m_first);
            above->m_next = node->m_next;
            node->m_count = wrapSub(id, node->m_first);
            node->m_next = above;
        }
        return id;
    }
    return generateID();
}

bool IDGenerator::freeID(int id) {
    if (id < 0 || !m_list)
        return false;
    IDList **link = &m_list;
    IDList *node = m_list;
    while (node && id > endOf(node)) {
        link = &node->m_next;
        node = node->m_next;
    }
    if (!node)
        return false;
    if (id == endOf(node)) {
        // The next interval is not looked at, even if it now touches this one.
        node->m_count = wrapAdd(node->m_count, 1);
        return true;
    }
    if (id == wrapAdd(node->m_first, -1)) {
        node->m_first = id;
        node->m_count = wrapAdd(node->m_count, 1);
        return true;
    }
    if (id >= node->m_first)
        return false;
    IDList *single = new IDList;
    single->m_first = id;
    single->m_count = 1;
    single->m_next = node;
    *link = single;
    return true;
}
