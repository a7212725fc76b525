#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "channel/payload.h"
#include "fixed_cell_measurer.h"
#include "host_page.h"
#include "minimal_layouts.h"
#include "seam.h"
#include "service_messages.h"

// A host's page, minimal layouts, English texts and 8 x 20 text cells around plug-in code, with a vocabulary for tests.
// A log line that tells of a failure and that the test did not expect fails it.
class PageFixture : public testing::Test {
protected:
    PageFixture();
    ~PageFixture() override;
    void TearDown() override;

    // Surroundings, before the page is made.
    void UseLayouts(MinimalLayouts::Options options);
    void UseScale(unsigned percent);
    void UseCells(DuiLib::CDuiSize cell) { m_measurer = FixedCellMeasurer(cell); }  // [design px]
    void SetTextOf(const wchar_t* id, const wchar_t* text);

    // What the host does; service_messages.h has what the service does.
    void Click(std::wstring_view control);
    void CompanionRuns(const std::wstring& key, bool runs = true);

    // What the page shows. A control that is missing fails the test.
    DuiLib::CControlUI& Control(std::wstring_view name);
    bool Shown(std::wstring_view name) { return Control(name).IsVisible(); }
    std::wstring Text(std::wstring_view name) { return Control(name).GetText().Str(); }
    std::wstring ToolTip(std::wstring_view name) { return Control(name).GetToolTip().Str(); }
    std::wstring Attribute(std::wstring_view name, std::wstring_view attribute);

    // What crossed the seam since the last call of Forget, which looks for unexpected failures first.
    std::vector<std::wstring> Logged(int level) const;
    std::vector<std::wstring> Logged() const;  // every level
    std::vector<std::string> Posted() const;   // "DEST MSG payload", ids in hex, zero bytes as \0
    std::vector<int> Slept() const;            // [ms]
    std::size_t Count(seam::Kind kind) const;
    void Forget();

    // A line whose text is a failure that this test is about. To be said before Forget.
    void ExpectFailureLine(const std::wstring& part) { m_expectedFailures.push_back(part); }

    HostPage m_page;

private:
    void CheckFailureLines() const;

    std::unique_ptr<MinimalLayouts> m_layouts;
    FixedCellMeasurer m_measurer{{8, 20}};
    std::vector<std::wstring> m_expectedFailures;
};

// An allocation that fails (nothrow_failure.h), and what the log says then.
struct FailedAllocation {
    int nth;
    const wchar_t* line;
};

// One accessory, by default a pen application with one line.
AccessoryVersionDataInfo Accessory(const std::string& key, std::vector<std::wstring> lines = {L"Fixes sleep."},
                                   const std::wstring& modelId = L"IDS_NAME_PEN", bool isDriver = false);
