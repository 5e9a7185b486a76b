// The debug log file.
#include "zefcore/base/ZEFDebugFile.h"

#include <cstring>

namespace {
constexpr std::size_t kMaxTextBytes = 0xFFF; // the buffer keeps one byte for the line end
constexpr char kDebugFileName[] = "debug-file.txt";
} // namespace

FILE *ZEFDebugFile::m_file = nullptr;
char ZEFDebugFile::m_buffer[4096];

FILE *ZEFDebugFile::getDebugFile() {
    if (!m_file)
        m_file = std::fopen(kDebugFileName, "w");
    return m_file;
}

void ZEFDebugFile::writeDebugFile(const char *text) {
    static_assert(sizeof(m_buffer) > kMaxTextBytes, "room for an appended line end");
    FILE *file = getDebugFile();
    if (!file || !text)
        return;
    std::size_t length = std::strlen(text);
    if (length == 0)
        return;
    if (length > kMaxTextBytes)
        length = kMaxTextBytes;
    std::memcpy(m_buffer, text, length);
    if (m_buffer[length - 1] != '\n')
        m_buffer[length++] = '\n';
    std::fwrite(m_buffer, 1, length, file);
    std::fflush(file);
}
