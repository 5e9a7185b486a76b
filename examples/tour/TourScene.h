// The tour's scene: boxes under transforms composed from Euler angles, axis and
// angle, and quaternions, a perspective camera and a screen rectangle. The scene
// is made from a seed by a generator of our own, so one seed gives one scene on
// every platform.
#pragma once

#include <cstdint>
#include <vector>

#include "zefcore/base/IDGenerator.h"
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/BoundingBox2D.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Vector3f.h"

// A small 64-bit generator (splitmix64): fixed output for a fixed seed.
class TourRandom {
public:
    explicit TourRandom(std::uint32_t seed) : m_state(0x5A3F0C1D00000000ull ^ seed) {}
    std::uint64_t next();
    // Returns a float in [low, high), from the top 24 bits of next().
    float uniform(float low, float high);

private:
    std::uint64_t m_state;
};

// How a box's rotation was composed.
enum class TourRotation { Euler, AxisAngle, Quaternion };

struct TourBox {
    int id = -1;
    TourRotation rotation = TourRotation::Euler;
    BoundingBox local;     // the box in its own frame: the cube from -1 to 1
    Vector3f halfSize;     // the scale of the model transform
    MatAff4f model;        // own frame to world: T * R * S
    Vector3f corners[8];   // the world corners, z changing fastest as in the corner walk
    BoundingBox world;     // the axis-aligned box around the world corners
    Matrix4f toScreen;     // projection * view * model
    float viewDepth = 0.f; // the centre's distance along the view direction
    // Filled by the projection stage.
    BoundingBoxAlgo::BBoxPosition position = BoundingBoxAlgo::BBoxUnknown;
    BoundingBox2D screen; // projected rectangle, empty when all corners are behind
    bool meetsRect = false;
    bool entirelyInside = false;
};

struct TourCamera {
    Vector3f eye;
    Vector3f forward;   // unit view direction (horizontal)
    Vector3f right;     // unit, screen x
    Vector3f up;        // unit, screen y
    float fovY = 0.f;   // vertical field of view, radians
    float aspect = 0.f; // width / height
    float nearPlane = 0.f;
    float farPlane = 0.f;
    MatRot4f view;       // world to camera
    Matrix4f projection; // camera to projected coordinates, x and y in -1..1 on screen
    Matrix4f viewProjection;
    float depthLimit = 0.f; // projected depths above it lie behind the eye
};

struct TourScene {
    std::uint32_t seed = 0;
    TourCamera camera;
    BoundingBox2D rect; // the screen rectangle, in projected x and y
    std::vector<TourBox> boxes;
    IDGenerator ids; // hands out the boxes' identifiers
};

// The twelve triangles of a box, as indices into TourBox::corners.
extern const int kTourBoxTriangles[12][3];
// The twelve edges of a box, as indices into TourBox::corners.
extern const int kTourBoxEdges[12][2];

// Sets scene to the boxes made from seed, seen by the tour's camera.
void buildTourScene(TourScene &scene, std::uint32_t seed, int boxCount);
