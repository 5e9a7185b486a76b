#include "zefcore/base/ZEFTimer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cwchar>
#include <string>
#include <thread>
#include <vector>

namespace {

std::vector<std::wstring> g_lines;
void capture(const wchar_t *text) { g_lines.emplace_back(text); }

constexpr double kPrintedHalfStep = 0.5e-5; // %.5f rounds to half a unit of the last digit

void waitAMoment() { std::this_thread::sleep_for(std::chrono::milliseconds(3)); }

std::wstring printed(double value) {
    wchar_t buffer[64];
    std::swprintf(buffer, 64, L"%.5f", value);
    return buffer;
}

// Returns the number between "= " and "  [" of a report line.
std::wstring totalOf(const std::wstring &line) {
    const std::size_t from = line.find(L" = ") + 3;
    return line.substr(from, line.find(L"  [") - from);
}

} // namespace

// Runs first: nothing in this process has set up the timing tools yet.
TEST(ZEFTimer, StartingPointIsFixedOnce) {
    EXPECT_FALSE(ZEFTimer::timingInitDone);
    EXPECT_EQ(ZEFTimer::getElapsedTime(), 0.0);
    ASSERT_TRUE(ZEFTimer::initTimingTools());
    EXPECT_TRUE(ZEFTimer::timingInitDone);
    waitAMoment();
    const double first = ZEFTimer::getElapsedTime();
    EXPECT_GT(first, 0.002);
    ASSERT_TRUE(ZEFTimer::initTimingTools());
    EXPECT_GE(ZEFTimer::getElapsedTime(), first);

    // Time from the reset, not from the starting point: bounded by the calls around it.
    ZEFTimer timer;
    const double before = ZEFTimer::getElapsedTime();
    timer.reset();
    waitAMoment();
    const double sinceReset = timer.getElapsedTimeFromReset();
    const double after = ZEFTimer::getElapsedTime();
    EXPECT_GT(sinceReset, 0.002);
    EXPECT_LE(sinceReset, after - before);
}

TEST(ZEFTimer, FindTimeComparesText) {
    ZEFTimer timer;
    int index = 7;
    EXPECT_EQ(timer.findTime(L"load", index, 0), 0.0);
    EXPECT_EQ(index, -1);
    const wchar_t first[] = L"load";
    const wchar_t again[] = L"load";
    timer.pushTime(L"init");
    timer.pushTime(first);
    const double between = ZEFTimer::getElapsedTime();
    waitAMoment();
    timer.pushTime(again);
    const wchar_t other[] = L"load"; // equal text at a third address
    const double t = timer.findTime(other, index, 1);
    EXPECT_EQ(index, 1);
    EXPECT_LE(t, between); // the first of the two, not the later one
    EXPECT_GT(t, 0.0);     // since the starting point, not the reset
    EXPECT_EQ(timer.findTime(L"loa", index, 0), 0.0);
    EXPECT_EQ(index, -1);
}

TEST(ZEFTimer, ReportLines) {
    ZEFTimer timer;
    ZEFTimer::m_outFunction = nullptr;
    timer.pushTime(L"ignored");
    timer.print(); // no output function: nothing, no crash

    ZEFTimer::m_outFunction = capture;
    const double before = ZEFTimer::getElapsedTime();
    timer.reset(L"series");
    const double after = ZEFTimer::getElapsedTime();
    timer.print();
    EXPECT_TRUE(g_lines.empty()); // no marks

    waitAMoment();
    timer.pushTime(L"load");
    waitAMoment();
    const wchar_t draw[] = L"dr\u00e4w \u03a9"; // beyond ASCII: taken as a wide string
    timer.pushTime(draw);
    timer.print();
    ASSERT_EQ(g_lines.size(), 2u);
    int index = 0;
    const double t0 = timer.findTime(L"load", index, 0);
    const double t1 = timer.findTime(draw, index, 0);

    const std::wstring total0 = totalOf(g_lines[0]);
    EXPECT_EQ(g_lines[0], L" 0: load = " + total0 + L"  [" + total0 + L"]");
    const double value0 = std::wcstod(total0.c_str(), nullptr);
    EXPECT_GE(value0, t0 - after - kPrintedHalfStep);
    EXPECT_LE(value0, t0 - before + kPrintedHalfStep);

    const std::wstring total1 = totalOf(g_lines[1]);
    EXPECT_EQ(g_lines[1], std::wstring(L" 1: ") + draw + L" = " + total1 + L"  [" + printed(t1 - t0) + L"]");
    const double value1 = std::wcstod(total1.c_str(), nullptr);
    EXPECT_GE(value1, t1 - after - kPrintedHalfStep);
    EXPECT_LE(value1, t1 - before + kPrintedHalfStep);

    // The marks stay: the same report again.
    timer.print();
    ASSERT_EQ(g_lines.size(), 4u);
    EXPECT_EQ(g_lines[2], g_lines[0]);
    EXPECT_EQ(g_lines[3], g_lines[1]);

    // reset() keeps the marks, now counted from a later reference: negative.
    g_lines.clear();
    waitAMoment();
    timer.reset();
    timer.print();
    ASSERT_EQ(g_lines.size(), 2u);
    EXPECT_EQ(g_lines[0].compare(0, 12, L" 0: load = -"), 0) << std::string(g_lines[0].begin(), g_lines[0].end());

    // reset(name) starts a new series; a label too long for the line is cut at 99.
    g_lines.clear();
    timer.reset(L"next");
    timer.print();
    EXPECT_TRUE(g_lines.empty());
    const std::wstring longLabel(150, L'x');
    timer.pushTime(longLabel.c_str());
    timer.print();
    ASSERT_EQ(g_lines.size(), 1u);
    EXPECT_EQ(g_lines[0], L" 0: " + longLabel.substr(0, 95));
    ZEFTimer::m_outFunction = nullptr;
}
