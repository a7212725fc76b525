// Every state of a row in one picture: a page with a row for each, whose version is what the state is called.
#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "painted_page.h"
#include "picture_test.h"
#include "seam.h"
#include "service_messages.h"

namespace {

using DuiLib::CDuiRect;
using DuiLib::PaintSurface;

constexpr std::uint32_t kFinishedPause = 2000;  // [ms] the finished look is on the screen only meanwhile

const std::pair<const char*, const wchar_t*> kRows[] = {
    {"offered", L"offered"},
    {"hot", L"under the pointer"},
    {"pressed", L"pressed"},
    {"focused", L"with the focus"},
    {"disabled", L"disabled"},
    {"refused", L"refused"},
    {"started", L"started"},
    {"at0", L"0%"},
    {"at1", L"1%"},
    {"at37", L"37%"},
    {"at37hot", L"37%, under the pointer"},
    {"at37pressed", L"37%, pressed"},
    {"at37focused", L"37%, with the focus"},
    {"at99", L"99%"},
    {"paused", L"paused"},
    {"pausedrefused", L"paused, refused"},
    {"failed", L"failed"},
    {"retried", L"failed at 37%, retried"},
    {"installing", L"100%"},
    {"finished", L"finished"},
    {"folded", L"pull-down under the pointer"},
    {"opened", L"opened"},
    {"nopicture", L"picture is missing"},
};

bool Same(const PaintSurface& one, const PaintSurface& other) {
    if (one.Size().cx != other.Size().cx || one.Size().cy != other.Size().cy) return false;
    return std::memcmp(one.Pixels(), other.Pixels(), static_cast<std::size_t>(one.BytesPerRow()) * one.Size().cy) == 0;
}

class RowStates : public PictureTest {
protected:
    // The page and all states that last.
    void Build() {
        std::vector<AccessoryVersionDataInfo> list;
        for (const auto& [key, label] : kRows) list.push_back(Row(key, label));
        DeliverList(list);
        m_page.Control(L"disabledupdateBtn").SetEnabled(false);
        for (const char* const key : {"at0", "at1", "at37", "at37hot", "at37pressed", "at37focused", "at99", "paused",
                                      "pausedrefused", "failed", "retried", "started", "installing", "finished"}) {
            m_page.Click(Named(key, "updateBtn"));
        }
        DeliverAllProgress();
        for (const char* const key : {"paused", "pausedrefused"}) m_page.Click(Named(key, "stopBtn"));
        for (const char* const key : {"failed", "retried"}) DeliverFail(key);
        m_page.Click(L"retriedstopBtn");
        Refuse("refused", "updateBtn");
        Refuse("pausedrefused", "stopBtn");
        m_page.Click(L"openedpulldown");
        m_page.FitWindow();
    }

    // The states that only one control has at a time. Their rows are cut out and put into the last picture.
    void TakeMoments() {
        const auto taken = [this](const char* key) { TakeRow(key); };
        for (const auto& [key, control] : {std::pair{"hot", "updateBtn"},
                                           {"refused", "updateBtn"},
                                           {"at37hot", "stopBtn"},
                                           {"folded", "pulldown"}}) {
            m_page.PointAt(Named(key, control));
            taken(key);
        }
        m_page.PointAt(L"pausedrefusedstopBtn");
        taken("pausedrefused");
        m_page.PointAway();
        for (const auto& [key, control] : {std::pair{"pressed", "updateBtn"}, {"at37pressed", "stopBtn"}}) {
            m_page.Press(Named(key, control));
            taken(key);
            m_page.Release();
        }
        for (const auto& [key, control] : {std::pair{"focused", "updateBtn"}, {"at37focused", "stopBtn"}}) {
            m_page.Focus(Named(key, control));
            taken(key);
            m_page.FocusNothing();
        }
    }

    // What is shown while "finished" shows that it has ended.
    PaintSurface TakeFinish() {
        PaintSurface whole;
        const auto look = [this, &whole] {
            const PaintSurface& changed = m_page.Paint();
            whole = m_page.PaintWhole();
            EXPECT_TRUE(Same(changed, whole)) << "painting what changed and painting all give different pictures";
        };
        EXPECT_EQ(LookDuringPause(
                      kFinishedPause, [] { DeliverFinish("finished"); }, look),
                  1);
        return whole;
    }

    void PutMomentsInto(PaintSurface& picture) const {
        for (const auto& [place, pixels] : m_moments) {
            std::ranges::copy(pixels, picture.Pixels() + std::int64_t{place.top} * picture.Size().cx);
        }
    }

private:
    static std::wstring Named(const std::string& key, const std::string& control) {
        const std::string name = key + control;
        return {name.begin(), name.end()};
    }

    AccessoryVersionDataInfo Row(const std::string& key, const std::wstring& label) {
        AccessoryVersionDataInfo row;
        row.deviceKey = key;
        row.modelId = L"IDS_NAME_PEN";
        row.version = label;
        row.imagePath = L"drawable/Brindle/pen.svg";
        row.descLines = {L"Fewer missed strokes near the edge of the screen, also with a ruler beside the pen.",
                         L"The button wakes the pen faster.", L"Charging is shown."};
        row.isDriver = true;
        if (key == "nopicture") row.imagePath = MissingPicture();
        return row;
    }

    // Each picture is looked for once in a process: another one each time.
    std::wstring MissingPicture() {
        static int number = 0;
        const std::string name = "missing" + std::to_string(++number) + ".png";
        ExpectComplaint(name);
        return L"drawable/Brindle/" + std::wstring(name.begin(), name.end());
    }

    static void DeliverAllProgress() {
        for (const auto& [key, percent] : std::initializer_list<std::pair<const char*, int>>{{"at0", 0},
                                                                                             {"at1", 1},
                                                                                             {"at37", 37},
                                                                                             {"at37hot", 37},
                                                                                             {"at37pressed", 37},
                                                                                             {"at37focused", 37},
                                                                                             {"at99", 99},
                                                                                             {"paused", 37},
                                                                                             {"pausedrefused", 37},
                                                                                             {"failed", 37},
                                                                                             {"retried", 37},
                                                                                             {"installing", 100},
                                                                                             {"finished", 100}}) {
            DeliverProgress(key, percent);
        }
    }

    void Refuse(const char* key, const char* control) {
        seam::Get().companions[Named(key, "")] = {true, true};
        m_page.Click(Named(key, control));
    }

    void TakeRow(const char* key) {
        const PaintSurface& picture = m_page.Paint();
        const CDuiRect place = m_page.Control(Named(key, "hor")).GetPos();
        const std::int64_t width = picture.Size().cx;
        m_moments.emplace_back(place, std::vector<std::uint32_t>(picture.Pixels() + place.top * width,
                                                                 picture.Pixels() + place.bottom * width));
    }

    PaintedPage m_page;
    std::vector<std::pair<CDuiRect, std::vector<std::uint32_t>>> m_moments;  // rows over the picture's whole width
};

TEST_P(RowStates, AreAsDrawn) {
    Build();
    TakeMoments();
    PaintSurface picture = TakeFinish();
    PutMomentsInto(picture);
    ExpectPicture("row_states", picture);
}

INSTANTIATE_TEST_SUITE_P(Looks, RowStates, EveryLook(), TestNameOf);

}  // namespace
