/// \file
/// ZEFTimer: a stopwatch with labelled marks and a report. All times are double
/// seconds from one process-wide starting point, fixed by the first successful
/// initTimingTools(). Labels and names are held as pointers, not copied: the caller
/// keeps the strings alive as long as the marks.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/ZEFArray.h"

#include <cstdint>

/// A stopwatch with labelled marks and a report through m_outFunction.
class ZEFCORE_API ZEFTimer {
public:
    /// Sets up the timing tools if needed, then starts a new series named L"".
    ZEFTimer();

    /// Fixes the starting point once and returns true; returns false, and tries again
    /// at the next call, if the platform has no usable counter.
    static bool initTimingTools();

    /// Returns the seconds since the starting point; 0.0 before a successful setup.
    static double getElapsedTime();

    /// Sets the reference time to now. The marks and the name stay.
    void reset();

    /// Starts a new series: stores name, sets the reference time to now, and empties
    /// the marks, with room for 15 before any allocation.
    void reset(const wchar_t *name);

    /// Returns the seconds since the reference time.
    double getElapsedTimeFromReset() const;

    /// Appends a mark at the current time with this label.
    void pushTime(const wchar_t *label);

    /// Returns the time of the first mark whose label has the same characters (seconds
    /// since the starting point, not the reset) and sets index to its position;
    /// none: sets index to -1 and returns 0.0. flag has no effect; null finds nothing.
    double findTime(const wchar_t *label, int &index, int flag);

    /// Sends one line per mark to m_outFunction, " %d: %s = %.5f  [%.5f]" with the
    /// position, the label, the time since the reset and the time since the previous
    /// mark, without a line end, cut to 99 characters. No output function: nothing.
    void print();

    /// True once initTimingTools has succeeded.
    static bool timingInitDone;
    /// The report's output function, set by the application; null at load.
    static void (*m_outFunction)(const wchar_t *);

private:
    ZEFArray<double> m_times;
    ZEFArray<wchar_t const *> m_labels;
    const wchar_t *m_name;
    double m_resetTime;

    static std::int64_t s_startCount;
    static double s_secondsPerTick;
};
