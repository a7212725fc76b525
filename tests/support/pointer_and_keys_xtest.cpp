#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "pointer_and_keys.h"
#include "x_connection.h"

namespace test_display {

namespace {

enum Button : unsigned { kLeft = 1, kWheelUp = 4, kWheelDown = 5 };

// Owns what Xlib has allocated.
template <typename T>
struct Free {
    void operator()(T* memory) const { XFree(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free<T>>;

struct DestroyImage {
    void operator()(XImage* image) const { XDestroyImage(image); }
};

KeySym ModifierNamed(const std::string& name) {
    if (name == "shift") return XK_Shift_L;
    if (name == "ctrl") return XK_Control_L;
    if (name == "alt") return XK_Alt_L;
    return NoSymbol;
}

}  // namespace

class PointerAndKeys::Connection : public XConnection {
public:
    explicit Connection(const std::string& name) : XConnection(name), m_root(DefaultRootWindow(Get())) {
        int ignored = 0;
        if (!XTestQueryExtension(Get(), &ignored, &ignored, &ignored, &ignored)) {
            throw Failure("connecting", "the server has no XTEST extension");
        }
    }

    void Button(unsigned button, bool isDown);
    std::vector<KeyCode> KeyCodes(const std::string& combination) const;  // in the order of pressing
    void AddKey(std::vector<KeyCode>& codes, const std::string& name) const;
    Window Find(const std::string& title);  // None when there is none
    Window FindOrThrow(const std::string& title);
    std::string TitleIfShown(Window window);

    const Window m_root;
};

void PointerAndKeys::Connection::Button(unsigned button, bool isDown) {
    const std::string action = std::string(isDown ? "pressing" : "releasing") + " button " + std::to_string(button);
    Do(action, [&] { XTestFakeButtonEvent(Get(), button, isDown, CurrentTime); });
}

std::vector<KeyCode> PointerAndKeys::Connection::KeyCodes(const std::string& combination) const {
    std::vector<KeyCode> codes;
    std::size_t begin = 0;
    for (std::size_t end; (end = combination.find('+', begin)) != std::string::npos; begin = end + 1) {
        const std::string name = combination.substr(begin, end - begin);
        const KeySym modifier = ModifierNamed(name);
        if (modifier == NoSymbol) throw Failure("pressing " + combination, "\"" + name + "\" is no modifier");
        codes.push_back(XKeysymToKeycode(Get(), modifier));
    }
    AddKey(codes, combination.substr(begin));
    return codes;
}

// Adds Shift before it when the name is what the key gives with Shift.
void PointerAndKeys::Connection::AddKey(std::vector<KeyCode>& codes, const std::string& name) const {
    const KeySym symbol = XStringToKeysym(name.c_str());
    const KeyCode code = symbol == NoSymbol ? KeyCode{0} : XKeysymToKeycode(Get(), symbol);
    if (code == 0) throw Failure("pressing a key", "there is no key \"" + name + "\"");
    const bool isShifted =
        XkbKeycodeToKeysym(Get(), code, 0, 0) != symbol && XkbKeycodeToKeysym(Get(), code, 0, 1) == symbol;
    const KeyCode shift = XKeysymToKeycode(Get(), XK_Shift_L);
    if (isShifted && std::find(codes.begin(), codes.end(), shift) == codes.end()) codes.push_back(shift);
    codes.push_back(code);
}

// Empty for windows without a title, that are not shown, or that have gone meanwhile.
std::string PointerAndKeys::Connection::TitleIfShown(Window window) {
    constexpr long kLongest = 1024;  // in units of 4 bytes
    std::string title;
    const bool isThere = Try("reading titles", [&] {
        const Atom name = XInternAtom(Get(), "_NET_WM_NAME", False);
        const Atom utf8 = XInternAtom(Get(), "UTF8_STRING", False);
        XWindowAttributes attributes{};
        if (!XGetWindowAttributes(Get(), window, &attributes) || attributes.map_state != IsViewable) return;
        Atom type = None;
        int format = 0;
        unsigned long size = 0;
        unsigned long left = 0;
        unsigned char* text = nullptr;
        if (XGetWindowProperty(Get(), window, name, 0, kLongest, False, utf8, &type, &format, &size, &left, &text) !=
            Success) {
            return;
        }
        const Owned<unsigned char> owned(text);
        if (type == utf8 && format == 8) title.assign(reinterpret_cast<const char*>(text), size);
    });
    return isThere ? title : std::string();
}

// From the top: the user sees the uppermost of two with one title.
Window PointerAndKeys::Connection::Find(const std::string& title) {
    Window ignored = None;
    Window* children = nullptr;
    unsigned count = 0;
    Do("listing windows", [&] { XQueryTree(Get(), m_root, &ignored, &ignored, &children, &count); });
    const Owned<Window> owned(children);
    for (unsigned i = count; i-- > 0;) {
        if (TitleIfShown(children[i]) == title) return children[i];
    }
    return None;
}

Window PointerAndKeys::Connection::FindOrThrow(const std::string& title) {
    const Window window = Find(title);
    if (window == None) throw Failure("finding a window", "none with the title \"" + title + "\" is shown");
    return window;
}

std::uint32_t ScreenImage::Pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        throw std::out_of_range("(" + std::to_string(x) + ", " + std::to_string(y) + ") is beside the screen");
    }
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
}

PointerAndKeys::PointerAndKeys(const std::string& display) : m_connection(std::make_unique<Connection>(display)) {}

PointerAndKeys::~PointerAndKeys() = default;

void PointerAndKeys::MoveTo(int x, int y) {
    constexpr int kPointersScreen = -1;
    m_connection->Do("moving the pointer",
                     [&] { XTestFakeMotionEvent(m_connection->Get(), kPointersScreen, x, y, CurrentTime); });
}

void PointerAndKeys::Press() { m_connection->Button(kLeft, true); }

void PointerAndKeys::Release() { m_connection->Button(kLeft, false); }

void PointerAndKeys::Click(int x, int y) {
    MoveTo(x, y);
    Press();
    Release();
}

void PointerAndKeys::Wheel(int notches) {
    for (int i = 0; i < std::abs(notches); ++i) {
        m_connection->Button(notches > 0 ? kWheelDown : kWheelUp, true);
        m_connection->Button(notches > 0 ? kWheelDown : kWheelUp, false);
    }
}

void PointerAndKeys::Key(const std::string& combination) {
    m_connection->Do("pressing " + combination, [&] {
        const std::vector<KeyCode> codes = m_connection->KeyCodes(combination);
        for (auto code = codes.begin(); code != codes.end(); ++code) {
            XTestFakeKeyEvent(m_connection->Get(), *code, True, CurrentTime);
        }
        for (auto code = codes.rbegin(); code != codes.rend(); ++code) {
            XTestFakeKeyEvent(m_connection->Get(), *code, False, CurrentTime);
        }
    });
}

bool PointerAndKeys::WindowExists(const std::string& title) { return m_connection->Find(title) != None; }

ScreenPoint PointerAndKeys::WindowOrigin(const std::string& title) {
    const Window window = m_connection->FindOrThrow(title);
    ScreenPoint origin;
    Window ignored = None;
    m_connection->Do("finding the place of \"" + title + "\"", [&] {
        XTranslateCoordinates(m_connection->Get(), window, m_connection->m_root, 0, 0, &origin.x, &origin.y, &ignored);
    });
    return origin;
}

void PointerAndKeys::SetInputFocus(const std::string& title) {
    const Window window = m_connection->FindOrThrow(title);
    m_connection->Do("giving the focus to \"" + title + "\"",
                     [&] { XSetInputFocus(m_connection->Get(), window, RevertToParent, CurrentTime); });
}

void PointerAndKeys::CloseWindow(const std::string& title) {
    ::Display* const display = m_connection->Get();
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = m_connection->FindOrThrow(title);
    event.xclient.format = 32;
    m_connection->Do("closing \"" + title + "\"", [&] {
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
        event.xclient.data.l[1] = CurrentTime;
        XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    });
}

ScreenImage PointerAndKeys::Screenshot() {
    ::Display* const display = m_connection->Get();
    ScreenImage shot{DisplayWidth(display, DefaultScreen(display)), DisplayHeight(display, DefaultScreen(display)), {}};
    std::unique_ptr<XImage, DestroyImage> image;
    m_connection->Do("taking a screenshot", [&] {
        image.reset(XGetImage(display, m_connection->m_root, 0, 0, static_cast<unsigned>(shot.width),
                              static_cast<unsigned>(shot.height), AllPlanes, ZPixmap));
    });
    if (!image || image->red_mask != 0xFF0000 || image->blue_mask != 0xFF) {
        throw m_connection->Failure("taking a screenshot", "its pixels are not 0xRRGGBB");
    }
    for (int y = 0; y < shot.height; ++y) {
        for (int x = 0; x < shot.width; ++x) {
            shot.pixels.push_back(static_cast<std::uint32_t>(XGetPixel(image.get(), x, y) & 0xFFFFFF));
        }
    }
    return shot;
}

}  // namespace test_display
