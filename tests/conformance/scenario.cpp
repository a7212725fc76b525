#include "scenario.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "base/text.h"
#include "duilib/render_engine.h"
#include "duilib/ui_culture.h"
#include "fixed_cell_measurer.h"
#include "host_page.h"
#include "kernel/ui_turn.h"
#include "minimal_layouts.h"
#include "module_loader/page_module.h"
#include "page_state.h"
#include "seam.h"
#include "trace_json.h"

namespace {

using nlohmann::json;

std::wstring Wide(const std::string& text) { return base::WideFromUtf8(text); }

bool Contains(const json& list, const char* text) { return std::find(list.begin(), list.end(), text) != list.end(); }

MinimalLayouts::Options LayoutOptions(const json& scenario) {
    MinimalLayouts::Options options;
    for (const std::string name : scenario.value("missing", json::array())) options.missing.insert(name);
    options.pageLayout = !scenario.value("pageLayoutMissing", false);
    options.rowLayout = !scenario.value("panelLayoutMissing", false);
    return options;
}

class Player {
public:
    Player(const json& scenario, const std::filesystem::path& modulePath)
        : m_layouts(LayoutOptions(scenario)),
          m_measurer({scenario.at("cell").at(0), scenario.at("cell").at(1)}),
          m_module(modulePath) {
        DuiLib::CResourceManager::GetInstance()->SetScale(scenario.at("scale"));
        DuiLib::CRenderEngine::SetTextMeasurer(&m_measurer);
        DuiLib::UICulture::GetInstance()->Clear();
        for (const auto& [id, text] : scenario.at("texts").items()) {
            DuiLib::UICulture::GetInstance()->SetString(Wide(id), Wide(text));
        }
        m_state = PageState(*m_page.Manager());
    }

    ~Player() { DuiLib::CRenderEngine::SetTextMeasurer(nullptr); }

    // The first difference of one step.
    std::string Play(const json& step) {
        seam::Get().events.clear();
        Do(step);
        const json before = std::move(m_state);
        m_state = PageState(*m_page.Manager());
        const PageDifference seen = Compare(before, m_state);
        const json& expected = step.at("expect");
        std::string difference = CompareTrace(expected.at("trace"));
        if (difference.empty()) difference = CompareControls(expected.at("controls"), seen.controls);
        if (difference.empty()) difference = CompareRemoved(expected.at("gone"), seen.removed);
        return difference;
    }

private:
    void Do(const json& step) {
        const std::string what = step.at("do");
        if (what == "create") {
            Create(step.value("null", json::array()));
        } else if (what == "close") {
            m_module.CloseWnd();
            m_page.Discard();
        } else if (what == "deliver") {
            seam::Get().Deliver(step.at("msgId"), FromHex(step.at("data")));
        } else if (what == "notify") {
            m_page.Notify(Wide(step.at("control")), Wide(step.at("type")));
        } else if (what == "companion") {
            seam::Get().companions[Wide(step.at("key"))] = {step.at("isApp"), step.at("running")};
        } else if (what == "postResult") {
            seam::Get().postResult = step.at("ok");
        } else {
            throw std::runtime_error("unknown step \"" + what + "\"");
        }
    }

    void Create(const json& nulls) {
        m_module.CreateSetting(Contains(nulls, "paintManager") ? nullptr : m_page.Manager(),
                               Contains(nulls, "notifyPump") ? nullptr : m_page.Pump(),
                               Contains(nulls, "parent") ? nullptr : m_page.Parent());
    }

    static std::string Difference(const std::string& where, const json& expected, const json& seen) {
        return where + "\n  expected " + expected.dump() + "\n  seen     " + seen.dump();
    }

    static std::string CompareTrace(const json& expected) {
        const auto& events = seam::Get().events;
        for (std::size_t i = 0; i < std::max(expected.size(), events.size()); ++i) {
            const json seen = i < events.size() ? TraceEntry(events[i]) : json("nothing");
            const json wanted = i < expected.size() ? expected[i] : json("nothing");
            if (!EntryMatches(wanted, seen)) return Difference("trace entry " + std::to_string(i + 1), wanted, seen);
        }
        return {};
    }

    static std::string CompareControls(const json& expected, const json& seen) {
        for (const auto& [name, state] : expected.items()) {
            if (!seen.contains(name)) return Difference("control " + name, state, "unchanged");
            if (seen[name] != state) return Difference("control " + name, state, seen[name]);
        }
        for (const auto& [name, state] : seen.items()) {
            if (!expected.contains(name)) return Difference("control " + name, "unchanged", state);
        }
        return {};
    }

    static std::string CompareRemoved(json expected, json seen) {
        std::sort(expected.begin(), expected.end());
        std::sort(seen.begin(), seen.end());
        return expected == seen ? std::string() : Difference("gone", expected, seen);
    }

    MinimalLayouts m_layouts;
    FixedCellMeasurer m_measurer;
    HostPage m_page;
    PageModule m_module;
    json m_state;
};

}  // namespace

std::string PlayScenario(const json& scenario, const std::filesystem::path& module) {
    const kernel::UiTurn turn;
    Player player(scenario, module);
    std::size_t number = 0;
    for (const json& step : scenario.at("steps")) {
        ++number;
        const std::string difference = player.Play(step);
        if (!difference.empty()) {
            return "step " + std::to_string(number) + " (" + step.at("do").get<std::string>() + "): " + difference;
        }
    }
    return {};
}

std::string FromHex(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

std::string ToHex(const std::string& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        hex += kDigits[static_cast<unsigned char>(c) >> 4];
        hex += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return hex;
}
