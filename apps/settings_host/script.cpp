#include "script.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace settings_host::script {

namespace {

// A reason; Reader adds file and line.
struct Mistake {
    std::string reason;
};

// The words of one line; a comment ends it.
std::vector<std::string> SplitWords(const std::string& line) {
    std::vector<std::string> words;
    for (std::size_t i = 0; i < line.size();) {
        if (line[i] == ' ' || line[i] == '\t' || line[i] == '\r') {
            ++i;
        } else if (line[i] == '#') {
            break;
        } else if (line[i] == '"') {
            const std::size_t end = line.find('"', i + 1);
            if (end == std::string::npos) throw Mistake{"a quotation mark is not closed"};
            words.push_back(line.substr(i + 1, end - i - 1));
            i = end + 1;
        } else {
            const std::size_t end = std::min(line.find_first_of(" \t\r", i), line.size());
            words.push_back(line.substr(i, end - i));
            i = end;
        }
    }
    return words;
}

// Takes the words of a command one after another.
class Arguments {
public:
    explicit Arguments(std::vector<std::string> words) : m_words(std::move(words)) {}

    bool Empty() const { return m_next == m_words.size(); }
    std::string Take(const char* what) {
        if (Empty()) throw Mistake{std::string(what) + " is missing"};
        return m_words[m_next++];
    }
    int TakeNumber(const char* what) {
        const std::string word = Take(what);
        int number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error != std::errc() || end != word.data() + word.size()) {
            throw Mistake{std::string(what) + ": \"" + word + "\" is not a whole number"};
        }
        return number;
    }
    void ExpectEnd() {
        if (!Empty()) throw Mistake{"\"" + m_words[m_next] + "\" is more than the command takes"};
    }

private:
    std::vector<std::string> m_words;
    std::size_t m_next = 0;
};

Wait ReadWait(Arguments& arguments) {
    Wait wait;
    wait.condition = arguments.Take("a condition");
    const std::string& what = wait.condition;
    if (what == "shown" || what == "hidden" || what == "tip" || what == "focus") {
        wait.control = arguments.Take("a control's name");
    } else if (what == "text" || what == "tooltip") {
        wait.control = arguments.Take("a control's name");
        wait.text = arguments.Take("the text");
    } else if (what == "percent") {
        wait.control = arguments.Take("a control's name");
        wait.number = arguments.TakeNumber("the percentage");
    } else if (what == "height" || what == "running") {
        wait.number = arguments.TakeNumber("the number");
    } else if (what != "nothing-left" && what != "connected" && what != "disconnected") {
        throw Mistake{"unknown condition \"" + what + "\""};
    }
    if (!arguments.Empty()) {
        const std::string within = arguments.Take("within");
        if (within != "within") throw Mistake{"\"within\" is expected, not \"" + within + "\""};
        wait.limit = std::chrono::seconds(arguments.TakeNumber("the seconds"));
    }
    return wait;
}

Waits ReadWaits(Arguments& arguments) {
    const int percent = arguments.TakeNumber("the percentage");
    if (percent < 0) throw Mistake{"the percentage is below 0"};
    return {percent};
}

Close ReadClose(Arguments& arguments) {
    if (arguments.Empty()) return {};
    const std::string waits = arguments.Take("waits");
    if (waits != "waits") throw Mistake{"\"waits\" is expected, not \"" + waits + "\""};
    return {ReadWaits(arguments).percent};
}

Command ReadCommand(Arguments& arguments, const std::string& line) {
    const std::string verb = arguments.Take("a command");
    if (verb == "say") {
        const std::size_t text = line.find_first_not_of(" \t", line.find(verb) + verb.size());
        return Words{text == std::string::npos ? std::string() : line.substr(text)};
    }
    Command command;
    if (verb == "click") {
        command = Click{arguments.Take("a control's name")};
    } else if (verb == "hover") {
        command = Hover{arguments.Take("a control's name")};
    } else if (verb == "where") {
        command = Where{arguments.Take("a control's name")};
    } else if (verb == "picture") {
        command = Picture{arguments.Take("a file's name")};
    } else if (verb == "wait") {
        command = ReadWait(arguments);
    } else if (verb == "waits") {
        command = ReadWaits(arguments);
    } else if (verb == "start") {
        command = Start{arguments.Take("a program's name")};
    } else if (verb == "stop") {
        command = Stop{arguments.Take("a program's name")};
    } else if (verb == "close") {
        command = ReadClose(arguments);
    } else if (verb == "open") {
        command = Open{};
    } else {
        throw Mistake{"unknown command \"" + verb + "\""};
    }
    arguments.ExpectEnd();
    return command;
}

}  // namespace

bool Reader::Next(Command& command) {
    for (std::string line; std::getline(m_input, line);) {
        ++m_line;
        try {
            const std::vector<std::string> words = SplitWords(line);
            if (words.empty()) continue;
            Arguments arguments(words);
            command = ReadCommand(arguments, line);
            return true;
        } catch (const Mistake& mistake) {
            throw Error(m_file, m_line, mistake.reason);
        }
    }
    return false;
}

Input::Input(int file, std::function<void()> idle)
    : m_file(file), m_idle(std::move(idle)), m_stream(static_cast<std::streambuf*>(this)) {
    m_stream.exceptions(std::ios_base::badbit);
}

Input::int_type Input::underflow() {
    std::optional<std::size_t> size;
    while (!(size = ReadIfReady(m_file, m_buffer.data(), m_buffer.size()))) m_idle();
    if (*size == 0) return traits_type::eof();
    setg(m_buffer.data(), m_buffer.data(), m_buffer.data() + *size);
    return traits_type::to_int_type(m_buffer[0]);
}

}  // namespace settings_host::script
