#pragma once

#include <filesystem>
#include <vector>

#include "child_programs.h"
#include "options.h"

namespace settings_host {

// The sample mode: a folder with a catalogue, its packages and a tour, and an update service of the host's own that
// serves it over a pipe of its own, in a work folder that goes with it. UI thread.
//
//     Sample sample(commandLine);  // before anything uses the pipe, or the command line
//     sample.StartService();
//     program.Run();
//     if (commandLine.tour) sample.CheckTour(program.NothingIsLeft());
//     sample.End(true);
class Sample {
public:
    // Makes the work folder and fills in what the command line leaves open. Throws std::runtime_error, naming the file
    // that the sample lacks and the reason.
    explicit Sample(CommandLine& commandLine);

    // Returns once the service serves, and says where the logs are unless the tour is played. Throws std::runtime_error
    // with what the service says instead.
    void StartService();

    // Says which packages have arrived whole, and that the tour is complete. Throws std::runtime_error when one has
    // not, or an update is left.
    void CheckTour(bool nothingIsLeft) const;

    // Stops the service. What went well leaves nothing behind, nor does what never began; else the work folder stays
    // and is named on standard error, with the end of the service's log. Nothing may write into it any more.
    void End(bool well);

private:
    std::filesystem::path ServiceLog() const { return m_work / "service.log"; }

    const std::filesystem::path m_folder;
    const std::filesystem::path m_work;
    const bool m_tour;
    const std::filesystem::path m_pictures;  // that outlast the tour; empty: none
    bool m_began = false;
    ChildPrograms m_programs;
};

}  // namespace settings_host
