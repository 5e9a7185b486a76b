#include "zefcore/base/ZEFTimer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cwchar>
#include <string>
#include <thread>
#include <vector>

namespace {
std::vector<std::wstring> g_lines;
void capture(const wchar_t *text) {
    g_lines.emplace_back(text);
}

constexpr double kPrintedHalfStep = 0.5e-5; // %.5f rounds to half a unit of the last digit

void waitAMoment() {
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
}

std::wstring printed(double value) {
    wchar_t buffer[64];
    std::swprintf(buffer, 64, L"%.5f", value);
    return buffer;
}

// Checks that line is " <i>: <label> = T  [<bracket>]" (T itself when bracket is empty)
// with T, the time since the reset, within [low, high] up to the printed rounding.
void expectLine(const std::wstring &line, int i, const std::wstring &label, std::wstring bracket, double low,
                double high) {
    const std::size_t from = line.find(L" = ") + 3;
    const std::wstring total = line.substr(from, line.find(L"  [") - from);
    EXPECT_EQ(line, L" " + std::to_wstring(i) + L": " + label + L" = " + total + L"  [" +
                        (bracket.empty() ? total : bracket) + L"]");
    const double value = std::wcstod(total.c_str(), nullptr);
    EXPECT_TRUE(value >= low - kPrintedHalfStep && value <= high + kPrintedHalfStep) << value;
}
} // namespace

// Runs first: nothing in this process has set up the timing tools yet.
TEST(ZEFTimer, StartingPointIsFixedOnceAndResetTimesFromNow) {
    EXPECT_FALSE(ZEFTimer::timingInitDone);
    EXPECT_EQ(ZEFTimer::getElapsedTime(), 0.0);
    ASSERT_TRUE(ZEFTimer::initTimingTools() && ZEFTimer::timingInitDone);
    waitAMoment();
    const double first = ZEFTimer::getElapsedTime();
    EXPECT_GT(first, 0.002);
    ASSERT_TRUE(ZEFTimer::initTimingTools());
    EXPECT_GE(ZEFTimer::getElapsedTime(), first);

    ZEFTimer timer; // time from the reset, bounded by the calls around it
    const double before = ZEFTimer::getElapsedTime();
    timer.reset();
    waitAMoment();
    const double sinceReset = timer.getElapsedTimeFromReset();
    EXPECT_TRUE(sinceReset > 0.002 && sinceReset <= ZEFTimer::getElapsedTime() - before);
}

TEST(ZEFTimer, FindTimeAndReportLines) {
    ZEFTimer timer;
    ZEFTimer::m_outFunction = nullptr;
    timer.pushTime(L"ignored");
    timer.print(); // no output function: nothing, no crash
    ZEFTimer::m_outFunction = capture;
    waitAMoment(); // the starting point lies well before the reset
    const double before = ZEFTimer::getElapsedTime();
    timer.reset(L"series");
    const double after = ZEFTimer::getElapsedTime();
    int index = 7;
    EXPECT_TRUE(timer.findTime(L"load", index, 0) == 0.0 && index == -1);
    timer.print();
    EXPECT_TRUE(g_lines.empty()); // reset(name) emptied the marks

    waitAMoment();
    const wchar_t load[] = L"load", draw[] = L"dr\u00e4w \u03a9"; // beyond ASCII: a wide string
    timer.pushTime(load);
    waitAMoment();
    timer.pushTime(draw);
    timer.pushTime(load);
    const double t0 = timer.findTime(std::wstring(L"load").c_str(), index, 1); // equal text elsewhere
    EXPECT_EQ(index, 0);                                                       // the first of the two
    const double t1 = timer.findTime(draw, index, 0);
    EXPECT_TRUE(index == 1 && t0 > after && t1 > t0); // since the starting point, not the reset
    EXPECT_TRUE(timer.findTime(L"loa", index, 0) == 0.0 && index == -1);
    timer.print();
    timer.print(); // the marks stay: the same report again
    ASSERT_EQ(g_lines.size(), 6u);
    expectLine(g_lines[0], 0, load, L"", t0 - after, t0 - before);
    expectLine(g_lines[1], 1, draw, printed(t1 - t0), t1 - after, t1 - before);
    EXPECT_TRUE(g_lines[3] == g_lines[0] && g_lines[4] == g_lines[1]);

    // reset() keeps the marks, now counted from a later reference: negative.
    g_lines.clear();
    timer.reset();
    timer.print();
    ASSERT_EQ(g_lines.size(), 3u);
    EXPECT_EQ(g_lines[0].compare(0, 12, L" 0: load = -"), 0);

    // A label too long for the line is cut: 99 characters in all.
    g_lines.clear();
    timer.reset(L"next");
    const std::wstring longLabel(150, L'x');
    timer.pushTime(longLabel.c_str());
    timer.print();
    ASSERT_EQ(g_lines.size(), 1u);
    EXPECT_EQ(g_lines[0], L" 0: " + longLabel.substr(0, 95));
    ZEFTimer::m_outFunction = nullptr;
}
