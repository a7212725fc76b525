// Which pages are told of what becomes of a device.

#include "service_test_support.h"
#include "update_service.h"

namespace update_service {
namespace {

const IpcLife kOtherPage{{2}};

TEST_F(ServiceTest, EndsAndPercentagesGoToThePagesThatListTheDevice) {
    AddAccessory("pen");
    AddAccessory("mouse");
    Start();
    m_service->OnLeft(kPage);
    m_service->OnStart(kOtherPage, "pen");
    ASSERT_TRUE(Told("ended pen"));
    EXPECT_EQ(m_page.LastPages(), Pages{kOtherPage});
    m_service->OnReady(kPage);
    m_service->OnStart(kOtherPage, "mouse");
    ASSERT_TRUE(Told("ended mouse", 2));
    EXPECT_EQ(m_page.LastPages(), (Pages{kPage, kOtherPage}));
    m_service->OnLeft(kOtherPage);
    m_service->OnLeft(kPage);
    const auto told = m_page.told.Lines();
    m_service->OnReturned(kOtherPage);
    EXPECT_EQ(m_page.told.Lines(), told) << "it has been told of both";
    m_service->OnReturned(kPage);
    EXPECT_EQ(m_page.told.Lines().size(), told.size() + 1) << "it has not heard of the pen";
}

TEST_F(ServiceTest, APageThatComesBackIsToldOfAFailureThatItMissed) {
    AddAccessory("pen");
    m_options.failAt["pen"] = 50;
    Start();
    m_service->OnStart(kPage, "pen");
    ASSERT_TRUE(Told("failed pen"));
    Start();
    const auto told = m_page.told.Lines();
    m_service->OnReturned(kOtherPage);
    EXPECT_EQ(m_page.told.Lines().back(), "failed pen");
    EXPECT_EQ(m_page.told.Lines().size(), told.size() + 1);
    EXPECT_EQ(m_page.LastPages(), Pages{kOtherPage});
}

}  // namespace
}  // namespace update_service
