// The file that names the accessories' companion programs.

#include <stdexcept>

#include "accessory_update_config/accessory_update_config.h"
#include "fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        AccessoryUpdateConfig::Load(fuzz::WriteInput(fuzz::TextOf(data, size)));
    } catch (const std::runtime_error& wrong) {
        fuzz::Require(*wrong.what() != '\0', "an error says what is wrong");
    }
    return 0;
}
