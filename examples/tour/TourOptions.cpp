#include "TourOptions.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

void printUsage(std::FILE *to) {
    std::fprintf(to,
                 "usage: zefcore-tour [--seed N] [--boxes N] [--output PATH]\n"
                 "  --seed N       seed of the generated scene (default 1)\n"
                 "  --boxes N      number of boxes, 1 to %d (default 300)\n"
                 "  --output PATH  where to write the SVG picture (default tour.svg)\n",
                 kTourMaxBoxes);
}

// Returns true and sets value if text is a whole decimal number in [low, high].
bool readNumber(const char *text, unsigned long low, unsigned long high, unsigned long &value) {
    if (!text || *text < '0' || *text > '9')
        return false;
    errno = 0;
    char *end = nullptr;
    const unsigned long v = std::strtoul(text, &end, 10);
    if (errno != 0 || *end != '\0' || v < low || v > high)
        return false;
    value = v;
    return true;
}

} // namespace

TourParse parseTourOptions(int argc, char **argv, TourOptions &options) {
    for (int i = 1; i < argc; ++i) {
        const char *arg = argv[i];
        if (std::strcmp(arg, "-h") == 0 || std::strcmp(arg, "--help") == 0) {
            printUsage(stdout);
            return TourParse::Help;
        }
        // Both "--name value" and "--name=value".
        const char *names[] = {"--seed", "--boxes", "--output"};
        const char *value = nullptr;
        int which = -1;
        for (int n = 0; n < 3 && which < 0; ++n) {
            const std::size_t length = std::strlen(names[n]);
            if (std::strncmp(arg, names[n], length) != 0)
                continue;
            if (arg[length] == '=') {
                which = n;
                value = arg + length + 1;
            } else if (arg[length] == '\0') {
                which = n;
                value = i + 1 < argc ? argv[++i] : nullptr;
            }
        }
        if (which < 0) {
            std::fprintf(stderr, "zefcore-tour: unknown argument '%s'\n", arg);
            printUsage(stderr);
            return TourParse::Error;
        }
        if (!value) {
            std::fprintf(stderr, "zefcore-tour: %s needs a value\n", names[which]);
            return TourParse::Error;
        }
        unsigned long number = 0;
        if (which == 0) {
            if (!readNumber(value, 0, 0xFFFFFFFFul, number)) {
                std::fprintf(stderr, "zefcore-tour: --seed takes a number from 0 to 4294967295\n");
                return TourParse::Error;
            }
            options.seed = static_cast<std::uint32_t>(number);
        } else if (which == 1) {
            if (!readNumber(value, 1, static_cast<unsigned long>(kTourMaxBoxes), number)) {
                std::fprintf(stderr, "zefcore-tour: --boxes takes a number from 1 to %d\n", kTourMaxBoxes);
                return TourParse::Error;
            }
            options.boxes = static_cast<int>(number);
        } else {
            if (*value == '\0') {
                std::fprintf(stderr, "zefcore-tour: --output needs a path\n");
                return TourParse::Error;
            }
            options.output = value;
        }
    }
    return TourParse::Run;
}
