// The process-wide tools (stopwatch, exit hooks, debug file, system record, activity
// hook) and the small value helpers. Each tool keeps process state: one test each, the
// stopwatch first, before anything has set up the timing tools.
#include "zefcore/base/ZEFActivityMgr.h"
#include "zefcore/base/ZEFArray.h"
#include "zefcore/base/ZEFDebugFile.h"
#include "zefcore/base/ZEFExit.h"
#include "zefcore/base/ZEFOSVersion.h"
#include "zefcore/base/ZEFString.h"
#include "zefcore/base/ZEFTimer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {
std::vector<std::wstring> g_lines;
std::string g_order;

void waitAMoment() {
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
}

// Checks that line is " <i>: <label> = T  [S]", T the time since the reset within [low,
// high] up to the printed rounding (half a unit of the fifth decimal), S the printed step
// (T itself when step is negative).
void expectLine(const std::wstring &line, int i, const std::wstring &label, double low, double high,
                double step) {
    const std::size_t from = line.find(L" = ") + 3;
    const std::wstring total = line.substr(from, line.find(L"  [") - from);
    wchar_t printed[64];
    std::swprintf(printed, 64, L"%.5f", step);
    EXPECT_EQ(line, L" " + std::to_wstring(i) + L": " + label + L" = " + total + L"  [" +
                        (step < 0 ? total : printed) + L"]");
    const double value = std::wcstod(total.c_str(), nullptr);
    EXPECT_TRUE(value >= low - 0.5e-5 && value <= high + 0.5e-5) << value;
}
} // namespace

TEST(ZEFTimer, StartingPointMarksAndWideReport) {
    EXPECT_TRUE(!ZEFTimer::timingInitDone && ZEFTimer::getElapsedTime() == 0.0);
    ASSERT_TRUE(ZEFTimer::initTimingTools() && ZEFTimer::timingInitDone);
    waitAMoment();
    const double first = ZEFTimer::getElapsedTime();
    ASSERT_TRUE(first > 0.002 && ZEFTimer::initTimingTools() && ZEFTimer::getElapsedTime() >= first);
    ZEFTimer timer;
    timer.pushTime(L"ignored");
    timer.print(); // no output function: nothing
    ZEFTimer::m_outFunction = [](const wchar_t *text) { g_lines.emplace_back(text); };
    waitAMoment(); // the starting point lies well before the reset
    const double before = ZEFTimer::getElapsedTime();
    timer.reset(L"series"); // empties the marks
    const double after = ZEFTimer::getElapsedTime();
    int index = 7;
    EXPECT_TRUE(timer.findTime(L"ignored", index, 0) == 0.0 && index == -1);
    timer.print();
    waitAMoment();
    const double sinceReset = timer.getElapsedTimeFromReset();
    EXPECT_TRUE(g_lines.empty() && sinceReset > 0.002 && sinceReset <= ZEFTimer::getElapsedTime() - before);
    const wchar_t load[] = L"load", draw[] = L"dr\u00e4w \u03a9"; // beyond ASCII: a wide string
    timer.pushTime(load);
    waitAMoment();
    timer.pushTime(draw);
    timer.pushTime(load);
    const double t0 = timer.findTime(std::wstring(L"load").c_str(), index, 1); // the first of the two
    EXPECT_EQ(index, 0);
    const double t1 = timer.findTime(draw, index, 0);
    EXPECT_TRUE(index == 1 && t0 > after && t1 > t0); // since the starting point, not the reset
    EXPECT_TRUE(timer.findTime(L"loa", index, 0) == 0.0 && index == -1);
    timer.print();
    timer.print(); // the marks stay: the same report again
    ASSERT_EQ(g_lines.size(), 6u);
    expectLine(g_lines[0], 0, load, t0 - after, t0 - before, -1);
    expectLine(g_lines[1], 1, draw, t1 - after, t1 - before, t1 - t0);
    EXPECT_TRUE(g_lines[3] == g_lines[0] && g_lines[4] == g_lines[1]);
    g_lines.clear();
    timer.reset(); // keeps the marks, now counted from a later reference: negative
    const std::wstring longLabel(150, L'x');
    timer.pushTime(longLabel.c_str());
    timer.print();
    ASSERT_EQ(g_lines.size(), 4u);
    EXPECT_EQ(g_lines[0].compare(0, 12, L" 0: load = -"), 0);
    EXPECT_EQ(g_lines[3], L" 3: " + longLabel.substr(0, 95)); // cut to 99 characters
    ZEFTimer::m_outFunction = nullptr;
}

// Last registered runs first; a hook may register another, run next; then the list closes.
TEST(ZEFExit, RunsLastRegisteredFirstThenCloses) {
    ZEFExit::exit(); // empty: no effect, the list stays open
    void (*a)() = [] { g_order += 'a'; }, (*c)() = [] { g_order += 'c'; };
    void (*b)() = [] { g_order += 'b', ZEFExit::addExitFun([] { g_order += 'd'; }); };
    for (void (*hook)() : {a, static_cast<void (*)()>(nullptr), b, c, a})
        ZEFExit::addExitFun(hook); // null refused; twice runs twice
    ZEFExit::exit();
    ZEFExit::exit();
    ZEFExit::addExitFun(c); // closed: refused
    ZEFExit::exit();
    EXPECT_EQ(g_order, "acbda");
}

// The file opens once per process, in the directory current then, emptying it. Each record
// is on disk at once; a line end is added where missing; a longer text is cut to the limit,
// one ending in a line end exactly at the limit is written unchanged.
TEST(ZEFDebugFile, RecordsAreCutTerminatedAndFlushed) {
    namespace fs = std::filesystem;
    constexpr std::size_t kMaxTextBytes = 4095;
    const fs::path home = fs::current_path(),
                   dir = fs::temp_directory_path() /
                         ("zefcore-debugfile-" +
                          std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    ASSERT_TRUE(fs::create_directories(dir));
    const fs::path log = dir / "debug-file.txt";
    auto readAll = [&] {
        std::ifstream in(log, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    };
    std::ofstream(log) << "left from an earlier run\n";
    fs::current_path(dir);
    ZEFDebugFile::writeDebugFile("");
    FILE *file = ZEFDebugFile::getDebugFile();
    fs::current_path(home);
    ASSERT_TRUE(file != nullptr && ZEFDebugFile::getDebugFile() == file && readAll().empty());
    std::string longText(5000, 'x'), exact(kMaxTextBytes - 1, 'w');
    longText[kMaxTextBytes - 1] = 'y', longText[kMaxTextBytes] = 'z', exact += '\n';
    ZEFDebugFile::writeDebugFile("first");
    EXPECT_EQ(readAll(), "first\n");
    for (const char *text : {"second\n", longText.c_str(), exact.c_str(), static_cast<const char *>(nullptr)})
        ZEFDebugFile::writeDebugFile(text);
    EXPECT_EQ(readAll(), "first\nsecond\n" + longText.substr(0, kMaxTextBytes) + "\n" + exact);
    fs::remove_all(dir);
}

// The system record: exactly one predicate holds. The activity hooks reach no manager and
// nobody listens; the manager's type information comes from the library, so a derived
// cast works across it.
TEST(ZEFOSVersionAndActivityMgr, OnePredicateHoldsAndNoHookReachesTheManager) {
    using OS = ZEFOSVersion;
    EXPECT_EQ(OS::getOSVersion(), OS::eZEFOSUnknown);
    { OS record; }
    for (auto v : {OS::eZEFOSUnknown, OS::eZEFOSXJaguar, OS::eZEFOSXPanther, OS::eZEFOSX}) {
        OS::init(v);
        EXPECT_TRUE(OS::getOSVersion() == v && OS::isOSX() == (v == OS::eZEFOSX) &&
                    OS::isOSXJaguar() == (v == OS::eZEFOSXJaguar) &&
                    OS::isOSXPanther() == (v == OS::eZEFOSXPanther));
    }
    using Mgr = ZEFActivityMgr;
    struct CountingMgr : Mgr {
        int calls = 0;
        void onStart() override { Mgr::onStart(), ++calls; }
        void onEnd() override { Mgr::onEnd(), ++calls; }
        void onSignal() override { Mgr::onSignal(), ++calls; }
    } manager;
    Mgr::setCurrentActivityManager(&manager);
    Mgr::start(), Mgr::signal(), Mgr::end();
    EXPECT_TRUE(manager.calls == 0 && !Mgr::isActivityMgrListening());
    manager.onStart(), manager.onEnd(), manager.onSignal();
    EXPECT_TRUE(manager.calls == 3 && dynamic_cast<CountingMgr *>(static_cast<Mgr *>(&manager)) == &manager);
    Mgr::setCurrentActivityManager(nullptr);
}

// The null string is one object, known by its address; the constructors follow the
// std::string forms, with an empty string where no text is given.
TEST(ZEFString, NullByAddressAndStringForms) {
    EXPECT_TRUE(ZEFString::m_null.isNull() && ZEFString::m_null == "!!! NULL String !!!");
    EXPECT_FALSE(ZEFString("!!! NULL String !!!").isNull() || ZEFString(ZEFString::m_null).isNull());
    const std::string text = "abcdefgh";
    EXPECT_TRUE(ZEFString(text, 2, 3) == "cde" && ZEFString(text, 6, -1) == "gh" &&
                ZEFString(3, 'z') == "zzz");
    EXPECT_TRUE(ZEFString("abcdefgh", 4) == "abcd" && ZEFString(text.data() + 1, text.data() + 4) == "bcd");
    EXPECT_EQ(ZEFString(std::string("ab\0c", 4)).size(), 4u); // the std::string form keeps a zero
    EXPECT_THROW(ZEFString(text, 9, 1), std::out_of_range);
    EXPECT_THROW(ZEFString("abc", -2), std::length_error);
    EXPECT_THROW(ZEFString(-1, 'z'), std::length_error);
    EXPECT_TRUE(ZEFString().empty() && ZEFString(static_cast<const char *>(nullptr)).empty() &&
                ZEFString(text.data() + 4, text.data() + 1).empty());
}

// Null ends when empty; erase returns what now stands there, null out of range or at the
// end; the suite stops before last and wraps.
TEST(ZEFArray, EraseAndArithmeticalSuite) {
    ZEFArray<int> a;
    int outside = 0, v[4] = {9, 9, 9, 9};
    EXPECT_TRUE(a.begin() == nullptr && a.end() == nullptr && a.erase(&outside) == nullptr);
    for (int x : {10, 20, 30, 40})
        a.push_back(x);
    EXPECT_TRUE(a.erase(-1) == nullptr && a.erase(4) == nullptr && a.erase(a.end()) == nullptr &&
                a.erase(&outside) == nullptr);
    int *p = a.erase(a.begin() + 1);
    ASSERT_TRUE(p == a.begin() + 1 && *p == 30 && a.size() == 3 && a.erase(2) == a.end() &&
                *a.erase(0) == 30);
    EXPECT_TRUE(a.erase(0) == nullptr && a.begin() == nullptr && a.end() == nullptr);
    a.push_back(5);
    a.assign(3);
    EXPECT_EQ(std::vector<int>(a.vbegin(), a.vbegin() + a.size()), std::vector<int>(3, 0));
    fillArithmeticalSuite(v + 2, v + 1, 1, 1); // empty range
    fillArithmeticalSuite(v, v + 3, 5, -2);
    EXPECT_EQ(std::vector<int>(v, v + 4), (std::vector<int>{5, 3, 1, 9}));
    fillArithmeticalSuite(v, v + 2, INT_MAX, 1);
    float f[3] = {0, 0, 7};
    fillArithmeticalSuite(f, f + 2, 0.5f, 0.25f);
    EXPECT_TRUE(v[1] == INT_MIN && f[0] == 0.5f && f[1] == 0.75f && f[2] == 7.0f);
}
