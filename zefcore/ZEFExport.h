// ZEFCORE_API marks what the shared library exports: every exported class and
// free function. Everything else is built with hidden visibility.
#pragma once

#if defined(_WIN32)
#  if defined(ZEFCORE_BUILDING)
#    define ZEFCORE_API __declspec(dllexport)
#  else
#    define ZEFCORE_API __declspec(dllimport)
#  endif
#else
#  define ZEFCORE_API __attribute__((visibility("default")))
#endif
