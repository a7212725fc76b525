#include "shell_commands.h"

namespace test_support {

std::vector<std::string> Shell(const std::string& text) { return {"/bin/sh", "-c", text, "installer"}; }

const char* const kCopyPackage = "cp \"$1\" \"$ACCESSORY_KEY.installed\"";
const char* const kFailUnlessAllowed = "test -e allowed || exit 7";
const char* const kWaitForGate = "touch started; while [ ! -e gate ]; do sleep 0.01; done";

}  // namespace test_support
