// Every state of a row in one picture: a page with a row for each, whose version is what the state is called.
#include <algorithm>

#include "painted_page.h"
#include "picture_comparison.h"
#include "picture_test.h"
#include "seam.h"
#include "service_messages.h"

namespace {

using DuiLib::CDuiRect;
using DuiLib::PaintSurface;

constexpr std::uint32_t kFinishedPause = 2000;  // [ms] the finished look is on the screen only meanwhile

constexpr int kOffered = -2;  // instead of a percentage: not started
constexpr int kStarted = -1;  // ... started, and nothing heard yet

enum class Then { kNothing, kDisable, kRefuse, kPause, kPauseAndRefuse, kFail, kFailAndRetry, kOpen };

// What only one control has at a time.
enum class Input { kNone, kPointer, kPressed, kFocus };

struct RowState {
    const char* key;
    const wchar_t* label;
    int percent = kOffered;
    Then then = Then::kNothing;
    Input input = Input::kNone;
    const char* control = nullptr;  // of the input; the button of the update group unless given
};

constexpr RowState kRows[] = {
    {"offered", L"offered"},
    {"pointed", L"under the pointer", kOffered, Then::kNothing, Input::kPointer},
    {"pressed", L"pressed", kOffered, Then::kNothing, Input::kPressed},
    {"focused", L"with the focus", kOffered, Then::kNothing, Input::kFocus},
    {"disabled", L"disabled", kOffered, Then::kDisable},
    {"refused", L"refused", kOffered, Then::kRefuse, Input::kPointer},
    {"started", L"started", kStarted},
    {"at0", L"0%", 0},
    {"at1", L"1%", 1},
    {"at37", L"37%", 37},
    {"at37pointed", L"37%, under the pointer", 37, Then::kNothing, Input::kPointer},
    {"at37pressed", L"37%, pressed", 37, Then::kNothing, Input::kPressed},
    {"at37focused", L"37%, with the focus", 37, Then::kNothing, Input::kFocus},
    {"at99", L"99%", 99},
    {"paused", L"paused", 37, Then::kPause},
    {"stillpaused", L"paused, refused", 37, Then::kPauseAndRefuse, Input::kPointer},
    {"failed", L"failed", 37, Then::kFail},
    {"retried", L"failed at 37%, retried", 37, Then::kFailAndRetry},
    {"installing", L"100%", 100},
    {"folded", L"pull-down under the pointer", kOffered, Then::kNothing, Input::kPointer, "pulldown"},
    {"opened", L"opened", kOffered, Then::kOpen},
    {"nopicture", L"picture is missing"},
    {"finished", L"finished", 100},  // last: the line below a row goes as it ends
};

std::wstring Named(const std::string& key, const std::string& control) {
    const std::string name = key + control;
    return {name.begin(), name.end()};
}

std::wstring ButtonOf(const RowState& row) {
    if (row.control != nullptr) return Named(row.key, row.control);
    return Named(row.key, row.percent == kOffered ? "updateBtn" : "stopBtn");
}

class RowStates : public PictureTest {
protected:
    void ShowRows() {
        std::vector<AccessoryVersionDataInfo> list;
        for (const RowState& row : kRows) list.push_back(Record(row));
        DeliverList(list);
    }

    void Bring(const RowState& row) {
        if (row.percent != kOffered) m_page.Click(Named(row.key, "updateBtn"));
        if (row.percent >= 0) DeliverProgress(row.key, row.percent);
        const bool pauses = row.then == Then::kPause || row.then == Then::kPauseAndRefuse;
        const bool fails = row.then == Then::kFail || row.then == Then::kFailAndRetry;
        if (fails) DeliverFail(row.key);
        if (pauses || row.then == Then::kFailAndRetry) m_page.Click(ButtonOf(row));
        if (row.then == Then::kRefuse || row.then == Then::kPauseAndRefuse) {
            seam::Get().companions[Named(row.key, "")] = {true, true};
            m_page.Click(ButtonOf(row));
        }
        if (row.then == Then::kDisable) m_page.Control(ButtonOf(row)).SetEnabled(false);
        if (row.then == Then::kOpen) m_page.Click(Named(row.key, "pulldown"));
    }

    // The row under its input, to be put into the last picture.
    void TakePicture(const RowState& row) {
        switch (row.input) {
            case Input::kNone:
                return;
            case Input::kPointer:
                m_page.PointAt(ButtonOf(row));
                break;
            case Input::kPressed:
                m_page.Press(ButtonOf(row));
                break;
            case Input::kFocus:
                m_page.Focus(ButtonOf(row));
                break;
        }
        CutOut(row.key);
        if (row.input == Input::kPressed) m_page.Release();
        m_page.PointAway();
        m_page.FocusNothing();
    }

    // All that lasts, and the last row while it shows that it has ended.
    PaintSurface TakeFinish() {
        PaintSurface whole;
        const auto finish = [] { DeliverFinish("finished"); };
        const auto look = [this, &whole] {
            const PaintSurface& changed = m_page.Paint();
            whole = m_page.PaintWhole();
            EXPECT_EQ(Compare(changed, whole).pixelsOff, 0)
                << "painting what changed and painting all give different pictures";
        };
        EXPECT_EQ(LookDuringPause(kFinishedPause, finish, look), 1);
        return whole;
    }

    void PutPicturesInto(PaintSurface& picture) {
        for (const CutRow& row : m_cutRows) {
            EXPECT_EQ(m_page.Control(Named(row.key, "hor")).GetPos().top, row.top) << row.key;
            std::ranges::copy(row.pixels, picture.Pixels() + std::int64_t{row.top} * picture.Size().cx);
        }
    }

    PaintedPage m_page;

private:
    struct CutRow {
        std::string key;
        int top;                            // [device px]
        std::vector<std::uint32_t> pixels;  // as wide as the picture
    };

    AccessoryVersionDataInfo Record(const RowState& row) {
        AccessoryVersionDataInfo record;
        record.deviceKey = row.key;
        record.modelId = L"IDS_NAME_PEN";
        record.version = row.label;
        record.imagePath = record.deviceKey == "nopicture" ? MissingPicture() : L"drawable/Brindle/pen.svg";
        record.descLines = {L"Fewer missed strokes near the edge of the screen, also with a ruler beside the pen.",
                            L"The button wakes the pen faster.", L"Charging is shown."};
        record.isDriver = true;
        return record;
    }

    // Each picture is looked for once in a process: another one each time.
    std::wstring MissingPicture() {
        static int number = 0;
        const std::string name = "missing" + std::to_string(++number) + ".png";
        ExpectComplaint(name);
        return L"drawable/Brindle/" + std::wstring(name.begin(), name.end());
    }

    void CutOut(const std::string& key) {
        const PaintSurface& picture = m_page.Paint();
        const CDuiRect place = m_page.Control(Named(key, "hor")).GetPos();
        const std::int64_t width = picture.Size().cx;
        m_cutRows.push_back(
            {key, place.top, {picture.Pixels() + place.top * width, picture.Pixels() + place.bottom * width}});
    }

    std::vector<CutRow> m_cutRows;
};

TEST_P(RowStates, AreAsDrawn) {
    ShowRows();
    for (const RowState& row : kRows) Bring(row);
    m_page.FitWindow();
    for (const RowState& row : kRows) TakePicture(row);
    PaintSurface picture = TakeFinish();
    PutPicturesInto(picture);
    ExpectPicture("row_states", picture);
}

INSTANTIATE_TEST_SUITE_P(Looks, RowStates, testing::ValuesIn(EveryLook()), TestNameOf);

}  // namespace
