#include "zefcore/base/ZEFKey.h"

ZEFKey::ZEFKey() : m_key(0) {}

ZEFKey::ZEFKey(int key) : m_key(key) {}

ZEFKey::ZEFKey(const ZEFKey &other) : m_key(other.m_key) {}

ZEFKey::~ZEFKey() {}

int ZEFKey::getKey() const {
    return m_key;
}

void ZEFKey::setKey(int key) {
    m_key = key;
}
