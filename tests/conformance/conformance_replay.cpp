// conformance_replay [--module PATH] [--line NUMBER] FILE...
//
// Replays scenarios and decode vectors (JSON Lines) and prints the first difference of each that fails. Closes with
// "N passed, M failed"; exit code 1 if M is not 0, 2 for a file that cannot be read. A file without an entry fails.
// With --line it plays one scenario in this process and prints only the difference: so it starts itself for each, as a
// module and its rows live as long as their process.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
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

// What a program that plays one scenario needs besides that.
struct Command {
    std::string program;
    std::filesystem::path module = PageModule::DefaultPath();
    int onlyLine = 0;  // 0: all
    std::vector<std::string> files;
};

// In the process of its own: prints the difference, an empty line when there is none.
int PlayOnlyLine(const Command& command) {
    std::ifstream input(command.files.front());
    std::string text;
    for (int line = 0; line < command.onlyLine; ++line) std::getline(input, text);
    std::string difference;
    try {
        difference = PlayScenario(json::parse(text), command.module);
    } catch (const std::exception& error) {
        difference = error.what();
    }
    std::cout << difference << std::endl;
    return 0;
}

std::string Replay(const json& entry, const std::string& file, int line, const Command& command) {
    if (entry.contains("record")) return CheckDecodeVector(entry);
    if (entry.value("steps", json::array()).empty()) return "neither a decode vector nor a scenario with steps";
    return RunIsolated(command.program, {"--module", command.module.string(), "--line", std::to_string(line), file});
}

void ReplayLine(const std::string& text, const std::string& file, int line, const Command& command, Totals& totals) {
    std::string name = file + ":" + std::to_string(line);
    std::string difference;
    try {
        const json entry = json::parse(text);
        name += " \"" + entry.at("name").get<std::string>() + "\"";
        difference = Replay(entry, file, line, command);
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

bool ReplayFile(const std::string& file, const Command& command, Totals& totals) {
    std::ifstream input(file);
    if (!input) {
        std::cerr << "conformance_replay: " << file << ": cannot be read\n";
        return false;
    }
    const int before = totals.passed + totals.failed;
    std::string text;
    for (int line = 1; std::getline(input, text); ++line) {
        if (!text.empty()) ReplayLine(text, file, line, command, totals);
    }
    if (totals.passed + totals.failed == before) {
        ++totals.failed;
        std::cout << "FAILED " << file << ": holds no entry\n";
    }
    return true;
}

// Throws std::exception for a line that is none.
Command ReadCommandLine(int argc, char** argv) {
    Command command;
    command.program = argv[0];
    command.files.assign(argv + 1, argv + argc);
    const auto take = [&command](const std::string& option) -> std::string {
        std::vector<std::string>& files = command.files;
        if (files.size() < 2 || files[0] != option) return {};
        const std::string value = files[1];
        files.erase(files.begin(), files.begin() + 2);
        return value;
    };
    if (const std::string module = take("--module"); !module.empty()) command.module = module;
    if (const std::string line = take("--line"); !line.empty()) command.onlyLine = std::stoi(line);
    if (command.files.empty()) throw std::invalid_argument("no file is named");
    return command;
}

}  // namespace

int main(int argc, char** argv) {
    Command command;
    try {
        command = ReadCommandLine(argc, argv);
    } catch (const std::exception&) {
        std::cerr << "usage: conformance_replay [--module PATH] [--line NUMBER] FILE...\n";
        return 2;
    }
    if (command.onlyLine != 0) return PlayOnlyLine(command);
    Totals totals;
    bool readable = true;
    for (const std::string& file : command.files) readable = ReplayFile(file, command, totals) && readable;
    std::cout << totals.passed << " passed, " << totals.failed << " failed\n";
    if (!readable) return 2;
    return totals.failed == 0 ? 0 : 1;
}
