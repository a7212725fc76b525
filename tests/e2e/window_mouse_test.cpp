// The page by mouse only.

#include "window_e2e_test.h"

namespace e2e {
namespace {

class MouseTest : public ThreeRowsTest {
protected:
    void UpdateWithAPause(const std::string& key) {
        ClickOn(key + "updateBtn");
        Play("wait running 1\nwait shown runningCount\nwait percent " + key + "progress 5");
        ClickOn(key + "stopBtn");
        Play("wait text " + key + "progress \"Resume\"\nwait running 0\nwait hidden runningCount");
        ClickOn(key + "stopBtn");
        Play("wait running 1\nwait hidden " + key + "hor within 60\nwait running 0");
    }

    void UpdateWithARetry(const std::string& key) {
        ClickOn(key + "updateBtn");
        Play("wait text " + key + "progress \"Try again\" within 60\nwait running 0\nwait tip " + key + "stopBtn");
        ClickOn(key + "stopBtn");
        Play("wait running 1\nwait hidden " + key + "hor within 60\nwait running 0");
    }

    void UpdateOnceTheCompanionHasEnded(const std::string& key) {
        m_companion.Start();
        ClickOn(key + "updateBtn");
        Play("wait tooltip " + key + "updateBtn \"Close the app of Drawing Pen before updating.\"\nwait tip " + key +
             "updateBtn\nwait shown " + key + "updateBtn\nwait running 0");
        m_companion.Stop();
        ClickOn(key + "updateBtn");
        Play("wait running 1\nwait hidden " + key + "hor within 60\nwait running 0");
    }
};

TEST_F(MouseTest, AllUpdatesAreDoneByMouseAlone) {
    OpenPage();
    UpdateWithAPause("pen");
    UpdateWithARetry("dock");
    UpdateOnceTheCompanionHasEnded("mouse");
    Play("wait nothing-left\nwait shown upToDateView\nwait hidden accessoriesView");
    for (const char* key : {"pen", "dock", "mouse"}) EXPECT_EQ(ReadFile(Arrived(key)), PackageContent(key));
    EXPECT_THAT(ServiceLog(), HasSubstr("pen: paused at "));
    EXPECT_THAT(ServiceLog(), HasSubstr("dock: failed: at 40 percent, as asked for"));
    m_host->End();
}

TEST_F(MouseTest, ThePullDownOpensAndClosesARow) {
    OpenPage();
    const Place folded = m_host->Where("penhor");
    ClickOn("penpulldown");
    Play("wait shown pendevInfo");
    EXPECT_GT(m_host->Where("penhor").height, folded.height);
    ClickOn("penpulldown");
    Play("wait hidden pendevInfo");
    EXPECT_EQ(m_host->Where("penhor"), folded);
    m_host->End();
}

TEST_F(MouseTest, APressThatIsReleasedElsewhereStartsNothing) {
    OpenPage();
    PointAt("penupdateBtn");
    m_hands.Press();
    PointAt("dockpulldown");
    m_hands.Release();
    ClickOn("mousepulldown");  // seen after the release
    Play("wait shown mousedevInfo\nwait shown penupdateBtn\nwait hidden dockdevInfo\nwait running 0");
    EXPECT_THAT(ServiceLog(), Not(HasSubstr("pen: started")));
    m_host->End();
}

TEST_F(MouseTest, ThePagesAreChosenInTheirList) {
    OpenPage();
    ClickOn("navAbout");
    Play("wait shown aboutView\nwait hidden accessoriesView\nwait text pageName \"About\"");
    ClickOn("navAccessories");
    Play("wait shown accessoriesView\nwait hidden aboutView\nwait text pageName \"Accessories\"");
    ClickOn("penpulldown");
    Play("wait shown pendevInfo");
    m_host->End();
}

}  // namespace
}  // namespace e2e
