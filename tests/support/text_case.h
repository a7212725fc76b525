#pragma once

#include <string>

namespace test_support {

// One line of a table: what is tried, and what is to come of it.
struct TextCase {
    std::string text;
    std::string expected;
};

}  // namespace test_support
