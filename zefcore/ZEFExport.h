/// \file
/// ZEFCORE_API marks what the shared library exports: every exported class and
/// free function. Everything else is built with hidden visibility.
#pragma once

#if defined(_WIN32)
#if defined(ZEFCORE_BUILDING)
#define ZEFCORE_API __declspec(dllexport)
#else
#define ZEFCORE_API __declspec(dllimport)
#endif
#else
/// Marks an exported class or free function (default visibility; on Windows,
/// dllexport while the library is built and dllimport otherwise).
#define ZEFCORE_API __attribute__((visibility("default")))
#endif
