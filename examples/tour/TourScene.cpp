#include "TourScene.h"

#include <cmath>

#include "zefcore/math/Quaternion.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

// Where the boxes lie: a field in front of the camera that reaches past it.
constexpr float kFieldX = 30.0f;
constexpr float kFieldYLow = -6.0f;
constexpr float kFieldYHigh = 10.0f;
constexpr float kFieldZNear = 40.0f;
constexpr float kFieldZFar = -60.0f;
constexpr float kHalfSizeLow = 0.4f;
constexpr float kHalfSizeHigh = 2.2f;

Vector3f randomAxis(TourRandom &random) {
    for (;;) {
        Vector3f v(random.uniform(-1.f, 1.f), random.uniform(-1.f, 1.f), random.uniform(-1.f, 1.f));
        const float length = v.norm();
        if (length > 0.2f && length <= 1.0f)
            return v; // any length will do: the library normalises what it needs
    }
}

float randomAngle(TourRandom &random) {
    return random.uniform(float(-kPi), float(kPi));
}

TourCamera makeCamera() {
    TourCamera c;
    c.eye = Vector3f(6.0f, 2.5f, 27.0f);
    c.forward = Vector3f(c.eye, Vector3f(-4.0f, 2.5f, -30.0f));
    c.forward.normalize();
    const Vector3f worldUp(0.0f, 1.0f, 0.0f);
    Vector3f::cross(c.right, c.forward, worldUp);
    c.right.normalize();
    Vector3f::cross(c.up, c.right, c.forward);
    c.up.normalize();

    // The camera frame: x right, y up, z backwards; the view matrix takes world
    // points into it.
    const Vector3f back = c.forward * -1.0f;
    c.view.setFromAxis2XYZ(c.right, c.up, back, c.eye);

    c.fovY = float(50.0 * kPi / 180.0);
    c.aspect = 4.0f / 3.0f;
    c.nearPlane = 0.1f;
    c.farPlane = 500.0f;
    const double f = 1.0 / std::tan(double(c.fovY) * 0.5);
    const double n = c.nearPlane;
    const double fa = c.farPlane;
    // Perspective projection in storage order (column after column); w = -z.
    c.projection = Matrix4f(float(f / c.aspect), 0, 0, 0,         //
                            0, float(f), 0, 0,                    //
                            0, 0, float((fa + n) / (n - fa)), -1, //
                            0, 0, float(2.0 * fa * n / (n - fa)), 0);
    c.viewProjection = c.projection * c.view;
    // After the divide, points in front have depths below (far + near) / (far - near);
    // points behind the eye have depths above it.
    c.depthLimit = float((fa + n) / (fa - n));
    return c;
}

} // namespace

const int kTourBoxTriangles[12][3] = {
    {0, 1, 3}, {0, 3, 2}, // -x
    {4, 6, 7}, {4, 7, 5}, // +x
    {0, 4, 5}, {0, 5, 1}, // -y
    {2, 3, 7}, {2, 7, 6}, // +y
    {0, 2, 6}, {0, 6, 4}, // -z
    {1, 5, 7}, {1, 7, 3}, // +z
};

const int kTourBoxEdges[12][2] = {
    {0, 1}, {2, 3}, {4, 5}, {6, 7}, // along z
    {0, 2}, {1, 3}, {4, 6}, {5, 7}, // along y
    {0, 4}, {1, 5}, {2, 6}, {3, 7}, // along x
};

std::uint64_t TourRandom::next() {
    m_state += 0x9E3779B97F4A7C15ull;
    std::uint64_t z = m_state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

float TourRandom::uniform(float low, float high) {
    const double unit = double(next() >> 40) / double(1u << 24);
    return float(double(low) + (double(high) - low) * unit);
}

void buildTourScene(TourScene &scene, std::uint32_t seed, int boxCount) {
    scene.seed = seed;
    scene.camera = makeCamera();
    // An off-centre selection, as a user would drag it.
    scene.rect.m_min = Vector2f(-0.45f, -0.35f);
    scene.rect.m_max = Vector2f(0.35f, 0.30f);
    scene.ids.clear();
    scene.boxes.assign(static_cast<std::size_t>(boxCount), TourBox());

    TourRandom random(seed);
    for (int i = 0; i < boxCount; ++i) {
        TourBox &box = scene.boxes[static_cast<std::size_t>(i)];
        box.id = scene.ids.generateID();
        box.rotation = static_cast<TourRotation>(i % 3);
        box.local.m_min = Vector3f(-1.0f, -1.0f, -1.0f);
        box.local.m_max = Vector3f(1.0f, 1.0f, 1.0f);

        Vector3f centre(random.uniform(-kFieldX, kFieldX), random.uniform(kFieldYLow, kFieldYHigh),
                        random.uniform(kFieldZFar, kFieldZNear));
        box.halfSize =
            Vector3f(random.uniform(kHalfSizeLow, kHalfSizeHigh), random.uniform(kHalfSizeLow, kHalfSizeHigh),
                     random.uniform(kHalfSizeLow, kHalfSizeHigh));

        // The rotation, composed three ways.
        MatAff4f rotation;
        if (i < 2) {
            // Two boxes beside the eye, straddling its plane at the lower corners of
            // the view: turned with the camera, a little twisted about its up axis.
            const float side = i == 0 ? -1.0f : 1.0f;
            const TourCamera &camera = scene.camera;
            box.rotation = TourRotation::Quaternion;
            box.halfSize = Vector3f(0.7f, 0.5f, 1.2f);
            MatRot4f frame;
            frame.setFromXYZ2Axis(camera.right, camera.up, camera.forward * -1.0f, Vector3f::m_zero);
            Quaternion q = Quaternion(camera.up, 0.1f * side) * Quaternion(frame);
            q.normalize();
            MatRot4f m;
            m.setValue(q, Vector3f::m_zero);
            rotation = MatAff4f(m);
            centre = camera.eye + camera.forward * 0.4f + camera.right * (1.3f * side) + camera.up * -1.0f;
        } else if (box.rotation == TourRotation::Euler) {
            rotation.setRotate(randomAngle(random), randomAngle(random), randomAngle(random));
        } else if (box.rotation == TourRotation::AxisAngle) {
            const Vector3f axis = randomAxis(random);
            rotation = MatAff4f(MatRot4f(axis, randomAngle(random), Vector3f::m_zero));
        } else {
            const Vector3f axis = randomAxis(random);
            const float turn = randomAngle(random);
            // A turn about an axis after a turn given by Euler angles.
            Quaternion q = Quaternion(axis, turn) *
                           Quaternion(randomAngle(random), randomAngle(random), randomAngle(random));
            q.normalize();
            MatRot4f m;
            m.setValue(q, Vector3f::m_zero);
            rotation = MatAff4f(m);
        }

        box.model = MatAff4f::translate(centre);
        box.model.multRightBy(rotation);
        box.model.multRightBy(MatAff4f::scale(box.halfSize));

        for (int k = 0; k < 8; ++k) {
            const Vector3f corner((k & 4) ? 1.0f : -1.0f, (k & 2) ? 1.0f : -1.0f, (k & 1) ? 1.0f : -1.0f);
            box.corners[k] = box.model * corner;
        }
        BoundingBoxAlgo::transformBBox(box.world, box.local, box.model);
        box.toScreen = scene.camera.viewProjection * box.model;
        box.viewDepth = Vector3f(scene.camera.eye, centre).dot(scene.camera.forward);
    }
}
