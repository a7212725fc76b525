#include "base/reason.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "base/file.h"

namespace base {
namespace {

// "No such file or directory", "The system cannot find the file specified", "File not found": a number that both
// systems have.
constexpr int kNoFile = 2;

class PipeCategory : public std::error_category {
public:
    const char* name() const noexcept override { return "asio.system"; }
    std::string message(int) const override { return "in the system's code page"; }
};

class OtherCategory : public std::error_category {
public:
    const char* name() const noexcept override { return "other"; }
    std::string message(int) const override { return "its own text"; }
};

TEST(Reason, IsOneLineWithoutAFullStop) {
    const std::string reason = Reason(kNoFile);
    EXPECT_NE(reason.find_first_of("Nn"), std::string::npos) << reason;
    EXPECT_EQ(reason.find_first_of("\r\n"), std::string::npos) << reason;
    EXPECT_NE(reason.back(), '.');
    EXPECT_NE(reason.back(), ' ');
    EXPECT_NE(reason, Reason(5));
}

TEST(Reason, OfACodeOfTheSystemIsThatOfItsNumber) {
    EXPECT_EQ(Reason(std::error_code(kNoFile, std::system_category())), Reason(kNoFile));
}

TEST(Reason, OfAnotherCategoryIsItsOwnText) {
    const OtherCategory other;
    EXPECT_EQ(Reason(std::error_code(kNoFile, other)), "its own text");
    EXPECT_EQ(Reason(std::make_error_code(std::errc::timed_out)), std::make_error_code(std::errc::timed_out).message());
}

TEST(Reason, OfThePipeLibrarysCodesIsUtf8) {
    const PipeCategory pipe;
    const std::string reason = Reason(std::error_code(kNoFile, pipe));
#ifdef _WIN32
    EXPECT_EQ(reason, Reason(kNoFile));
#else
    EXPECT_EQ(reason, "in the system's code page");
#endif
}

TEST(Reason, OfTheLastCallIsAskedFromTheSystem) {
    std::FILE* const file = std::fopen("no such file", "rb");
    const std::string reason = LastReason();
    ASSERT_EQ(file, nullptr);
    EXPECT_EQ(reason, Reason(kNoFile));
}

TEST(Reason, OfAFileErrorNamesThePathInUtf8) {
    const auto path = PathFromUtf8("\xE6\xBC\xA2 not here");
    try {
        (void)std::filesystem::file_size(path);
        FAIL() << "the file is there";
    } catch (const std::filesystem::filesystem_error& error) {
        const std::string reason = Reason(error);
        EXPECT_NE(reason.find("[\xE6\xBC\xA2 not here]"), std::string::npos) << reason;
        EXPECT_NE(reason.find(Reason(error.code())), std::string::npos) << reason;
    }
}

TEST(Reason, OfASystemErrorKeepsWhatWasSaidBesideIt) {
    const std::system_error error(kNoFile, std::system_category(), "pipe");
    EXPECT_EQ(Reason(error), "pipe: " + Reason(kNoFile));
}

TEST(Reason, OfAnotherExceptionIsWhatItSays) { EXPECT_EQ(Reason(std::runtime_error("no layout")), "no layout"); }

}  // namespace
}  // namespace base
