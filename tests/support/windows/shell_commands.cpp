#include "shell_commands.h"

namespace test_support {

std::vector<std::string> Shell(const std::string& text) { return {"cmd.exe", "/d", "/s", "/c", text}; }

const char* const kCopyPackage = "copy \"%ACCESSORY_PACKAGE%\" \"%ACCESSORY_KEY%.installed\"";
const char* const kFailUnlessAllowed = "if not exist allowed exit 7";
const char* const kWaitForGate = "echo.>started& for /L %i in () do if exist gate exit 0";

}  // namespace test_support
