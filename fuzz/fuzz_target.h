#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

// What the fuzz targets share. Each is a program that libFuzzer calls with one input after the other, on one thread:
//
//     extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
//
// A wrong input may be refused in the way that the code under test promises; what else goes wrong ends the program,
// which libFuzzer reports with the input.
namespace fuzz {

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Takes the first byte of the input, 0 of an empty one: it chooses how the rest is used.
std::uint8_t TakeByte(std::string_view& input);

// Ends the program, saying what does not hold.
void Require(bool holds, std::string_view what);

// Writes the input to the one file that this program has for its inputs. Returns its path.
const std::filesystem::path& WriteInput(std::string_view content);

}  // namespace fuzz
