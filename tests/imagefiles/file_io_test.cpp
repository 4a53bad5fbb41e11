#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "test_support.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

const Bytes Content{'B', 'M', 1, 2, 3};

Bytes contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void put(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

class FileIoTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = lumiran::testing::testFolder("lumiran-fileio-");
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    // Everything in the folder: no temporary may be left behind.
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const auto& entry : fs::directory_iterator(dir_))
            out.push_back(entry.path().filename().string());
        std::sort(out.begin(), out.end());
        return out;
    }

    fs::path dir_;
};

TEST_F(FileIoTest, ReplacementKeepsTheOldModeAndANewFileFollowsTheUmask) {
    for (const mode_t mode : {0600, 0640, 0604, 0755}) {
        const fs::path target = dir_ / "private.bmp";
        put(target, "old");
        ASSERT_EQ(::chmod(target.c_str(), mode), 0);
        writeFileAtomically(target, Content);
        struct stat st {};
        ASSERT_EQ(::stat(target.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, mode) << std::oct << mode;
        EXPECT_EQ(contents(target), Content);
    }
    const mode_t mask = ::umask(022);
    writeFileAtomically(dir_ / "new.bmp", Content);
    ::umask(mask);
    struct stat st {};
    ASSERT_EQ(::stat((dir_ / "new.bmp").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0644u);
    EXPECT_EQ(names(), (std::vector<std::string>{"new.bmp", "private.bmp"}));
}

TEST_F(FileIoTest, SymlinksAreFollowedAndTheirTargetReplacedInItsOwnFolder) {
    fs::create_directories(dir_ / "real");
    put(dir_ / "real" / "a.bmp", "old");
    fs::create_symlink("real/a.bmp", dir_ / "link.bmp");
    fs::create_symlink(dir_ / "link.bmp", dir_ / "chain.bmp");
    fs::create_symlink("real/missing.bmp", dir_ / "dangling.bmp");
    writeFileAtomically(dir_ / "chain.bmp", Content);
    writeFileAtomically(dir_ / "dangling.bmp", Content);
    EXPECT_TRUE(fs::is_symlink(dir_ / "link.bmp"));
    EXPECT_TRUE(fs::is_symlink(dir_ / "chain.bmp"));
    EXPECT_TRUE(fs::is_symlink(dir_ / "dangling.bmp"));
    EXPECT_EQ(contents(dir_ / "real" / "a.bmp"), Content);
    EXPECT_EQ(contents(dir_ / "real" / "missing.bmp"), Content);
    std::vector<std::string> real;
    for (const auto& entry : fs::directory_iterator(dir_ / "real"))
        real.push_back(entry.path().filename().string());
    std::sort(real.begin(), real.end());
    EXPECT_EQ(real, (std::vector<std::string>{"a.bmp", "missing.bmp"}));
}

TEST_F(FileIoTest, SpecialFilesAreWrittenThroughNotReplaced) {
    // A device, directly and behind a link.
    fs::create_symlink("/dev/null", dir_ / "null");
    writeFileAtomically("/dev/null", Content);
    writeFileAtomically(dir_ / "null", Content);
    EXPECT_TRUE(fs::is_symlink(dir_ / "null"));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));

    const fs::path fifo = dir_ / "pipe";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    Bytes received;
    std::thread reader([&] { received = contents(fifo); });
    writeFileAtomically(fifo, Content);
    reader.join();
    EXPECT_EQ(received, Content);
    EXPECT_TRUE(fs::is_fifo(fifo));
    EXPECT_EQ(names(), (std::vector<std::string>{"null", "pipe"}));
    EXPECT_THROW(writeFileAtomically(dir_, Content), ImageFileError);
}

TEST_F(FileIoTest, AFileMadeInRowsIsWrittenWholeOrNotAtAll) {
    const Bytes header{'B', 'M', 9};
    const auto byteOf = [](std::size_t row, std::size_t j) {
        return static_cast<std::uint8_t>(row * 7 + j);
    };
    struct Case {
        std::size_t rows, rowBytes;
    };
    // No rows; a few pieces on one thread; many on two; a row over a piece.
    for (const Case c : {Case{0, 4}, Case{3, 5}, Case{5000, 1000}, Case{2, 600000}}) {
        const fs::path target = dir_ / "rows.bmp";
        std::size_t nextRow = 0;
        writeFileAtomically(
            target,
            FileInRows{header, c.rowBytes, c.rows,
                       [&](std::size_t first, std::size_t count, std::span<std::uint8_t> out) {
                           // In order, each row once.
                           EXPECT_EQ(first, nextRow);
                           nextRow = first + count;
                           ASSERT_EQ(out.size(), count * c.rowBytes);
                           for (std::size_t j = 0; j < out.size(); ++j)
                               out[j] = byteOf(first + j / c.rowBytes, j % c.rowBytes);
                       }});
        Bytes expected = header;
        for (std::size_t r = 0; r < c.rows; ++r) {
            for (std::size_t j = 0; j < c.rowBytes; ++j)
                expected.push_back(byteOf(r, j));
        }
        EXPECT_EQ(contents(target), expected) << c.rows << " rows";
        EXPECT_EQ(nextRow, c.rows);
    }
    // A failure while the rows are made leaves the old file as it was.
    put(dir_ / "rows.bmp", "old");
    for (const std::size_t failingRow : {0u, 2999u, 4999u}) {
        EXPECT_THROW(writeFileAtomically(dir_ / "rows.bmp",
                                         FileInRows{header, 1000, 5000,
                                                    [&](std::size_t first, std::size_t count,
                                                        std::span<std::uint8_t>) {
                                                        if (failingRow < first + count)
                                                            throw std::runtime_error("no rows");
                                                    }}),
                     std::runtime_error);
        EXPECT_EQ(contents(dir_ / "rows.bmp"), (Bytes{'o', 'l', 'd'}));
        EXPECT_EQ(names(), std::vector<std::string>{"rows.bmp"});
    }
}

TEST_F(FileIoTest, ANameAtTheLengthLimitCanBeSaved) {
    const std::string name = std::string(251, 'n') + ".bmp";
    ASSERT_EQ(name.size(), 255u);
    put(dir_ / name, "old");
    writeFileAtomically(dir_ / name, Content);
    EXPECT_EQ(contents(dir_ / name), Content);
    EXPECT_EQ(names(), std::vector<std::string>{name});
}

TEST_F(FileIoTest, ATemporaryIsRemovedWhenTheProcessIsEndedBySignal) {
    for (const int signalNumber : {SIGINT, SIGTERM}) {
        const fs::path temporary = dir_ / ".lumiran.tmp123456";
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            put(temporary, "partial");
            SignalSafeTemporary guard(temporary);
            ::raise(signalNumber);
            ::_exit(0); // not reached: the signal still ends the process
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signalNumber);
        EXPECT_FALSE(fs::exists(temporary));
    }
}

} // namespace
} // namespace lumiran
