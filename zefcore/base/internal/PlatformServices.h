// The platform seam of the runtime services: a monotonic 64-bit tick counter with
// its rate, and a wide-character formatted print into a counted buffer. The one
// place that includes a platform header; not installed, not exported.
#pragma once

#include <cstddef>
#include <cstdint>

// Sets ticksPerSecond to the counter's rate and returns true; returns false,
// ticksPerSecond unchanged, if the platform has no usable counter.
bool zefQueryTickRate(std::int64_t &ticksPerSecond);

// Sets ticks to the counter's current value and returns true; returns false,
// ticks unchanged, if the counter cannot be read.
bool zefQueryTickCount(std::int64_t &ticks);

// Formats into buffer, at most count wide characters with the terminator, and
// returns the number written without it, or -1 if the text was cut. The buffer is
// always terminated when count > 0: a cut text keeps its first count - 1 characters.
// Use %ls for wide strings.
int zefFormatWide(wchar_t *buffer, std::size_t count, const wchar_t *format, ...);
