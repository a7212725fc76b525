#include "base/child_process.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <thread>

#include "base/child_system.h"
#include "base/file.h"
#include "base/process.h"
#include "wait_until.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#endif

// This program is its own child: with a first argument of these it does what that says, else it runs the tests.
namespace {

std::filesystem::path ownProgram;

using test_support::kPatience;

int Flood(std::size_t size) {
    const std::string bytes(size, 'x');
    std::cerr << bytes << std::endl;
    std::cout << bytes << std::endl;
    return 0;
}

std::string ReadInput() { return std::string(std::istreambuf_iterator<char>(std::cin), {}); }

// A program of its own, which has the same output, and whose input ends with this one.
int WaitWithAnother() {
    const base::ChildProcess other({.command = {base::Utf8FromPath(ownProgram), "wait-for-ever"}});
    std::cout << "both run" << std::endl;
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

#if !defined(_WIN32)
void ListOpenFiles() {
    for (int file = 0; file < 1024; ++file) {
        if (fcntl(file, F_GETFD) >= 0) std::cout << file << std::endl;
    }
}

// Those that programs use; the system's library keeps two more for itself. Only what is ignored comes over a program's
// start; a sanitizer's runtime has set handlers of its own since.
void ListChangedSignals() {
    sigset_t held;
    pthread_sigmask(SIG_BLOCK, nullptr, &held);
    for (int number = 1; number < 32; ++number) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN) std::cout << number << " is ignored" << std::endl;
        if (sigismember(&held, number) != 0) std::cout << number << " is held back" << std::endl;
    }
}
#endif

int BeChild(const std::vector<std::string>& words) {
    const std::string& what = words[0];
    if (what == "exit") return std::stoi(words[1]);
    if (what == "flood") return Flood(std::stoul(words[1]));
    if (what == "wait") return static_cast<int>(ReadInput().size());
    if (what == "wait-with-another") return WaitWithAnother();
    if (what == "echo") std::cout << ReadInput() << std::flush;
    if (what == "folder") std::cout << base::Utf8FromPath(std::filesystem::current_path()) << std::endl;
    if (what == "complain") std::cerr << "a complaint" << std::endl;
    if (what == "variables") {
        for (std::size_t i = 1; i < words.size(); ++i) std::cout << std::getenv(words[i].c_str()) << std::endl;
    }
    if (what == "words") {
        for (std::size_t i = 1; i < words.size(); ++i) std::cout << '[' << words[i] << ']' << std::endl;
    }
    while (what == "wait-for-ever") std::this_thread::sleep_for(std::chrono::hours(1));
#if !defined(_WIN32)
    if (what == "files") ListOpenFiles();
    if (what == "signals") ListChangedSignals();
    if (what == "group") std::cout << getpgid(0) << std::endl;
    if (what == "abort") raise(SIGABRT);
#endif
    return 0;
}

}  // namespace

namespace base {
namespace {

using Kind = ChildStream::Kind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr ChildEnd kWell{};

ChildSettings Settings(std::vector<std::string> words) {
    words.insert(words.begin(), Utf8FromPath(ownProgram));
    return {.command = std::move(words), .input = {Kind::kNothing}, .output = {Kind::kPipe}, .errors = {Kind::kPipe}};
}

// What a child says that ends well.
std::vector<std::string> LinesOf(const ChildSettings& settings) {
    ChildProcess child(settings);
    EXPECT_EQ(child.WaitForEnd(kPatience), kWell);
    EXPECT_TRUE(child.Output().WaitForEnd(kPatience));
    std::vector<std::string> lines = child.Output().Lines();
    for (std::string& line : lines) {
        if (line.ends_with('\r')) line.pop_back();
    }
    return lines;
}

TEST(ChildProcess, ExitStatusesAreTold) {
    EXPECT_EQ(ChildProcess(Settings({"exit", "0"})).WaitForEnd(kPatience), kWell);
    const auto end = ChildProcess(Settings({"exit", "3"})).WaitForEnd(kPatience);
    ASSERT_TRUE(end);
    EXPECT_FALSE(end->IsSuccess());
    EXPECT_EQ(Description(*end), "exit status 3");
}

TEST(ChildProcess, EndsAreDescribedInWords) {
    EXPECT_EQ(Description({.code = 255}), "exit status 255");
    EXPECT_EQ(Description({.signal = 15}), "signal 15");
    EXPECT_EQ(Description({.code = 0xC0000005}), "exception 0xC0000005");
    EXPECT_FALSE(ChildEnd{.signal = 15}.IsSuccess());
}

TEST(ChildProcess, OneThatWasKilledIsToldAsSuch) {
    ChildProcess child(Settings({"wait-for-ever"}));
    EXPECT_TRUE(child.IsRunning());
    const ChildEnd end = child.Kill();
    EXPECT_EQ(Description(end), "signal 9");
    EXPECT_FALSE(child.IsRunning());
    EXPECT_EQ(child.Kill(), end);  // it is told again, and nobody else is killed
}

TEST(ChildProcess, KillEndsWhatTheChildHasStartedWhenItHasAGroupOfItsOwn) {
    ChildSettings settings = Settings({"wait-with-another"});
    settings.ownGroup = true;
    ChildProcess child(settings);
    ASSERT_TRUE(child.Output().WaitForLine("both run", kPatience));
    child.Kill();
    EXPECT_TRUE(child.Output().WaitForEnd(kPatience));  // the other one had it too
}

TEST(ChildProcess, AProgramThatIsNotThereNamesItself) {
    EXPECT_THAT([] { ChildProcess({.command = {"./missing_program"}}); },
                testing::ThrowsMessage<std::runtime_error>(StartsWith("./missing_program: cannot be started: ")));
    try {
        ChildProcess({.command = {"missing_program"}});
        FAIL() << "it runs";
    } catch (const std::runtime_error& error) {
        const std::string said = error.what();
        EXPECT_GT(said.size(), std::string("missing_program: cannot be started: ").size());
    }
}

TEST(ChildProcess, AnOutputFileThatCannotBeMadeNamesItself) {
    ChildSettings settings = Settings({"exit", "0"});
    settings.output = {Kind::kNewFile, "missing_folder/output"};
    EXPECT_THAT([&] { ChildProcess child(settings); },
                testing::ThrowsMessage<std::runtime_error>(HasSubstr("output: cannot be written: ")));
}

TEST(ChildProcess, MuchOutputBlocksNobody) {
    constexpr std::size_t kMuch = 4 * 1024 * 1024;
    ChildProcess child(Settings({"flood", std::to_string(kMuch)}));
    EXPECT_EQ(child.WaitForEnd(kPatience), kWell);
    ASSERT_TRUE(child.Output().WaitForEnd(kPatience) && child.Errors().WaitForEnd(kPatience));
    EXPECT_THAT(child.Output().Text(), StartsWith(std::string(kMuch, 'x')));
    EXPECT_THAT(child.Errors().Text(), StartsWith(std::string(kMuch, 'x')));
}

TEST(ChildProcess, WordsArriveAsTheyAre) {
    const std::vector<std::string> words = {"a b",  "",         "\"",          "a\\\"b", "c:\\d e\\", "\\\\",
                                            "a\tb", "100% ^&|", "caf\xC3\xA9", "'",      "*"};
    ChildSettings settings = Settings({"words"});
    settings.command.insert(settings.command.end(), words.begin(), words.end());
    std::vector<std::string> expected;
    for (const std::string& word : words) expected.push_back('[' + word + ']');
    EXPECT_EQ(LinesOf(settings), expected);
}

TEST(ChildProcess, InputArrivesAndEnds) {
    ChildSettings settings = Settings({"echo"});
    settings.input = {Kind::kPipe};
    ChildProcess child(settings);
    child.Write("one\ntwo\n");
    child.CloseInput();
    EXPECT_EQ(child.WaitForEnd(kPatience), kWell);
    EXPECT_TRUE(child.Output().WaitForLine("two", kPatience));
    EXPECT_FALSE(child.Output().WaitForLine("three", kPatience));  // its output has ended
}

TEST(ChildProcess, WritingToOneThatHasEndedIsNoFailure) {
    ChildSettings settings = Settings({"exit", "0"});
    settings.input = {Kind::kPipe};
    ChildProcess child(settings);
    EXPECT_EQ(child.WaitForEnd(kPatience), kWell);
    child.Write(std::string(1024 * 1024, 'x'));
}

TEST(ChildProcess, AnInputOfNothingEndsAtOnce) {
    EXPECT_EQ(ChildProcess(Settings({"wait"})).WaitForEnd(kPatience), kWell);
}

TEST(ChildProcess, OutputGoesToAFileOrWhereTheErrorsGo) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("child_output_" + std::to_string(std::random_device()()));
    for (const auto* words : {"complain", "folder"}) {
        ChildSettings settings = Settings({words});
        settings.output = {Kind::kAsErrors};
        settings.errors = {Kind::kNewFile, file};
        EXPECT_EQ(ChildProcess(settings).WaitForEnd(kPatience), kWell);
        std::ifstream stream(file);
        std::string line;
        EXPECT_TRUE(std::getline(stream, line)) << words;
    }
    std::filesystem::remove(file);
}

TEST(ChildProcess, RunsInItsFolderWithItsVariables) {
    const std::filesystem::path folder = std::filesystem::canonical(std::filesystem::temp_directory_path());
    ChildSettings settings = Settings({"folder"});
    settings.folder = folder;
    EXPECT_THAT(LinesOf(settings), ElementsAre(Utf8FromPath(folder)));

    settings = Settings({"variables", "CHILD_FIRST", "CHILD_SECOND", "PATH"});
    settings.environment = {{"CHILD_FIRST", "1"}, {"CHILD_FIRST", "one"}, {"CHILD_SECOND", "a = b"}};
    EXPECT_THAT(LinesOf(settings), ElementsAre("one", "a = b", std::getenv("PATH")));
}

TEST(ChildProcess, WaitingEndsWithItsLimitAndWithAStop) {
    ChildSettings settings = Settings({"wait"});
    settings.input = {Kind::kPipe};
    ChildProcess child(settings);
    EXPECT_EQ(child.WaitForEnd(std::chrono::milliseconds(1)), std::nullopt);
    std::stop_source stop;
    std::jthread stopper([&] { stop.request_stop(); });
    EXPECT_EQ(child.WaitForEnd(kPatience, stop.get_token()), std::nullopt);
    EXPECT_TRUE(child.IsRunning());
    child.CloseInput();
    EXPECT_EQ(child.WaitForEnd(kPatience), kWell);
}

TEST(ChildProcess, OneThatIsLetGoLosesItsInput) {
    ChildSettings settings = Settings({"wait"});
    settings.input = {Kind::kPipe};
    auto child = std::make_unique<ChildProcess>(settings);
    ChildProcess other(Settings({"wait-for-ever"}));  // does not hold that input
    ChildProcess last = std::move(*child);
    child.reset();
    EXPECT_TRUE(last.IsRunning());
    last.CloseInput();
    EXPECT_EQ(last.WaitForEnd(kPatience), kWell);
    other.Kill();
}

#if defined(_WIN32)
TEST(ChildProcess, AHandleThatIsInheritedByOthersIsNotThere) {
    const auto file =
        std::filesystem::temp_directory_path() / ("child_handles_" + std::to_string(GetCurrentProcessId()));
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    const HANDLE own = CreateFileW(file.c_str(), GENERIC_WRITE, 0, &inherit, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(own, INVALID_HANDLE_VALUE);
    ChildProcess child(Settings({"wait-for-ever"}));
    CloseHandle(own);
    const HANDLE again = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(again, INVALID_HANDLE_VALUE) << "the child has it open";
    CloseHandle(again);
    child.Kill();
    std::filesystem::remove(file);
}
#else
TEST(ChildProcess, HasItsThreeStreamsAndNothingElse) {
    const int low = dup(STDERR_FILENO);  // neither is closed by itself
    const int high = fcntl(STDERR_FILENO, F_DUPFD, 900);
    ASSERT_GE(high, 900);
    EXPECT_THAT(LinesOf(Settings({"files"})), ElementsAre("0", "1", "2"));
    close(low);
    close(high);
}

TEST(ChildProcess, StartsWithNoSignalHeldBackOrIgnored) {
    sigset_t held, before;
    sigemptyset(&held);
    sigaddset(&held, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    const auto handler = signal(SIGPIPE, SIG_IGN);
    const auto lines = LinesOf(Settings({"signals"}));
    signal(SIGPIPE, handler);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_THAT(lines, testing::IsEmpty());
}

TEST(ChildProcess, HasAGroupOfItsOwnWhereWanted) {
    EXPECT_THAT(LinesOf(Settings({"group"})), ElementsAre(std::to_string(getpgid(0))));
    ChildSettings settings = Settings({"group"});
    settings.ownGroup = true;
    ChildProcess child(settings);
    EXPECT_TRUE(child.Output().WaitForLine(std::to_string(child.Id()), kPatience));
    EXPECT_EQ(child.WaitForEnd(kPatience), kWell);
}

TEST(ChildProcess, ASignalThatEndedItIsTold) {
    const auto end = ChildProcess(Settings({"abort"})).WaitForEnd(kPatience);
    EXPECT_EQ(end, ChildEnd{.signal = SIGABRT});
    ChildProcess asked(Settings({"wait-for-ever"}));
    asked.AskToEnd();
    EXPECT_EQ(asked.WaitForEnd(kPatience), ChildEnd{.signal = SIGTERM});
}
#endif

TEST(WindowsCommandLine, WordsAreQuotedAsProgramsTakeThemApart) {
    EXPECT_EQ(child_system::WindowsCommandLine({"a.exe", "b", "c d", "", "e\"f", "g h\\", "i\\j"}),
              "a.exe b \"c d\" \"\" \"e\\\"f\" \"g h\\\\\" i\\j");
    EXPECT_EQ(child_system::WindowsCommandLine({"\xC3\xA9.exe"}), "\xC3\xA9.exe");
}

TEST(WindowsCommandLine, TheInterpretersTextStaysAsItIs) {
    EXPECT_EQ(child_system::WindowsCommandLine({"cmd.exe", "/d", "/s", "/c", "copy \"a b\" c", "package"}),
              "cmd.exe /d /s /c \"copy \"a b\" c\"");
}

}  // namespace
}  // namespace base

int main(int argc, char** argv) {
    ownProgram = std::filesystem::absolute(argv[0]);
    const base::Arguments arguments(argc, argv);
    if (arguments.Count() > 1 && arguments.Values()[1][0] != '-') {
        return BeChild({arguments.Values() + 1, arguments.Values() + arguments.Count()});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
