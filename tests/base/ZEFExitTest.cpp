#include "zefcore/base/ZEFExit.h"

#include <gtest/gtest.h>

#include <string>

namespace {
std::string g_order;
void hookA() {
    g_order += 'a';
}
void hookD() {
    g_order += 'd';
}
void hookB() {
    g_order += 'b', ZEFExit::addExitFun(hookD);
} // hookD runs right after this returns
void hookC() {
    g_order += 'c';
}
} // namespace

// One test: the exit list is process-wide and closes for good.
TEST(ZEFExit, RunsLastRegisteredFirstThenCloses) {
    ZEFExit::exit(); // empty: no effect, the list stays open
    for (void (*hook)() : {hookA, static_cast<void (*)()>(nullptr), hookB, hookC, hookA})
        ZEFExit::addExitFun(hook); // null refused; twice runs twice
    ZEFExit::exit();
    EXPECT_EQ(g_order, "acbda");
    ZEFExit::exit();
    ZEFExit::addExitFun(hookC); // closed: refused
    ZEFExit::exit();
    EXPECT_EQ(g_order, "acbda");
}
