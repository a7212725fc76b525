#pragma once

#include <string>
#include <vector>

// What installers of tests do, in the words of each system's shell. They run in the test's folder and get the package
// as their last argument and in ACCESSORY_PACKAGE.
namespace test_support {

// The command that carries out a text.
std::vector<std::string> Shell(const std::string& text);

extern const char* const kCopyPackage;        // to "KEY.installed", the key being in ACCESSORY_KEY
extern const char* const kFailUnlessAllowed;  // with exit status 7, unless there is a file "allowed"
extern const char* const kWaitForGate;  // until there is a file "gate"; says that it has begun by a file "started"

}  // namespace test_support
