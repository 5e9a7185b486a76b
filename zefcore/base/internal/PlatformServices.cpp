// The platform seam, chosen here once.
#include "zefcore/base/internal/PlatformServices.h"

#include <cstdarg>
#include <cwchar>

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

bool zefQueryTickRate(std::int64_t &ticksPerSecond) {
    LARGE_INTEGER rate;
    if (!QueryPerformanceFrequency(&rate))
        return false;
    ticksPerSecond = rate.QuadPart;
    return true;
}

bool zefQueryTickCount(std::int64_t &ticks) {
    LARGE_INTEGER now;
    if (!QueryPerformanceCounter(&now))
        return false;
    ticks = now.QuadPart;
    return true;
}

#else

#include <time.h>

namespace {
constexpr std::int64_t kNanosecondsPerSecond = 1000000000;
}

bool zefQueryTickRate(std::int64_t &ticksPerSecond) {
    timespec resolution;
    if (clock_getres(CLOCK_MONOTONIC, &resolution) != 0)
        return false;
    ticksPerSecond = kNanosecondsPerSecond; // ticks are nanoseconds
    return true;
}

bool zefQueryTickCount(std::int64_t &ticks) {
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
        return false;
    // Unsigned arithmetic: wraps instead of overflowing on an absurd clock value.
    const std::uint64_t value =
        std::uint64_t(now.tv_sec) * std::uint64_t(kNanosecondsPerSecond) + std::uint64_t(now.tv_nsec);
    ticks = std::int64_t(value);
    return true;
}

#endif

int zefFormatWide(wchar_t *buffer, std::size_t count, const wchar_t *format, ...) {
    if (!buffer || count == 0)
        return -1;
    // Some C libraries leave a cut text unterminated, or stop early on an error:
    // start from an all-zero buffer and terminate the last place explicitly.
    for (std::size_t q = 0; q < count; ++q)
        buffer[q] = L'\0';
    std::va_list args;
    va_start(args, format);
    const int written = std::vswprintf(buffer, count, format, args);
    va_end(args);
    buffer[count - 1] = L'\0';
    return written < 0 ? -1 : written;
}
