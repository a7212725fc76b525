#pragma once

#include <string>
#include <vector>

namespace base {

// The command line in UTF-8; and, on Windows, UTF-8 is what a console shows of this program's output from now on. Make
// it once, first of all in main:
//
//     const base::Arguments arguments(argc, argv);
//     ReadCommandLine(arguments.Count(), arguments.Values(), exitCode);
class Arguments {
public:
    Arguments(int argc, const char* const* argv);

    int Count() const { return static_cast<int>(m_texts.size()); }
    const char* const* Values() const { return m_values.data(); }

private:
    void List() {
        for (const std::string& text : m_texts) m_values.push_back(text.c_str());
        m_values.push_back(nullptr);
    }

    std::vector<std::string> m_texts;
    std::vector<const char*> m_values;
};

}  // namespace base
