// The command line of zefcore-tour: the seed of the scene, the number of boxes
// and the path of the picture.
#pragma once

#include <cstdint>
#include <string>

struct TourOptions {
    std::uint32_t seed = 1;          // the scene's random seed
    int boxes = 300;                 // how many boxes the scene holds
    std::string output = "tour.svg"; // where the picture goes
};

// The largest box count accepted: the picture stays drawable and the run short.
constexpr int kTourMaxBoxes = 20000;

enum class TourParse { Run, Help, Error };

// Reads argv into options. Returns Help after printing the usage to stdout, Error
// after printing a message to stderr; options may then be partly filled.
TourParse parseTourOptions(int argc, char **argv, TourOptions &options);
