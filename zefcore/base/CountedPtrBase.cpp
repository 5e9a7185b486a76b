#include "zefcore/base/CountedPtrBase.h"

void CountedPtrBase::ref(const MultiRefObject *object) {
    if (object)
        object->ref();
}

void CountedPtrBase::unref(const MultiRefObject *object) {
    if (object)
        object->unref();
}
