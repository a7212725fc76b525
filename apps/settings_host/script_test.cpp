#include "script.h"

#include <gtest/gtest.h>

#include <sstream>

namespace settings_host::script {
namespace {

std::vector<Command> Read(const std::string& text) {
    std::istringstream input(text);
    Reader reader(input, "tour.script");
    std::vector<Command> commands;
    for (Command command; reader.Next(command);) commands.push_back(command);
    return commands;
}

TEST(Script, CommentsAndEmptyLinesAreSkipped) { EXPECT_TRUE(Read("\n# all\n   \t\n").empty()); }

TEST(Script, AClickNamesAControl) {
    const auto commands = Read("click \"two words\"\nclick pen-01updateBtn # now\r\n");
    EXPECT_EQ(std::get<Click>(commands.at(0)).control, "two words");
    EXPECT_EQ(std::get<Click>(commands.at(1)).control, "pen-01updateBtn");
}

TEST(Script, AWaitHasAConditionAndALimit) {
    const auto commands = Read("wait text X1progress \"Try again\" within 60\nwait running 3\nwait nothing-left");
    const Wait& text = std::get<Wait>(commands.at(0));
    EXPECT_EQ(text.condition, "text");
    EXPECT_EQ(text.control, "X1progress");
    EXPECT_EQ(text.text, "Try again");
    EXPECT_EQ(text.limit.count(), 60);
    EXPECT_EQ(std::get<Wait>(commands.at(1)).number, 3);
    EXPECT_EQ(std::get<Wait>(commands.at(2)).limit.count(), 10);
}

TEST(Script, AWaitForTheFocusNamesAControl) {
    const auto commands = Read("wait focus penupdateBtn within 5");
    const Wait& wait = std::get<Wait>(commands.at(0));
    EXPECT_EQ(wait.condition, "focus");
    EXPECT_EQ(wait.control, "penupdateBtn");
    EXPECT_EQ(wait.limit.count(), 5);
}

TEST(Script, ThePointerPlacesAndPicturesNameWhatTheyAreAbout) {
    const auto commands = Read("hover X1stopBtn\nwhere X1hor\npicture \"the list.png\"\nwait tip X1stopBtn");
    EXPECT_EQ(std::get<Hover>(commands.at(0)).control, "X1stopBtn");
    EXPECT_EQ(std::get<Where>(commands.at(1)).control, "X1hor");
    EXPECT_EQ(std::get<Picture>(commands.at(2)).file, "the list.png");
    EXPECT_EQ(std::get<Wait>(commands.at(3)).condition, "tip");
    EXPECT_EQ(std::get<Wait>(commands.at(3)).control, "X1stopBtn");
}

TEST(Script, WaitsTakeAPercentage) {
    EXPECT_EQ(std::get<Waits>(Read("waits 0").at(0)).percent, 0);
    EXPECT_EQ(std::get<Waits>(Read("waits 250").at(0)).percent, 250);
}

TEST(Script, APageIsLeftAsItIsOrWithItsWaitsSetMeanwhile) {
    EXPECT_EQ(std::get<Close>(Read("close").at(0)).waits, std::nullopt);
    EXPECT_EQ(std::get<Close>(Read("close waits 5").at(0)).waits, 5);
}

TEST(Script, SaidWordsAreTakenAsTheyStand) {
    EXPECT_EQ(std::get<Words>(Read("  say One update: \"now\"").at(0)).text, "One update: \"now\"");
    EXPECT_EQ(std::get<Words>(Read("say").at(0)).text, "");
}

struct Faulty {
    const char* text;
    const char* message;
};

TEST(Script, AnErrorNamesFileAndLine) {
    const Faulty cases[] = {
        {"\nclick", "tour.script:2: a control's name is missing"},
        {"klick X", "tour.script:1: unknown command \"klick\""},
        {"wait glowing X", "tour.script:1: unknown condition \"glowing\""},
        {"waits -1", "tour.script:1: the percentage is below 0"},
        {"picture", "tour.script:1: a file's name is missing"},
        {"where X Y", "tour.script:1: \"Y\" is more than the command takes"},
        {"wait focus", "tour.script:1: a control's name is missing"},
        {"wait text X \"open", "tour.script:1: a quotation mark is not closed"},
        {"wait height tall", "tour.script:1: the number: \"tall\" is not a whole number"},
        {"wait shown X for 3", "tour.script:1: \"within\" is expected, not \"for\""},
        {"close now", "tour.script:1: \"waits\" is expected, not \"now\""},
        {"close waits", "tour.script:1: the percentage is missing"},
    };
    for (const Faulty& c : cases) {
        try {
            Read(c.text);
            ADD_FAILURE() << c.text;
        } catch (const Error& error) {
            EXPECT_STREQ(error.what(), c.message);
        }
    }
}

}  // namespace
}  // namespace settings_host::script
