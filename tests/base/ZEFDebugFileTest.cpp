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
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(ZEFDebugFile::getDebugFile(), file);
    EXPECT_EQ(readAll(log), "");

    // Read back at once: each record is on disk without closing the file.
    ZEFDebugFile::writeDebugFile("first");
    EXPECT_EQ(readAll(log), "first\n");
    ZEFDebugFile::writeDebugFile("second\n");
    EXPECT_EQ(readAll(log), "first\nsecond\n");

    std::string longText(5000, 'x');
    longText[kMaxTextBytes - 1] = 'y';
    longText[kMaxTextBytes] = 'z';
    ZEFDebugFile::writeDebugFile(longText.c_str());
    const std::string cut = longText.substr(0, kMaxTextBytes) + "\n";
    EXPECT_EQ(readAll(log), "first\nsecond\n" + cut);

    // A text that ends in a line end exactly at the limit is written unchanged.
    std::string exact(kMaxTextBytes - 1, 'w');
    exact += '\n';
    ZEFDebugFile::writeDebugFile(exact.c_str());
    ZEFDebugFile::writeDebugFile(nullptr);
    EXPECT_EQ(readAll(log), "first\nsecond\n" + cut + exact);

    std::error_code ignored;
    fs::remove_all(dir, ignored);
}
