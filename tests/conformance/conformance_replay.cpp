// conformance_replay [--module PATH] FILE...
//
// Replays scenarios and decode vectors (JSON Lines) and prints the first difference of each that fails. Closes with
// "N passed, M failed"; exit code 1 if M is not 0, 2 for a file that cannot be read.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "isolated_run.h"
#include "module_loader/page_module.h"
#include "scenario.h"

namespace {

using nlohmann::json;

struct Totals {
    int passed = 0;
    int failed = 0;
};

std::string Replay(const json& entry, const std::filesystem::path& module) {
    if (entry.contains("record")) return CheckDecodeVector(entry);
    return RunIsolated([&entry, &module]() -> std::string {
        try {
            return PlayScenario(entry, module);
        } catch (const std::exception& error) {
            return error.what();
        }
    });
}

void ReplayLine(const std::string& line, const std::string& where, const std::filesystem::path& module,
                Totals& totals) {
    std::string name = where;
    std::string difference;
    try {
        const json entry = json::parse(line);
        name = where + " \"" + entry.at("name").get<std::string>() + "\"";
        difference = Replay(entry, module);
    } catch (const std::exception& error) {
        difference = error.what();
    }
    if (difference.empty()) {
        ++totals.passed;
        return;
    }
    ++totals.failed;
    std::cout << "FAILED " << name << ": " << difference << "\n";
}

bool ReplayFile(const std::string& file, const std::filesystem::path& module, Totals& totals) {
    std::ifstream input(file);
    if (!input) {
        std::cerr << "conformance_replay: " << file << ": cannot be read\n";
        return false;
    }
    std::string line;
    for (int number = 1; std::getline(input, line); ++number) {
        if (!line.empty()) ReplayLine(line, file + ":" + std::to_string(number), module, totals);
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::filesystem::path module = PageModule::DefaultPath();
    if (arguments.size() >= 2 && arguments[0] == "--module") {
        module = arguments[1];
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    if (arguments.empty()) {
        std::cerr << "usage: conformance_replay [--module PATH] FILE...\n";
        return 2;
    }
    Totals totals;
    bool readable = true;
    for (const std::string& file : arguments) readable = ReplayFile(file, module, totals) && readable;
    std::cout << totals.passed << " passed, " << totals.failed << " failed\n";
    if (!readable) return 2;
    return totals.failed == 0 ? 0 : 1;
}
