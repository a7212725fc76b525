#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "duilib/dui_string.h"
#include "duilib/export.h"

namespace DuiLib {

// The texts of the language in use. UI turn.
class DUILIB_API UICulture {
public:
    static UICulture* GetInstance();

    // The text of a resource id, for example L"IDS_ACCESSORIES_RETRY"; empty for an id that the language lacks.
    CDuiString GetString(std::wstring_view id) const;

    // The text that a bind text names, for example L"bind='IDS_ACCESSORIES_RETRY'"; empty when it is not of that form
    // or the language lacks the id.
    CDuiString GetBindString(std::wstring_view bindText) const;

    // A whole number in the language's digits, for example L"37"; nothing groups them, and the sign is "-".
    CDuiString GetNumberString(int number) const;

    // A whole percentage in the language's form and digits, for example L"37%".
    CDuiString GetPercentString(int percent) const;

    // Replaces all texts by those of a language file (docs/layout.md). Throws std::runtime_error, naming the file, the
    // line and the reason; the old texts then stay.
    void Load(const std::filesystem::path& file);

    const std::string& GetLanguage() const;  // for example "en-US"
    bool IsRightToLeft() const;

    // Texts without a file.
    void Clear();
    void SetString(std::wstring_view id, std::wstring_view text);
    void SetPercentPattern(std::wstring_view pattern);  // L"{0}%" after Clear()

    UICulture(const UICulture&) = delete;
    UICulture& operator=(const UICulture&) = delete;

private:
    UICulture();
    ~UICulture();
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace DuiLib
