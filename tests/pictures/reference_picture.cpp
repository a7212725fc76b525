#include "reference_picture.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "picture_comparison.h"

namespace {

namespace fs = std::filesystem;
using DuiLib::PaintSurface;

bool IsUpdate() {
    const char* const update = std::getenv("BRINDLE_UPDATE_PICTURES");
    return update != nullptr && std::string_view(update) == "1";
}

fs::path FailureFile(const std::string& name, const char* what) {
    fs::create_directories(PICTURES_FAILURE_FOLDER);
    return fs::path(PICTURES_FAILURE_FOLDER) / (name + "." + what + ".png");
}

void RemoveOldFailure(const std::string& name) {
    for (const char* const what : {"actual", "expected", "difference"}) fs::remove(FailureFile(name, what));
}

}  // namespace

testing::AssertionResult MatchesReference(const std::string& name, const PaintSurface& actual) {
    const fs::path reference = fs::path(PICTURES_REFERENCE_FOLDER) / (name + ".png");
    RemoveOldFailure(name);
    if (IsUpdate()) {
        actual.SavePng(reference);
        return testing::AssertionSuccess();
    }
    const fs::path actualFile = FailureFile(name, "actual");
    if (!fs::exists(reference)) {
        actual.SavePng(actualFile);
        return testing::AssertionFailure() << "there is no reference " << reference << "; the picture is " << actualFile
                                           << ". If it is as it should be, run ./test --update-pictures";
    }
    const PaintSurface expected = PaintSurface::LoadPng(reference);
    const PictureDifference difference = Compare(expected, actual);
    if (difference.equal) return testing::AssertionSuccess();
    actual.SavePng(actualFile);
    expected.SavePng(FailureFile(name, "expected"));
    DrawDifference(expected, actual).SavePng(FailureFile(name, "difference"));
    return testing::AssertionFailure() << name << ": " << difference.Words() << "; look at " << actualFile
                                       << ", and beside it .expected.png and .difference.png. If it is as it should be,"
                                       << " run ./test --update-pictures";
}
