#include "zefcore/base/ZEFKeyArray.h"

ZEFKeyArray::ZEFKeyArray() {}

ZEFKeyArray::ZEFKeyArray(const ZEFKeyArray &) {}

ZEFKeyArray::~ZEFKeyArray() {
    deletePtrArray(m_keys);
}

const ZEFKeyArray &ZEFKeyArray::operator=(const ZEFKeyArray &other) {
    m_keys = other.m_keys;
    m_keyIndexes = other.m_keyIndexes;
    return *this;
}

void ZEFKeyArray::swap(ZEFKeyArray &other) {
    m_keys.swap(other.m_keys);
    m_keyIndexes.swap(other.m_keyIndexes);
}

void ZEFKeyArray::clear() {
    m_keys.clear();
    m_keyIndexes.clear();
}

int ZEFKeyArray::getNumKeys() const {
    return m_keys.size();
}

ZEFKey *ZEFKeyArray::getKey(int index) const {
    if (index < 0 || index >= m_keys.size())
        return nullptr;
    return m_keys[static_cast<size_t>(index)];
}

ZEFKey *ZEFKeyArray::findKey(int key) const {
    return getKey(getKeyIndex(key));
}

int ZEFKeyArray::getKeyIndex(int key) const {
    if (key < 0 || key >= m_keyIndexes.size())
        return -1;
    return m_keyIndexes[static_cast<size_t>(key)];
}

bool ZEFKeyArray::setKeyIndex(int key, int index) {
    if (key < 0)
        return false;
    if (key >= m_keyIndexes.size())
        m_keyIndexes.resize(static_cast<size_t>(key) + 1, -1);
    m_keyIndexes[static_cast<size_t>(key)] = index;
    return true;
}

bool ZEFKeyArray::addKey(ZEFKey *key) {
    const int number = key ? key->getKey() : -1;
    const int index = getKeyIndex(number);
    if (index < 0) {
        // The pointer goes in first and is taken out again if the number cannot be
        // filed, so that neither a refusal nor a failed allocation leaves a trace.
        const int position = getNumKeys();
        m_keys.push_back(key);
        bool filed = false;
        try {
            filed = setKeyIndex(number, position);
        } catch (...) {
            m_keys.pop_back();
            throw;
        }
        if (!filed)
            m_keys.pop_back();
        return filed;
    }
    m_keys[static_cast<size_t>(index)] = key;
    return true;
}

bool ZEFKeyArray::removeKey(ZEFKey *key) {
    const int number = key ? key->getKey() : -1;
    const int index = getKeyIndex(number);
    if (index < 0)
        return false;
    m_keyIndexes[static_cast<size_t>(number)] = -1;
    m_keys.erase(index);
    for (int &entry : m_keyIndexes) {
        if (entry > index)
            --entry;
    }
    return true;
}
