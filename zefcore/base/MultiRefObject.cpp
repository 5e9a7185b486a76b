#include "zefcore/base/MultiRefObject.h"

// The count wraps instead of overflowing: every change goes through unsigned arithmetic.
namespace {
int addToCount(int count, int delta) {
    return static_cast<int>(static_cast<unsigned>(count) + static_cast<unsigned>(delta));
}
} // namespace

MultiRefObject::MultiRefObject() : m_refCount(0) {}

MultiRefObject::MultiRefObject(const MultiRefObject &other) : m_refCount(other.m_refCount) {}

MultiRefObject &MultiRefObject::operator=(const MultiRefObject &other) {
    m_refCount = other.m_refCount;
    return *this;
}

MultiRefObject::~MultiRefObject() {}

void MultiRefObject::ref() const {
    m_refCount = addToCount(m_refCount, 1);
}

void MultiRefObject::unref() const {
    m_refCount = addToCount(m_refCount, -1);
    // Exactly 0: a count driven below 0 never deletes.
    if (m_refCount == 0)
        delete this;
}

void MultiRefObject::unrefNoDelete() const {
    m_refCount = addToCount(m_refCount, -1);
}

void MultiRefObject::deleteIfNotRef() const {
    if (m_refCount == 0)
        delete this;
}

MultiRefObject::AutoRefUnref::AutoRefUnref(const MultiRefObject *object, e_deleteMode mode)
    : m_object(object), m_mode(mode) {
    if (!object)
        return;
    if (mode == e_autoDelete)
        m_mode = object->m_refCount != 0 ? e_delete : e_noDelete;
    object->ref();
}

MultiRefObject::AutoRefUnref::~AutoRefUnref() {
    if (!m_object)
        return;
    if (m_mode == e_noDelete)
        m_object->unrefNoDelete();
    else if (m_mode == e_delete)
        m_object->unref();
}
