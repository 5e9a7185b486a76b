#include "zefcore/geometry/BoundingBox.h"

BoundingBox::BoundingBox() : m_min(1.0f, 0.0f, 0.0f), m_max(0.0f, 0.0f, 0.0f) {}

void BoundingBox::clear() {
    m_min.x() = 1.0f;
    m_max.x() = 0.0f;
}

void BoundingBox::set(const Vector3f &point) {
    m_min = point;
    m_max = point;
}

void BoundingBox::set(const BoundingBox &box) {
    m_min = box.m_min;
    m_max = box.m_max;
}

void BoundingBox::add(const Vector3f &point) {
    if (isInitialized())
        addInitialized(point);
    else
        set(point);
}

void BoundingBox::add(const BoundingBox &box) {
    if (!box.isInitialized())
        return;
    if (isInitialized())
        addInitialized(box);
    else
        set(box);
}

void BoundingBox::addInitialized(const Vector3f &point) {
    for (int i = 0; i < 3; ++i) {
        const float c = point[i];
        if (m_min[i] > c)
            m_min[i] = c;
        else if (m_max[i] < c)
            m_max[i] = c;
    }
}

void BoundingBox::addInitialized(const BoundingBox &box) {
    for (int i = 0; i < 3; ++i) {
        if (box.m_min[i] < m_min[i])
            m_min[i] = box.m_min[i];
        if (box.m_max[i] > m_max[i])
            m_max[i] = box.m_max[i];
    }
}

bool BoundingBox::contains(const Vector3f &point) const {
    return m_min.x() <= point.x() && point.x() <= m_max.x() && m_min.y() <= point.y() &&
           point.y() <= m_max.y() && m_min.z() <= point.z() && point.z() <= m_max.z();
}
