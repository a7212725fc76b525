// sample_packages FOLDER KEY:BYTES...
//
// Writes one package file a key, FOLDER/KEY.pkg, with that many bytes: noise that depends only on the key, so that
// every build has the same packages.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Noise that repeats itself packs well. As the period is a prime number, no two pieces of a download are alike.
constexpr std::size_t kPeriod = 16381;  // [bytes]

void WritePackage(const std::filesystem::path& file, const std::string& key, std::size_t bytes) {
    std::seed_seq seed(key.begin(), key.end());
    std::mt19937_64 noise(seed);
    std::vector<char> content(bytes);
    std::generate_n(content.begin(), std::min(bytes, kPeriod), [&noise] { return static_cast<char>(noise()); });
    for (std::size_t i = kPeriod; i < bytes; ++i) content[i] = content[i - kPeriod];
    std::ofstream output(file, std::ios::binary);
    output.write(content.data(), static_cast<std::streamsize>(content.size()));
    output.close();
    if (!output) throw std::runtime_error(file.string() + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc < 3) throw std::runtime_error("usage: sample_packages FOLDER KEY:BYTES...");
        std::filesystem::create_directories(argv[1]);
        for (int i = 2; i < argc; ++i) {
            const std::string package = argv[i];
            const std::size_t colon = package.rfind(':');
            if (colon == std::string::npos) throw std::runtime_error(package + ": KEY:BYTES is expected");
            const std::string key = package.substr(0, colon);
            WritePackage(std::filesystem::path(argv[1]) / (key + ".pkg"), key, std::stoul(package.substr(colon + 1)));
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "sample_packages: " << error.what() << "\n";
        return 1;
    }
}
