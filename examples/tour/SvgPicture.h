// The tour's picture, tour.svg: on the left what the camera sees (the screen
// rectangle, each projected box outlined in the colour of its position, the
// boxes that meet the rectangle filled, the picked triangle marked), on the
// right the scene seen from above with the camera's field and eye plane.
#pragma once

#include <string>

#include "TourScene.h"
#include "TourStages.h"

// Returns true once the picture is written to path; false if the file cannot be
// written.
bool writeTourSvg(const std::string &path, const TourScene &scene, const TourProjection &projection,
                  const TourPick &pick);
