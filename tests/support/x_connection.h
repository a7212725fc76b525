#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <stdexcept>
#include <string>

namespace test_display {

// A connection to an X server that throws where Xlib would end the process. Only for the files behind this folder's
// headers: Xlib's own header defines names like None and Status for whoever includes it.
class XConnection {
public:
    // Throws std::runtime_error.
    explicit XConnection(const std::string& name);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    ::Display* Get() const { return m_display; }

    // Runs the calls, waits until the server has taken them, and throws Failure(action) when it has refused one of them
    // or has gone.
    void Do(const std::string& action, const std::function<void()>& calls);

    // The same, but false when the server has refused a call. For windows of others, which may vanish at any time.
    bool Try(const std::string& action, const std::function<void()>& calls);

    // To be thrown: names the display and the action.
    std::runtime_error Failure(const std::string& action, const std::string& reason) const;

private:
    static int TakeError(::Display* display, XErrorEvent* error);
    static void TakeLoss(::Display* display, void* connection);

    const std::string m_name;
    ::Display* const m_display;
    bool m_isLost = false;
    std::string m_refusal;  // of the calls that run
};

}  // namespace test_display
