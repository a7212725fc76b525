#include "pipe_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "ipc/linux/another_user.h"
#include "temporary_folder.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

mode_t ModeOf(const fs::path& folder) {
    struct stat info {};
    EXPECT_EQ(lstat(folder.c_str(), &info), 0) << folder;
    return info.st_mode & 07777;
}

class PipeFolder : public ::testing::Test {
protected:
    const test_support::TemporaryFolder m_folder;
};

TEST_F(PipeFolder, AMissingOneIsMadeForThisUserOnly) {
    const fs::path folder = m_folder / "new";
    EXPECT_THAT(PreparePipeFolders(folder), ElementsAre(folder));
    EXPECT_EQ(ModeOf(folder), 0700u);
    EXPECT_THAT(PreparePipeFolders(folder), ElementsAre(folder));
    EXPECT_THAT(PipeFolders(folder), ElementsAre(folder));
}

TEST_F(PipeFolder, AMissingOneIsNotMadeByWhoeverLooksForAPipe) {
    EXPECT_THAT([&] { PipeFolders(m_folder / "new"); }, ThrowsMessage<std::runtime_error>(HasSubstr("No such file")));
    EXPECT_FALSE(fs::exists(m_folder / "new"));
}

TEST_F(PipeFolder, OneOpenToOthersIsRefused) {
    for (const mode_t mode : {0777, 0710, 0704, 01777}) {
        chmod(m_folder.Path().c_str(), mode);
        const auto refusal = ThrowsMessage<std::runtime_error>(
            AllOf(HasSubstr(m_folder.Path().string()), HasSubstr("open to other users")));
        EXPECT_THAT([&] { PreparePipeFolders(m_folder); }, refusal);
        EXPECT_THAT([&] { PipeFolders(m_folder); }, refusal);
    }
}

TEST_F(PipeFolder, OneOfAnotherUserIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
    ASSERT_EQ(chown(m_folder.Path().c_str(), 12345, 12345), 0);
    const auto refusal = ThrowsMessage<std::runtime_error>(HasSubstr("belongs to another user"));
    EXPECT_THAT([&] { PreparePipeFolders(m_folder); }, refusal);
    EXPECT_THAT([&] { PipeFolders(m_folder); }, refusal);
}

TEST_F(PipeFolder, WhatIsNoFolderIsRefused) {
    std::ofstream(m_folder / "file") << "x";
    EXPECT_THAT([&] { PreparePipeFolders(m_folder / "file"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("not a folder")));
    fs::create_symlink(m_folder, m_folder / "link");
    EXPECT_THAT([&] { PreparePipeFolders(m_folder / "link"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("not a folder")));
    EXPECT_THAT([&] { PreparePipeFolders(m_folder / "no" / "parent"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("No such file")));
}

// Of a user who has none yet. Looked at as that user.
class FallbackFolder : public ::testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
    }

    fs::path Folder() const { return m_user.Folder(); }
    fs::path StandIn(const char* end) const { return Folder().string() + end; }
    std::vector<fs::path> Prepared() { return Of(PreparePipeFolders); }
    std::vector<fs::path> Found() { return Of(PipeFolders); }

private:
    std::vector<fs::path> Of(std::vector<fs::path> (*look)(const fs::path&)) {
        std::vector<fs::path> folders;
        m_user.Do([&] { folders = look(FallbackPipeFolder()); });
        return folders;
    }

protected:
    const ipc_test::UserWithoutAFolder m_user;
};

TEST_F(FallbackFolder, IsTheUsersOwnWhereNobodyIsInTheWay) {
    EXPECT_THAT(Prepared(), ElementsAre(Folder()));
    EXPECT_EQ(ModeOf(Folder()), 0700u);
    EXPECT_THAT(Found(), ElementsAre(Folder()));
}

TEST_F(FallbackFolder, HasAStandInWhereAnotherUserHasItsName) {
    const struct {
        const char* what;
        void (*make)(const fs::path&);
    } obstacles[] = {
        {"a folder", [](const fs::path& path) { ASSERT_EQ(mkdir(path.c_str(), 0777), 0); }},
        {"a file", [](const fs::path& path) { std::ofstream(path) << "x"; }},
        {"a link", [](const fs::path& path) { fs::create_symlink("/tmp", path); }},
    };
    for (const auto& obstacle : obstacles) {
        SCOPED_TRACE(obstacle.what);
        m_user.StrangerDoes([&] { obstacle.make(Folder()); });
        const std::vector<fs::path> prepared = Prepared();
        ASSERT_EQ(prepared.size(), 1u);
        EXPECT_THAT(prepared[0].string(), ::testing::StartsWith(Folder().string() + "-"));
        EXPECT_EQ(ModeOf(prepared[0]), 0700u);
        EXPECT_EQ(Found(), prepared);
        EXPECT_EQ(Prepared(), prepared) << "made once";
        m_user.RemoveFolders();
    }
}

TEST_F(FallbackFolder, TheStandInOfAStrangerIsLookedOver) {
    m_user.StrangerDoes([&] {
        mkdir(Folder().c_str(), 0700);
        mkdir(StandIn("-000000").c_str(), 0700);
        fs::create_symlink("/tmp", StandIn("-000001"));
    });
    const std::vector<fs::path> prepared = Prepared();
    ASSERT_EQ(prepared.size(), 1u);
    EXPECT_THAT(prepared[0], ::testing::AllOf(::testing::Ne(StandIn("-000000")), ::testing::Ne(StandIn("-000001"))));
    EXPECT_EQ(Found(), prepared);
}

TEST_F(FallbackFolder, IsFoundOnWhenWhatWasInTheWayHasGone) {
    m_user.StrangerDoes([&] { mkdir(Folder().c_str(), 0777); });
    const std::vector<fs::path> before = Prepared();
    m_user.StrangerDoes([&] { rmdir(Folder().c_str()); });
    EXPECT_EQ(Found(), before);
    EXPECT_EQ(Prepared(), before);
}

TEST_F(FallbackFolder, HasAllThatTheUserMadeInTheOrderOfTheirNames) {
    m_user.Do([&] {
        for (const char* end : {"-bbbbbb", "", "-aaaaaa"}) mkdir(StandIn(end).c_str(), 0700);
        mkdir(StandIn("-cccccc").c_str(), 0755);
    });
    EXPECT_THAT(Found(), ElementsAre(Folder(), StandIn("-aaaaaa"), StandIn("-bbbbbb")));
}

TEST_F(FallbackFolder, OfThisUserButOpenIsRefused) {
    m_user.Do([&] {
        mkdir(Folder().c_str(), 0700);
        chmod(Folder().c_str(), 0755);
        EXPECT_THAT([&] { PreparePipeFolders(Folder()); },
                    ThrowsMessage<std::runtime_error>(HasSubstr("open to other users")));
    });
}

}  // namespace
}  // namespace ipc_client
