// The stages of the tour, each a short use of the library on the scene, and
// what each one found.
#pragma once

#include "TourScene.h"

#include "zefcore/math/Vector3f.h"

struct TourProjection {
    int inFront = 0;
    int across = 0;
    int behind = 0;
    int unknown = 0;
    int meetRect = 0;
    int entirelyInside = 0;
};

struct TourPick {
    bool found = false;
    int aimBox = -1;        // index of the box the ray is aimed at, -1 if none
    int box = -1;           // index of the box hit
    int triangle = -1;      // index into kTourBoxTriangles
    Vector3f a, b, c;       // the triangle hit, in world coordinates
    Vector3f point;         // where the ray meets it
    float u = 0.f, v = 0.f; // point = a + u (b - a) + v (c - a)
    float distance = 0.f;   // from the eye
    int boxesCrossed = 0;   // boxes whose world box the ray crosses
    int trianglesTested = 0;
};

struct TourDecomposition {
    int count = 0;            // transforms split and rebuilt
    float largestError = 0.f; // largest element difference of a rebuilt matrix
    Vector3f scaleFound;      // the first box's scale factors as found
    Vector3f scaleMade;       // and as it was made
};

struct TourSolve {
    bool ok = false;
    double a = 0, b = 0, c = 0; // the ground plane y = a x + b z + c
    double residual = 0;        // largest |A x - r| of the normal equations
};

struct TourDedup {
    int vertices = 0; // triangle corners, three per triangle
    int distinct = 0;
};

struct TourIds {
    int freed = 0; // identifiers given back by the boxes behind the camera
    int next = -1; // the identifier a new object receives afterwards
};

// Projects every box and tests it against the screen rectangle; fills the
// boxes' position, screen, meetsRect and entirelyInside.
TourProjection projectBoxes(TourScene &scene);
// Casts a ray from the eye through the centre of a box inside the rectangle and
// finds the nearest triangle it meets.
TourPick pickTriangle(const TourScene &scene);
// Splits the first few model matrices with getTransform and puts them back together.
TourDecomposition decomposeTransforms(const TourScene &scene);
// Fits a ground plane through the box centres by least squares with LUDecomp.
TourSolve fitGroundPlane(const TourScene &scene);
// Finds the distinct corners of the scene's triangles with BinarySort.
TourDedup deduplicateVertices(const TourScene &scene);
// Gives back the identifiers of the boxes behind the camera and draws a new one.
TourIds recycleIds(TourScene &scene);
