#include "isolated_run.h"

#include <algorithm>
#include <chrono>

#include "base/child_process.h"

std::string RunIsolated(const std::string& program, const std::vector<std::string>& arguments) {
    base::ChildSettings settings{.command = {program}, .output = {base::ChildStream::Kind::kPipe}};
    settings.command.insert(settings.command.end(), arguments.begin(), arguments.end());
    base::ChildProcess process(settings);
    const base::ChildEnd end = process.WaitForEnd();
    process.Output().WaitForEnd(std::chrono::minutes(1));
    std::string answer = process.Output().Text();
    std::erase(answer, '\r');  // of line ends
    if (!answer.ends_with('\n') || !end.IsSuccess()) return "the process ended with " + Description(end);
    answer.pop_back();
    return answer;
}
