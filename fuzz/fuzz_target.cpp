#include "fuzz_target.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "base/file.h"

namespace fuzz {

std::uint8_t TakeByte(std::string_view& input) {
    if (input.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(input.front());
    input.remove_prefix(1);
    return first;
}

void Require(bool holds, std::string_view what) {
    if (holds) return;
    std::fprintf(stderr, "this does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

const std::filesystem::path& WriteInput(std::string_view content) {
    static const auto& path = *new std::filesystem::path(base::MakeTemporaryFolder("fuzz") / "input");
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    Require(file.good(), "the input can be written to a file");
    return path;
}

}  // namespace fuzz
