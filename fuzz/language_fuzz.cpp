// A language file, and the numbers that are written as it says.

#include <limits>
#include <stdexcept>

#include "duilib/diagnostics.h"
#include "duilib/ui_culture.h"
#include "fuzz_target.h"
#include "kernel/ui_turn.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const kernel::UiTurn turn;
    DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    culture.Clear();
    try {
        culture.Load(fuzz::WriteInput(fuzz::TextOf(data, size)));
    } catch (const std::runtime_error&) {
        fuzz::Require(culture.GetLanguage().empty(), "a file that is wrong changes nothing");
        return 0;
    }
    fuzz::Require(!culture.GetLanguage().empty(), "a language has a name");
    for (const int number : {0, 1234567890, std::numeric_limits<int>::min()}) {
        fuzz::Require(!culture.GetNumberString(number).Str().empty(), "a number is written");
        fuzz::Require(!culture.GetPercentString(number).Str().empty(), "a percentage is written");
    }
    static_cast<void>(culture.GetBindString(L"bind='IDS_ACCESSORIES_RETRY'"));
    return 0;
}
