// The stopwatch: the process-wide starting point, marks and the report.
#include "zefcore/base/ZEFTimer.h"

#include "zefcore/base/internal/PlatformServices.h"

#include <cstddef>
#include <cwchar>

namespace {
constexpr int kReservedMarks = 15;
constexpr std::size_t kReportLineSize = 100; // wide characters, terminator included
} // namespace

bool ZEFTimer::timingInitDone = false;
void (*ZEFTimer::m_outFunction)(const wchar_t *) = nullptr;
std::int64_t ZEFTimer::s_startCount = 0;
double ZEFTimer::s_secondsPerTick = 0.0;

ZEFTimer::ZEFTimer() : m_name(nullptr), m_resetTime(0.0) {
    initTimingTools();
    reset(L"");
}

bool ZEFTimer::initTimingTools() {
    if (timingInitDone)
        return true;
    std::int64_t rate = 0;
    if (!zefQueryTickRate(rate) || rate <= 0)
        return false;
    s_secondsPerTick = 1.0 / double(rate);
    std::int64_t start = 0;
    if (!zefQueryTickCount(start))
        return false;
    s_startCount = start;
    timingInitDone = true;
    return true;
}

double ZEFTimer::getElapsedTime() {
    std::int64_t now = 0;
    zefQueryTickCount(now); // the result code is not looked at
    // Two's complement difference without signed overflow.
    const std::int64_t ticks = std::int64_t(std::uint64_t(now) - std::uint64_t(s_startCount));
    return double(ticks) * s_secondsPerTick;
}

void ZEFTimer::reset() {
    m_resetTime = getElapsedTime();
}

void ZEFTimer::reset(const wchar_t *name) {
    m_name = name;
    m_resetTime = getElapsedTime();
    m_times.clear();
    m_labels.clear();
    m_times.reserve(kReservedMarks);
    m_labels.reserve(kReservedMarks);
}

double ZEFTimer::getElapsedTimeFromReset() const {
    return getElapsedTime() - m_resetTime;
}

void ZEFTimer::pushTime(const wchar_t *label) {
    const double now = getElapsedTime();
    m_times.push_back(now);
    m_labels.push_back(label);
}

double ZEFTimer::findTime(const wchar_t *label, int &index, int /*flag*/) {
    if (label) {
        for (int i = 0; i < m_labels.size(); ++i) {
            const wchar_t *stored = m_labels[i];
            if (stored && std::wcscmp(stored, label) == 0) {
                index = i;
                return m_times[i];
            }
        }
    }
    index = -1;
    return 0.0;
}

void ZEFTimer::print() {
    if (!m_outFunction || m_times.size() == 0)
        return;
    double previous = m_resetTime;
    wchar_t line[kReportLineSize];
    for (int i = 0; i < m_times.size(); ++i) {
        const double time = m_times[i];
        const wchar_t *label = m_labels[i] ? m_labels[i] : L"(null)";
        zefFormatWide(line, kReportLineSize, L" %d: %ls = %.5f  [%.5f]", i, label, time - m_resetTime,
                      time - previous);
        m_outFunction(line);
        previous = time;
    }
}
