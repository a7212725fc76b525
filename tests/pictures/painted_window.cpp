#include "painted_window.h"

#include <gtest/gtest.h>

#include "base/process.h"
#include "base/text.h"
#include "kernel/ui_turn.h"
#include "seam.h"

namespace {

constexpr std::chrono::seconds kMovement{1};  // longer than any

// A system bus that nobody serves: the host holds no sleep off while it is painted.
std::filesystem::path ModuleAwayFromTheSystem() {
    base::SetVariable("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" PICTURES_FAILURE_FOLDER "/no_bus");
    return PageModule::DefaultPath();
}

}  // namespace

PaintedWindow::PaintedWindow() : m_module(ModuleAwayFromTheSystem()) {
    m_window.Open();
    ShowNews();
}

void PaintedWindow::ShowNews() {
    seam::Seam& seam = seam::Get();
    for (; m_handedOver < seam.events.size(); ++m_handedOver) {
        const seam::Event event = seam.events[m_handedOver];  // a copy: who gets it may cause more
        if (event.kind == seam::Kind::kPost) seam.Deliver(event.item.msgId, event.payload, event.item.destId);
    }
    {
        const kernel::UiTurnPause pause;
        m_window.ApplyNews(m_time);
    }
    m_window.Manager().Tick(m_time);
}

void PaintedWindow::LetTimePass(std::chrono::milliseconds time) {
    m_time += time;
    ShowNews();
}

void PaintedWindow::Click(const std::string& name) {
    EXPECT_EQ(m_window.Click(base::WideFromUtf8(name)), "") << name;
    m_window.Manager().SetFocus(nullptr);
    m_window.Manager().MouseLeave();
    ShowNews();
}

void PaintedWindow::AskToClose() {
    m_window.AskToClose();
    EXPECT_FALSE(m_window.WantsToEnd());
}

void PaintedWindow::Scroll(DuiLib::DuiKey key) {
    EXPECT_TRUE(m_window.Manager().KeyDown(key));
    ShowNews();
    LetTimePass(kMovement);
}

DuiLib::CControlUI& PaintedWindow::Control(std::wstring_view name) {
    if (DuiLib::CControlUI* const control = m_window.Find(name)) return *control;
    ADD_FAILURE() << "no control is named " << testing::PrintToString(std::wstring(name));
    static DuiLib::CControlUI none;
    return none;
}

const DuiLib::PaintSurface& PaintedWindow::Paint() {
    m_window.Manager().Paint(m_picture);
    return m_picture;
}
