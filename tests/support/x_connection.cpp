#include "x_connection.h"

#include <array>
#include <utility>

namespace test_display {

namespace {

XConnection* g_inCall = nullptr;  // the one whose calls run, as Xlib's error handler gets nothing of its own

// Xlib says something on standard error when a server goes, and would end the process if the other handler did not
// return; the exception says it all.
int KeepSilent(::Display*) { return 0; }

// Xlib's handlers during a call, and its former ones after it.
class Handlers {
public:
    Handlers(XConnection* connection, XErrorHandler errors)
        : m_formerInCall(std::exchange(g_inCall, connection)),
          m_formerErrors(XSetErrorHandler(errors)),
          m_formerLosses(XSetIOErrorHandler(&KeepSilent)) {}
    ~Handlers() {
        XSetIOErrorHandler(m_formerLosses);
        XSetErrorHandler(m_formerErrors);
        g_inCall = m_formerInCall;
    }
    Handlers(const Handlers&) = delete;
    Handlers& operator=(const Handlers&) = delete;

private:
    XConnection* const m_formerInCall;
    const XErrorHandler m_formerErrors;
    const XIOErrorHandler m_formerLosses;
};

}  // namespace

XConnection::XConnection(const std::string& name) : m_name(name), m_display(XOpenDisplay(name.c_str())) {
    if (m_display == nullptr) throw Failure("connecting", "no server answers");
    XSetIOErrorExitHandler(m_display, &XConnection::TakeLoss, this);
}

XConnection::~XConnection() {
    const Handlers handlers(this, &XConnection::TakeError);
    XCloseDisplay(m_display);
}

void XConnection::Do(const std::string& action, const std::function<void()>& calls) {
    if (!Try(action, calls)) throw Failure(action, m_refusal);
}

bool XConnection::Try(const std::string& action, const std::function<void()>& calls) {
    const Handlers handlers(this, &XConnection::TakeError);
    m_refusal.clear();
    if (!m_isLost) calls();
    if (!m_isLost) XSync(m_display, False);
    if (m_isLost) throw Failure(action, "the server has gone");
    return m_refusal.empty();
}

std::runtime_error XConnection::Failure(const std::string& action, const std::string& reason) const {
    return std::runtime_error("display " + m_name + ": " + action + ": " + reason);
}

int XConnection::TakeError(::Display* display, XErrorEvent* error) {
    std::array<char, 256> words{};
    XGetErrorText(display, error->error_code, words.data(), static_cast<int>(words.size()));
    if (g_inCall != nullptr && g_inCall->m_display == display) g_inCall->m_refusal = words.data();
    return 0;
}

void XConnection::TakeLoss(::Display*, void* connection) { static_cast<XConnection*>(connection)->m_isLost = true; }

}  // namespace test_display
