/// \file
/// ZEFDebugFile: the plain-text log "debug-file.txt", opened (and emptied) in the
/// current directory at first use and left open until the process ends. Each record
/// ends in a line end and is flushed at once. One static buffer: one thread at a time.
#pragma once

#include "zefcore/ZEFExport.h"

#include <cstdio>

/// Writes plain-text records to "debug-file.txt" in the current directory.
class ZEFCORE_API ZEFDebugFile {
public:
    ZEFDebugFile() = delete;

    /// Returns the open log file, opening it on first use; null if it cannot be opened
    /// (the next call tries again).
    static FILE *getDebugFile();

    /// Writes text as one record: cut to its first 4095 bytes, with a line end
    /// appended unless it already ends in one, then flushed. Empty or null text, or
    /// no file: nothing is written.
    static void writeDebugFile(const char *text);

private:
    static FILE *m_file;
    static char m_buffer[4096];
};
