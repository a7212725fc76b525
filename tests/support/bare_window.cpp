#include "bare_window.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <poll.h>

#include <chrono>
#include <stdexcept>

#include "test_process.h"

namespace test_display {

namespace {

std::string ButtonWords(const char* what, const XButtonEvent& event) {
    return std::string(what) + " " + std::to_string(event.button) + " " + std::to_string(event.x) + "," +
           std::to_string(event.y);
}

std::string KeyWords(XKeyEvent& event) {
    std::string words = "key";
    if (event.state & ShiftMask) words += " shift";
    if (event.state & ControlMask) words += " ctrl";
    if (event.state & Mod1Mask) words += " alt";
    const char* const name = XKeysymToString(XLookupKeysym(&event, 0));
    return words + " " + (name != nullptr ? name : "?");
}

}  // namespace

BareWindow::BareWindow(const std::string& display, const std::string& title)
    : m_display(XOpenDisplay(display.c_str())) {
    if (m_display == nullptr) throw std::runtime_error("no display for the window");
    m_window = XCreateSimpleWindow(m_display, DefaultRootWindow(m_display), kOrigin.x, kOrigin.y, kSize.width,
                                   kSize.height, 0, 0, kColour);
    XChangeProperty(m_display, m_window, Id("_NET_WM_NAME"), Id("UTF8_STRING"), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()), static_cast<int>(title.size()));
    Atom close = Id("WM_DELETE_WINDOW");
    XSetWMProtocols(m_display, m_window, &close, 1);
    XSelectInput(m_display, m_window,
                 PointerMotionMask | ButtonPressMask | ButtonReleaseMask | KeyPressMask | FocusChangeMask);
    XSync(m_display, False);
}

BareWindow::~BareWindow() { XCloseDisplay(m_display); }

void BareWindow::Show() {
    XMapWindow(m_display, m_window);
    XSync(m_display, False);
}

void BareWindow::Hide() {
    XUnmapWindow(m_display, m_window);
    XSync(m_display, False);
}

std::vector<std::string> BareWindow::EventsUntil(const std::string& last) {
    constexpr int kLookAgain = 100;  // ms
    std::vector<std::string> events;
    const auto deadline = std::chrono::steady_clock::now() + test_process::kPatience;
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd look{ConnectionNumber(m_display), POLLIN, 0};
        if (XPending(m_display) == 0) poll(&look, 1, kLookAgain);
        while (XPending(m_display) > 0) {
            XEvent event;
            XNextEvent(m_display, &event);
            const std::string words = Words(event);
            if (!words.empty()) events.push_back(words);
            if (words == last) return events;
        }
    }
    return events;
}

double BareWindow::DotsPerInch() const {
    constexpr double kMillimetresPerInch = 25.4;
    return DisplayWidth(m_display, 0) * kMillimetresPerInch / DisplayWidthMM(m_display, 0);
}

unsigned long BareWindow::Id(const char* name) const { return XInternAtom(m_display, name, False); }

std::string BareWindow::Words(XEvent& event) const {
    switch (event.type) {
        case MotionNotify:
            return "move " + std::to_string(event.xmotion.x) + "," + std::to_string(event.xmotion.y);
        case ButtonPress:
            return ButtonWords("press", event.xbutton);
        case ButtonRelease:
            return ButtonWords("release", event.xbutton);
        case KeyPress:
            return KeyWords(event.xkey);
        case FocusIn:
            return "focus";
        case ClientMessage: {
            const bool isClose = event.xclient.message_type == Id("WM_PROTOCOLS") &&
                                 static_cast<Atom>(event.xclient.data.l[0]) == Id("WM_DELETE_WINDOW");
            return isClose ? "close" : "message";
        }
        case MappingNotify:
            XRefreshKeyboardMapping(&event.xmapping);
            return {};
        default:
            return {};
    }
}

}  // namespace test_display
