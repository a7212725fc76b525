#include "minimal_layouts.h"

#include <fstream>

#include "base/file.h"
#include "duilib/resource_manager.h"
#include "kernel/ui_turn.h"

namespace {

namespace fs = std::filesystem;

class LayoutWriter {
public:
    explicit LayoutWriter(const MinimalLayouts::Options& options) : m_missing(options.missing), m_plain(options.plain) {
        m_text = "<Window>\n";
    }

    // An element that the layout defines. A missing one keeps its children but has no name; a plain one leaves the name
    // to a control beside them.
    LayoutWriter& Open(const std::string& element, const std::string& name) {
        const bool plain = m_plain.count(name) != 0;
        if (plain) Leaf("Control", name);
        m_text += "<" + element + (plain || m_missing.count(name) ? "" : " name=\"" + name + "\"") + ">\n";
        return *this;
    }
    LayoutWriter& Close(const std::string& element) {
        m_text += "</" + element + ">\n";
        return *this;
    }
    LayoutWriter& Leaf(const std::string& element, const std::string& name, bool visible = true) {
        if (m_missing.count(name)) return *this;
        m_text += "<" + element + " name=\"" + name + "\"" + (visible ? "" : " visible=\"false\"") + "/>\n";
        return *this;
    }
    void Save(const fs::path& file) { std::ofstream(file, std::ios::binary) << m_text << "</Window>\n"; }

private:
    const std::set<std::string>& m_missing;
    const std::set<std::string>& m_plain;
    std::string m_text;
};

void WritePage(const fs::path& file, const MinimalLayouts::Options& options) {
    LayoutWriter page(options);
    page.Open("VerticalLayout", "")
        .Leaf("Label", "DeviceUpdateTitle")
        .Leaf("Label", "topName")
        .Leaf("VerticalLayout", "accessVer")
        .Close("VerticalLayout");
    page.Save(file);
}

void WriteRow(const fs::path& file, const MinimalLayouts::Options& options) {
    LayoutWriter row(options);
    row.Open("VerticalLayout", "").Open("HorizontalLayout", "hor");
    row.Leaf("Label", "imageLabel").Open("VerticalLayout", "ver").Leaf("Label", "desName").Leaf("Label", "version");
    row.Close("VerticalLayout").Leaf("Button", "updateBtn").Leaf("Label", "updateBtnText");
    row.Leaf("Label", "progressLabel", false).Leaf("Control", "progressLayout", false);
    row.Leaf("Label", "progressBtn", false).Leaf("Label", "progress", false).Leaf("Button", "stopBtn", false);
    row.Leaf("Button", "pulldown").Close("HorizontalLayout").Close("VerticalLayout");
    row.Save(file);
}

}  // namespace

MinimalLayouts::MinimalLayouts(const Options& options) : m_folder(base::MakeTemporaryFolder("page-layouts")) {
    const fs::path layouts = m_folder / "components/brindle/res/layout";
    fs::create_directories(layouts);
    fs::create_directories(m_folder / "bin");
    if (options.pageLayout) WritePage(layouts / "Tolvane.xml", options);
    if (options.rowLayout) WriteRow(layouts / "AccessoriesFirmwareWnd.xml", options);
    const kernel::UiTurn turn;
    DuiLib::CResourceManager::GetInstance()->SetResourceBase(m_folder / "bin");
}

MinimalLayouts::~MinimalLayouts() { fs::remove_all(m_folder); }
