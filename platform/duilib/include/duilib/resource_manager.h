#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "duilib/export.h"
#include "duilib/geometry.h"

namespace DuiLib {

class CPaintManagerUI;

struct FontDescription {
    std::string family = "Noto Sans";  // UTF-8
    int size = 14;                     // [design px]
    bool bold = false;

    bool operator==(const FontDescription&) const = default;
};

// The process's display scale, fonts, and the place of its resources. UI turn.
class DUILIB_API CResourceManager {
public:
    static CResourceManager* GetInstance();

    // The display scale as a percentage; 100 is unscaled. Setting it lays every window out again.
    unsigned GetScale() const;
    void SetScale(unsigned percent);

    // Design to device pixels and back, rounded to the nearest, halves up; at most 2^24 either way. The manager is the
    // window whose scale counts; null for the process's.
    int Scale(int design, const CPaintManagerUI* manager = nullptr) const;
    CDuiSize Scale(CDuiSize design, const CPaintManagerUI* manager = nullptr) const;
    int RestoreScale(int device, const CPaintManagerUI* manager = nullptr) const;

    // The folder that layout paths such as "../components/..." are relative to: the program's own folder unless set.
    void SetResourceBase(const std::filesystem::path& folder);
    std::filesystem::path Resolve(std::wstring_view file) const;

    // The folder that picture paths such as "drawable/..." are relative to: Resolve(L"../res") unless set. Pictures are
    // read once in a process.
    void SetSkinFolder(const std::filesystem::path& folder);
    std::filesystem::path ResolveSkinFile(std::wstring_view file) const;

    // What is drawn in place of a picture that cannot be read; nothing unless set.
    void SetFallbackPicture(const std::filesystem::path& file);
    std::filesystem::path GetFallbackPicture() const;

    // Fonts by index, as the layouts and SetFont use them. -1, and an index that nobody set, is the default font. The
    // reference lives until the font is set again; setting it to another one lays every window out again.
    void SetFont(int index, const FontDescription& font);
    const FontDescription& GetFont(int index) const;

    CResourceManager(const CResourceManager&) = delete;
    CResourceManager& operator=(const CResourceManager&) = delete;

private:
    CResourceManager();
    ~CResourceManager();
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace DuiLib
