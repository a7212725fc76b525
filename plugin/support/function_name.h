#pragma once

#include <array>
#include <cstddef>
#include <string_view>

// The qualified name of a function without return type and parameters, made at compile time from the compiler's own
// text for it, so that every compiler gives the same:
//     "void DuiLib::AccessoriesFirwareWnd::SetResume()",
//     "void __cdecl DuiLib::AccessoriesFirwareWnd::SetResume(void)"  ->  "DuiLib::AccessoriesFirwareWnd::SetResume"
//     "DuiLib::AccessoriesFirwareWnd::OnClick(TNotifyUI&)::<lambda()>",
//     "auto ...::OnClick(TNotifyUI &)::(anonymous class)::operator()() const",
//     "auto __cdecl ...::OnClick::<lambda_1>::operator ()(void) const"
//                                            ->  "DuiLib::AccessoriesFirwareWnd::OnClick::<lambda>::operator ()"
class FunctionName {
public:
    static constexpr std::size_t kCapacity = 160;  // [bytes] with the terminating zero; a longer name does not compile

    constexpr explicit FunctionName(std::string_view pretty) { Parser{pretty, m_text}.Run(); }

    constexpr const char* CStr() const { return m_text.data(); }

private:
    using Text = std::array<char, kCapacity>;

    struct Parser {
        std::string_view rest;
        Text& text;
        std::size_t size = 0;

        constexpr void Run() {
            while (!rest.empty()) Step();
            text.at(size) = '\0';
        }

        constexpr void Step() {
            if (rest.starts_with("<lambda(")) {
                Finish("<lambda>::operator ()");
            } else if (rest.starts_with("<lambda_")) {
                Replace(GroupLength('<', '>'), "<lambda>");
            } else if (rest.starts_with("(anonymous class)")) {
                Replace(std::string_view("(anonymous class)").size(), "<lambda>");
            } else if (rest.starts_with("operator()") || rest.starts_with("operator ()")) {
                Finish("operator ()");
            } else if (rest.front() == '(') {
                SkipParameters();
            } else if (rest.front() == '<') {
                const std::size_t group = GroupLength('<', '>');
                Replace(group, rest.substr(0, group));
            } else if (rest.front() == ' ' || rest.front() == '*' || rest.front() == '&') {
                size = 0;  // what came before belongs to the return type
                rest.remove_prefix(1);
            } else {
                Replace(1, rest.substr(0, 1));
            }
        }

        // The function itself ends with its parameters; one that encloses a lambda does not.
        constexpr void SkipParameters() {
            rest.remove_prefix(GroupLength('(', ')'));
            if (!rest.starts_with("::")) rest = {};
        }

        constexpr void Replace(std::size_t read, std::string_view written) {
            for (const char c : written) text.at(size++) = c;
            rest.remove_prefix(read);
        }

        constexpr void Finish(std::string_view written) {
            Replace(0, written);
            rest = {};
        }

        constexpr std::size_t GroupLength(char open, char close) const {
            std::size_t depth = 0;
            for (std::size_t i = 0; i < rest.size(); ++i) {
                if (rest[i] == open) ++depth;
                if (rest[i] == close && --depth == 0) return i + 1;
            }
            return rest.size();
        }
    };

    Text m_text{};
};
