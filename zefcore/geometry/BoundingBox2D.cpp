#include "zefcore/geometry/BoundingBox2D.h"

BoundingBox2D::BoundingBox2D() : m_min(1.0f, 0.0f), m_max(0.0f, 0.0f) {}

void BoundingBox2D::clear() {
    m_min.x() = 1.0f;
    m_max.x() = 0.0f;
}

void BoundingBox2D::set(const BoundingBox &box) {
    m_min = Vector2f(box.m_min.x(), box.m_min.y());
    m_max = Vector2f(box.m_max.x(), box.m_max.y());
}

bool BoundingBox2D::contains(const Vector3f &point) const {
    return m_min.x() <= point.x() && point.x() <= m_max.x() && m_min.y() <= point.y() &&
           point.y() <= m_max.y();
}

bool BoundingBox2D::intersect(const BoundingBox2D &other) const {
    if (!isInitialized())
        return false;
    if (!other.isInitialized())
        return false;
    if (other.m_max.x() < m_min.x() || m_max.x() < other.m_min.x() || other.m_max.y() < m_min.y() ||
        m_max.y() < other.m_min.y())
        return false;
    return true;
}
