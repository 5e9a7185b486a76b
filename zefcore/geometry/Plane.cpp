#include "zefcore/geometry/Plane.h"

#include "zefcore/geometry/GeometryTolerances.h"

#include <cmath>

Plane::Plane() : m_normal(0.0f, 0.0f, 1.0f), m_d(0.0f) {}

void Plane::setNormal(const Vector3f &normal) {
    const float length = normal.norm();
    // Written as "not within the bound" so that a NaN length is accepted.
    if (std::fabs(length) <= kGeomDirLengthTolerance)
        return;
    m_normal = normal / length;
}

void Plane::setFromNormalPoint(const Vector3f &normal, const Vector3f &point) {
    setNormal(normal);
    const float dot = Vector3f::dot(m_normal, point);
    m_d = -dot;
}

void Plane::setMediator(const Vector3f &a, const Vector3f &b) {
    const Vector3f mid = (a + b) * 0.5f;
    setNormal(b - a);
    const float dot = Vector3f::dot(m_normal, mid);
    m_d = -dot;
}

void Plane::findPoint(Vector3f &out) {
    const float nn = Vector3f::dot(m_normal, m_normal);
    const float k = static_cast<float>(-double(m_d) / nn);
    out = m_normal * k;
}

void Plane::findUVAxis(ZEFLine &u, ZEFLine &v) {
    const float ax = std::fabs(m_normal.x());
    const float ay = std::fabs(m_normal.y());
    const float az = std::fabs(m_normal.z());

    Vector3f e(1.0f, 0.0f, 0.0f);
    if (ay < ax) {
        if (az < ay)
            e = Vector3f(0.0f, 0.0f, 1.0f);
        else
            e = Vector3f(0.0f, 1.0f, 0.0f);
    } else if (az < ax) {
        e = Vector3f(0.0f, 0.0f, 1.0f);
    }

    Vector3f origin;
    findPoint(origin);

    const Vector3f uDir = e.cross(m_normal);
    u.m_origin = origin;
    u.setDir(uDir);

    const Vector3f vDir = m_normal.cross(uDir);
    v.m_origin = origin;
    v.setDir(vDir);
}
