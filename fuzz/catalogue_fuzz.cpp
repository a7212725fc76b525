// The catalogue file of the update service.

#include <stdexcept>

#include "catalogue.h"
#include "fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto catalogue = update_service::ReadCatalogue(fuzz::WriteInput(fuzz::TextOf(data, size)));
        for (const update_service::Accessory& accessory : catalogue.accessories) {
            fuzz::Require(Find(catalogue, accessory.deviceKey) == &accessory, "an accessory is found by its key");
            fuzz::Require(!accessory.installer.empty(), "an accessory has an installer");
        }
    } catch (const std::runtime_error& wrong) {
        fuzz::Require(*wrong.what() != '\0', "an error says what is wrong");
    }
    return 0;
}
