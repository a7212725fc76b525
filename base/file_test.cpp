#include "base/file.h"

#include <gmock/gmock.h>

#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "base/reason.h"
#include "temporary_folder.h"

namespace base {
namespace {

using test_support::ReadFile;
using test_support::TemporaryFolder;
using test_support::WriteFile;
using testing::ElementsAre;

// The system, with what is asked of it in order; "sync" tells how much the file held by then.
class WatchedSystem : public FileSystem {
public:
    void Sync(const OwnedHandle& file, const std::filesystem::path& path) override {
        m_calls.push_back("sync " + Name(path) + " of " + std::to_string(Size(file, path)));
        FileSystem::Sync(file, path);
    }
    void Rename(const std::filesystem::path& from, const std::filesystem::path& path) override {
        m_calls.push_back("rename " + Name(from) + " to " + Name(path));
        FileSystem::Rename(from, path);
    }
    void SyncFolder(const std::filesystem::path& path) override {
        m_calls.push_back("sync folder " + Utf8FromPath(path));
        FileSystem::SyncFolder(path);
    }

    std::vector<std::string> m_calls;

private:
    static std::string Name(const std::filesystem::path& path) { return Utf8FromPath(path.filename()); }
};

// A disk that takes a few bytes a call, or none from a call on.
class NarrowSystem : public FileSystem {
public:
    explicit NarrowSystem(int callsUntilFull) : m_callsUntilFull(callsUntilFull) {}
    std::size_t Append(const OwnedHandle& file, const char* bytes, std::size_t size,
                       const std::filesystem::path& path) override {
        if (m_callsUntilFull-- == 0) {
            throw std::system_error(std::make_error_code(std::errc::no_space_on_device), Utf8FromPath(path));
        }
        return FileSystem::Append(file, bytes, std::min<std::size_t>(size, 3), path);
    }

private:
    int m_callsUntilFull;
};

TEST(File, GrowsAtItsEnd) {
    const TemporaryFolder folder;
    for (const char* text : {"abc", "def"}) {
        AppendFile file(folder / "file");
        file.Append(text);
        file.Sync();
    }
    EXPECT_EQ(ReadFile(folder / "file"), "abcdef");
    AppendFile file(folder / "file");
    EXPECT_EQ(file.Size(), 6u);
    file.Clear();
    EXPECT_EQ(file.Size(), 0u);
}

TEST(File, GrowsAtItsEndWhoeverElseWritesThere) {
    const TemporaryFolder folder;
    AppendFile one(folder / "file");
    AppendFile other(folder / "file");
    one.Append("a");
    other.Append("b");
    one.Append("c");
    EXPECT_EQ(ReadFile(folder / "file"), "abc");
}

TEST(File, ErrorsNameTheFile) {
    const TemporaryFolder folder;
    const auto missing = folder / "missing" / "file";
    try {
        AppendFile file(missing);
        FAIL() << "opened";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
        EXPECT_EQ(Reason(error), Utf8FromPath(missing) + ": " + Reason(error.code()));
    }
    if (std::filesystem::exists("/dev/full")) {
        AppendFile full("/dev/full");
        EXPECT_THAT([&] { full.Append("x"); },
                    testing::ThrowsMessage<std::system_error>("/dev/full: No space left on device"));
    }
}

TEST(File, WhatTheSystemTakesInPiecesIsWrittenWhole) {
    const TemporaryFolder folder;
    NarrowSystem system(100);
    AppendText(folder / "file", "in many pieces", system);
    EXPECT_EQ(ReadFile(folder / "file"), "in many pieces");
}

TEST(File, LinesOfSeveralThreadsStayWhole) {
    const TemporaryFolder folder;
    {
        std::vector<std::jthread> threads;
        for (const char letter : {'a', 'b', 'c'}) {
            threads.emplace_back([&folder, letter] {
                for (int i = 0; i < 50; ++i) AppendText(folder / "file", std::string(300, letter) + "\n");
            });
        }
    }
    std::ifstream file(folder / "file");
    int lines = 0;
    for (std::string line; std::getline(file, line); ++lines) ASSERT_EQ(line, std::string(300, line.at(0)));
    EXPECT_EQ(lines, 150);
}

TEST(File, AReplacedOneHasTheNewContentAndNothingIsLeftBeside) {
    const TemporaryFolder folder;
    WriteFile(folder / "file.new", "left by a crash, and longer");
    ReplaceContent(folder / "file", "one");
    EXPECT_EQ(ReadFile(folder / "file"), "one");
    ReplaceContent(folder / "file", "two");
    EXPECT_EQ(ReadFile(folder / "file"), "two");
    EXPECT_FALSE(std::filesystem::exists(folder / "file.new"));
}

// Copied into the old file, the new content would show under the other name too, and half of it to who reads meanwhile.
TEST(File, AReplacedOneIsAnotherFileAndTheOldOneKeepsItsContent) {
    const TemporaryFolder folder;
    WriteFile(folder / "file", "the old content");
    std::filesystem::create_hard_link(folder / "file", folder / "other name");
    ReplaceContent(folder / "file", "new");
    EXPECT_EQ(ReadFile(folder / "file"), "new");
    EXPECT_EQ(ReadFile(folder / "other name"), "the old content");
}

TEST(File, WhoReadsTheOldOneReadsItToItsEnd) {
#ifdef _WIN32
    GTEST_SKIP() << "the standard library's files hold their names there";
#endif
    const TemporaryFolder folder;
    const std::string old(100'000, 'o');  // more than a reader takes at once
    WriteFile(folder / "file", old);
    std::ifstream reader(folder / "file");
    std::string text(4, '\0');
    reader.read(text.data(), 4);
    ReplaceContent(folder / "file", "new");
    std::string rest;
    std::getline(reader, rest);
    EXPECT_TRUE(text + rest == old);
}

TEST(File, AReplacedOneIsOnTheDiskBeforeItGetsTheName) {
    const TemporaryFolder folder;
    WatchedSystem system;
    ReplaceContent(folder / "file", "four", system);
    EXPECT_THAT(system.m_calls, ElementsAre("sync file.new of 4", "rename file.new to file",
                                            "sync folder " + Utf8FromPath(folder.Path())));
}

TEST(File, AFileWithoutAFolderInItsNameLiesInTheCurrentOne) {
    class NoRename : public WatchedSystem {
    public:
        void Rename(const std::filesystem::path&, const std::filesystem::path&) override {}
    } system;
    RenameDurably("a", "b", system);
    EXPECT_THAT(system.m_calls, ElementsAre("sync folder ."));
}

TEST(File, AFullDiskLeavesTheOldContent) {
    const TemporaryFolder folder;
    WriteFile(folder / "file", "old");
    NarrowSystem system(1);
    EXPECT_THROW(ReplaceContent(folder / "file", "longer", system), std::system_error);
    EXPECT_EQ(ReadFile(folder / "file"), "old");
}

TEST(FileStamp, AnotherContentHasAnotherStamp) {
    const TemporaryFolder folder;
    const auto path = folder / "x";
    WriteFile(path, "one");
    const auto first = StampOf(path);
    ASSERT_TRUE(first);
    EXPECT_EQ(StampOf(path), first);
    WriteFile(path, "longer");
    EXPECT_NE(StampOf(path), first);
    std::filesystem::remove(path);
    EXPECT_FALSE(StampOf(path));
}

TEST(FileStamp, AFileThatReplacesAnotherHasAnotherStamp) {
    const TemporaryFolder folder;
    const auto path = folder / "x";
    WriteFile(path, "one");
    const auto first = StampOf(path);
    const auto next = folder / "next";
    WriteFile(next, "two");
    std::filesystem::last_write_time(next, std::filesystem::last_write_time(path));
    std::filesystem::rename(next, path);
    EXPECT_NE(StampOf(path), first);
}

TEST(FileStamp, AChangeOfJustNowIsNotSettled) {
    const TemporaryFolder folder;
    WriteFile(folder / "x", "one");
    const FileStamp now = *StampOf(folder / "x");
    constexpr std::int64_t kHour_ns = 3'600'000'000'000;
    EXPECT_FALSE(IsSettled(now));
    FileStamp old = now;
    old.written_ns -= kHour_ns;
    EXPECT_FALSE(IsSettled(old)) << "a time that was set back";
    old.changed_ns -= kHour_ns;
    EXPECT_TRUE(IsSettled(old));
    FileStamp future = old;
    future.written_ns += 2 * kHour_ns;
    EXPECT_FALSE(IsSettled(future));
}

constexpr const char* kName = "ger\xC3\xA4t \xE6\xBC\xA2\xF0\x9F\x94\x96.json";

TEST(Path, SurvivesTheWayThroughItsText) {
    EXPECT_EQ(Utf8FromPath(PathFromUtf8(kName)), kName);
    EXPECT_EQ(Utf8FromPath({}), "");
    EXPECT_EQ(PathFromUtf8("a/b").filename(), "b");
}

TEST(Path, IsNotReadInTheSystemsCodePage) {
    EXPECT_TRUE(PathFromUtf8(kName).u8string() == std::u8string(reinterpret_cast<const char8_t*>(kName)));
}

TEST(Path, TheProgramsFolderHoldsThisTest) {
    const std::filesystem::path folder = ProgramFolder();
    EXPECT_TRUE(folder.is_absolute());
    EXPECT_TRUE(std::filesystem::exists(folder / "base_test") || std::filesystem::exists(folder / "base_test.exe"));
}

}  // namespace
}  // namespace base
