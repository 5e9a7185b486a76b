#include "zefcore/base/ZEFDebugFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace fs = std::filesystem;

namespace {
constexpr std::size_t kMaxTextBytes = 4095;

std::string readAll(const fs::path &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
} // namespace

// One test: the file opens once per process, in the directory current at that moment.
TEST(ZEFDebugFile, RecordsAreCutTerminatedAndFlushed) {
    const fs::path home = fs::current_path();
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    const fs::path dir = fs::temp_directory_path() / ("zefcore-debugfile-" + std::to_string(stamp));
    ASSERT_TRUE(fs::create_directories(dir));
    const fs::path log = dir / "debug-file.txt";
    std::ofstream(log) << "left from an earlier run\n";

    fs::current_path(dir);
    ZEFDebugFile::writeDebugFile(""); // opens, and so empties, the file; writes nothing
    FILE *file = ZEFDebugFile::getDebugFile();
    fs::current_path(home);
    ASSERT_TRUE(file != nullptr && ZEFDebugFile::getDebugFile() == file);
    EXPECT_EQ(readAll(log), "");

    // Read back at once: each record is on disk without closing the file. A line end is
    // added where missing; a longer text is cut to the limit, one that ends in a line
    // end exactly at the limit is written unchanged.
    std::string longText(5000, 'x'), exact(kMaxTextBytes - 1, 'w');
    longText[kMaxTextBytes - 1] = 'y';
    longText[kMaxTextBytes] = 'z';
    exact += '\n';
    ZEFDebugFile::writeDebugFile("first");
    EXPECT_EQ(readAll(log), "first\n");
    for (const char *text : {"second\n", longText.c_str(), exact.c_str(), static_cast<const char *>(nullptr)})
        ZEFDebugFile::writeDebugFile(text);
    EXPECT_EQ(readAll(log), "first\nsecond\n" + longText.substr(0, kMaxTextBytes) + "\n" + exact);

    std::error_code ignored;
    fs::remove_all(dir, ignored);
}
