#include "zefcore/base/AutoRefUnref.h"

AutoRefUnref::AutoRefUnref(const MultiRefObject *object, e_deleteMode mode) : m_object(object), m_mode(mode) {
    if (!object)
        return;
    // The count is read before this holder's own reference is added.
    if (mode == e_autoDelete)
        m_mode = object->m_refCount != 0 ? e_delete : e_noDelete;
    object->ref();
}

AutoRefUnref::~AutoRefUnref() {
    if (!m_object)
        return;
    if (m_mode == e_noDelete)
        m_object->unrefNoDelete();
    else if (m_mode == e_delete)
        m_object->unref();
}
