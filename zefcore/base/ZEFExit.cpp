// Exit hooks: an array replaced by one of the exact new size at each registration.
#include "zefcore/base/ZEFExit.h"

#include <climits>
#include <new>

void (**ZEFExit::m_exitFunctions)() = nullptr;
int ZEFExit::m_numExitFunctions = 0;

void ZEFExit::addExitFun(void (*function)()) {
    if (!function || m_numExitFunctions < 0)
        return;
    if (m_numExitFunctions == INT_MAX)
        throw std::bad_alloc();
    using Function = void (*)();
    Function *grown = new Function[m_numExitFunctions + 1];
    for (int i = 0; i < m_numExitFunctions; ++i)
        grown[i] = m_exitFunctions[i];
    grown[m_numExitFunctions] = function;
    delete[] m_exitFunctions;
    m_exitFunctions = grown;
    ++m_numExitFunctions;
}

void ZEFExit::exit() {
    if (m_numExitFunctions <= 0)
        return;
    // Count and array are read anew in each pass: a function may register another.
    // "> 0" rather than "!= 0": a function that wrongly calls exit() closes the list
    // under us, and this loop must then stop rather than index a released array.
    while (m_numExitFunctions > 0) {
        --m_numExitFunctions;
        m_exitFunctions[m_numExitFunctions]();
    }
    delete[] m_exitFunctions;
    m_exitFunctions = nullptr;
    m_numExitFunctions = -1;
}
