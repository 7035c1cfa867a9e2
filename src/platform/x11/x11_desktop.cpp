#include "platform/x11/x11_desktop.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "platform/send_keys.h"

namespace platform {
namespace {

// Xlib reports a request on a vanished window through the process-wide
// error handler, whose default ends the process. While we talk to foreign
// windows that may disappear at any moment, errors are only noted.
int gXErrors = 0;
int quietHandler(Display*, XErrorEvent*) {
    ++gXErrors;
    return 0;
}

class QuietErrors {
  public:
    explicit QuietErrors(Display* d) : d_(d) {
        XSync(d_, False);
        before_ = gXErrors;
        old_ = XSetErrorHandler(quietHandler);
    }
    ~QuietErrors() {
        XSync(d_, False);
        XSetErrorHandler(old_);
    }
    bool failed() {
        XSync(d_, False);
        return gXErrors != before_;
    }

  private:
    Display* d_;
    int before_ = 0;
    int (*old_)(Display*, XErrorEvent*) = nullptr;
};

KeySym namedKeySym(NamedKey k) {
    switch (k) {
        case NamedKey::Enter:
            return XK_Return;
        case NamedKey::Escape:
            return XK_Escape;
        case NamedKey::Tab:
            return XK_Tab;
        case NamedKey::Backspace:
            return XK_BackSpace;
        case NamedKey::Delete:
            return XK_Delete;
        case NamedKey::Insert:
            return XK_Insert;
        case NamedKey::Home:
            return XK_Home;
        case NamedKey::End:
            return XK_End;
        case NamedKey::PageUp:
            return XK_Page_Up;
        case NamedKey::PageDown:
            return XK_Page_Down;
        case NamedKey::Left:
            return XK_Left;
        case NamedKey::Right:
            return XK_Right;
        case NamedKey::Up:
            return XK_Up;
        case NamedKey::Down:
            return XK_Down;
        case NamedKey::Character:
            return NoSymbol;
        default:
            return XK_F1 + (static_cast<int>(k) - static_cast<int>(NamedKey::F1));
    }
}

KeySym characterKeySym(char32_t c) {
    if (c == '\t') return XK_Tab;
    if (c == '\b') return XK_BackSpace;
    if ((c >= 0x20 && c <= 0x7E) || (c >= 0xA0 && c <= 0xFF)) return static_cast<KeySym>(c);
    return static_cast<KeySym>(0x01000000 | c);  // the Unicode keysym range
}

}  // namespace

struct X11Desktop::Impl {
    Display* dpy = nullptr;
    bool xtest = false;
    Window root = 0;
    Atom netClientList = 0, netClientListStacking = 0, netWmName = 0, utf8String = 0,
         netActiveWindow = 0;
    // Keycodes without symbols, lent to characters the keymap lacks, and
    // what each is lent to now; given back when the desktop closes.
    std::vector<int> spares;
    std::size_t nextSpare = 0;
    std::vector<std::pair<int, KeySym>> borrowed;

    std::vector<Window> windowProperty(Window w, Atom property) {
        std::vector<Window> out;
        Atom type;
        int format;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        if (XGetWindowProperty(dpy, w, property, 0, 1 << 16, False, XA_WINDOW, &type, &format,
                               &count, &after, &data) == Success &&
            data && format == 32) {
            auto* ids = reinterpret_cast<unsigned long*>(data);
            out.assign(ids, ids + count);
        }
        if (data) XFree(data);
        return out;
    }

    bool hasWindowManager() {
        QuietErrors q(dpy);
        Atom type;
        int format;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        bool present = XGetWindowProperty(dpy, root, netClientList, 0, 0, False, XA_WINDOW, &type,
                                          &format, &count, &after, &data) == Success &&
                       type == XA_WINDOW;
        if (data) XFree(data);
        return present;
    }

    std::string title(Window w) {
        Atom type;
        int format;
        unsigned long count = 0, after = 0;
        unsigned char* data = nullptr;
        std::string out;
        if (XGetWindowProperty(dpy, w, netWmName, 0, 4096, False, utf8String, &type, &format,
                               &count, &after, &data) == Success &&
            data && type == utf8String && format == 8) {
            out.assign(reinterpret_cast<char*>(data), count);
        }
        if (data) XFree(data);
        if (!out.empty()) return out;
        XTextProperty prop;
        if (XGetWMName(dpy, w, &prop) && prop.value) {
            char** list = nullptr;
            int n = 0;
            if (Xutf8TextPropertyToTextList(dpy, &prop, &list, &n) >= Success && list && n > 0)
                out = list[0];
            if (list) XFreeStringList(list);
            XFree(prop.value);
        }
        return out;
    }

    std::vector<Window> candidates() {
        if (hasWindowManager()) {
            // Topmost first, as EnumWindows goes through the z-order; the
            // plain client list (oldest first) only when stacking is unknown.
            auto stacked = windowProperty(root, netClientListStacking);
            if (!stacked.empty()) return {stacked.rbegin(), stacked.rend()};
            return windowProperty(root, netClientList);
        }
        // No window manager: the mapped children of the root are the
        // top-level windows, bottom to top; the topmost comes first, as in
        // the Windows z-order.
        std::vector<Window> out;
        Window r, parent;
        Window* children = nullptr;
        unsigned int n = 0;
        if (XQueryTree(dpy, root, &r, &parent, &children, &n)) {
            for (unsigned int i = n; i-- > 0;) {
                XWindowAttributes a;
                if (XGetWindowAttributes(dpy, children[i], &a) && a.map_state == IsViewable &&
                    !a.override_redirect)
                    out.push_back(children[i]);
            }
        }
        if (children) XFree(children);
        return out;
    }

    KeyCode keycodeFor(KeySym sym, bool& needShift) {
        needShift = false;
        KeyCode code = XKeysymToKeycode(dpy, sym);
        if (code != 0) {
            if (XkbKeycodeToKeysym(dpy, code, 0, 0) == sym) return code;
            if (XkbKeycodeToKeysym(dpy, code, 0, 1) == sym) {
                needShift = true;
                return code;
            }
        }
        // Not reachable with Shift alone: bind it to an unused keycode. The
        // receiving client translates the key with the mapping it fetches
        // after the MappingNotify, possibly much later, so a borrowed code
        // keeps its symbol for as long as this desktop lives and the spare
        // codes are reused round-robin only when all are taken.
        for (const auto& [c, s] : borrowed)
            if (s == sym) return static_cast<KeyCode>(c);
        if (spares.empty()) spares = findSpareKeycodes();
        if (spares.empty()) return 0;
        int c = spares[nextSpare++ % spares.size()];
        for (auto it = borrowed.begin(); it != borrowed.end(); ++it)
            if (it->first == c) {
                borrowed.erase(it);
                break;
            }
        KeySym both[2] = {sym, sym};
        XChangeKeyboardMapping(dpy, c, 2, both, 1);
        XSync(dpy, False);
        borrowed.emplace_back(c, sym);
        return static_cast<KeyCode>(c);
    }

    std::vector<int> findSpareKeycodes() {
        int minCode, maxCode, perCode;
        XDisplayKeycodes(dpy, &minCode, &maxCode);
        KeySym* map = XGetKeyboardMapping(dpy, minCode, maxCode - minCode + 1, &perCode);
        std::vector<int> found;
        if (map) {
            for (int c = maxCode; c >= minCode && found.size() < 8; --c) {
                bool empty = true;
                for (int j = 0; j < perCode; ++j)
                    if (map[(c - minCode) * perCode + j] != NoSymbol) empty = false;
                if (empty) found.push_back(c);
            }
            XFree(map);
        }
        return found;
    }

    void releaseSpareKeycodes() {
        for (const auto& [c, s] : borrowed) {
            KeySym none[1] = {NoSymbol};
            XChangeKeyboardMapping(dpy, c, 1, none, 1);
        }
        borrowed.clear();
        XSync(dpy, False);
    }

    void key(KeySym sym, bool press) {
        KeyCode code = XKeysymToKeycode(dpy, sym);
        if (code) XTestFakeKeyEvent(dpy, code, press ? True : False, CurrentTime);
    }

    bool type(const KeyStroke& k) {
        KeySym sym =
            k.key == NamedKey::Character ? characterKeySym(k.character) : namedKeySym(k.key);
        bool needShift = false;
        KeyCode code = keycodeFor(sym, needShift);
        if (!code) return false;
        bool shift = k.shift || needShift;
        if (k.control) key(XK_Control_L, true);
        if (k.alt) key(XK_Alt_L, true);
        if (shift) key(XK_Shift_L, true);
        XTestFakeKeyEvent(dpy, code, True, CurrentTime);
        XTestFakeKeyEvent(dpy, code, False, CurrentTime);
        if (shift) key(XK_Shift_L, false);
        if (k.alt) key(XK_Alt_L, false);
        if (k.control) key(XK_Control_L, false);
        XFlush(dpy);
        return true;
    }

    bool keysymDown(const char* keys, KeySym sym) {
        KeyCode code = XKeysymToKeycode(dpy, sym);
        return code && (keys[code / 8] & (1 << (code % 8)));
    }
};

X11Desktop::X11Desktop(const char* displayName) : impl_(std::make_unique<Impl>()) {
    Impl& m = *impl_;
    m.dpy = XOpenDisplay(displayName);
    if (!m.dpy) return;
    m.root = DefaultRootWindow(m.dpy);
    int ev, err, major, minor;
    m.xtest = XTestQueryExtension(m.dpy, &ev, &err, &major, &minor);
    m.netClientList = XInternAtom(m.dpy, "_NET_CLIENT_LIST", False);
    m.netClientListStacking = XInternAtom(m.dpy, "_NET_CLIENT_LIST_STACKING", False);
    m.netWmName = XInternAtom(m.dpy, "_NET_WM_NAME", False);
    m.utf8String = XInternAtom(m.dpy, "UTF8_STRING", False);
    m.netActiveWindow = XInternAtom(m.dpy, "_NET_ACTIVE_WINDOW", False);
}

X11Desktop::~X11Desktop() {
    if (impl_->dpy) {
        impl_->releaseSpareKeycodes();
        XCloseDisplay(impl_->dpy);
    }
}

bool X11Desktop::connected() const { return impl_->dpy != nullptr; }
bool X11Desktop::canType() const { return impl_->dpy && impl_->xtest; }

std::vector<WindowInfo> X11Desktop::topLevelWindows() {
    std::vector<WindowInfo> out;
    if (!impl_->dpy) return out;
    QuietErrors q(impl_->dpy);
    for (Window w : impl_->candidates()) {
        std::string t = impl_->title(w);
        if (!t.empty()) out.push_back(WindowInfo{static_cast<WindowHandle>(w), t});
    }
    return out;
}

bool X11Desktop::bringToFront(WindowHandle window) {
    Impl& m = *impl_;
    if (!m.dpy || !window) return false;
    Window w = static_cast<Window>(window);
    QuietErrors q(m.dpy);
    XWindowAttributes a;
    if (!XGetWindowAttributes(m.dpy, w, &a)) return false;
    if (m.hasWindowManager()) {
        // Source indication 2 (a pager): the window manager's focus-stealing
        // prevention lets the request through, as SetForegroundWindow does
        // for the process the user last worked in.
        XEvent e{};
        e.xclient.type = ClientMessage;
        e.xclient.window = w;
        e.xclient.message_type = m.netActiveWindow;
        e.xclient.format = 32;
        e.xclient.data.l[0] = 2;
        e.xclient.data.l[1] = CurrentTime;
        XSendEvent(m.dpy, m.root, False, SubstructureRedirectMask | SubstructureNotifyMask, &e);
    }
    XRaiseWindow(m.dpy, w);
    if (a.map_state == IsViewable) XSetInputFocus(m.dpy, w, RevertToParent, CurrentTime);
    return !q.failed();
}

WindowHandle X11Desktop::foregroundWindow() {
    Impl& m = *impl_;
    if (!m.dpy) return 0;
    QuietErrors q(m.dpy);
    if (m.hasWindowManager()) {
        auto active = m.windowProperty(m.root, m.netActiveWindow);
        if (!active.empty() && active[0]) return static_cast<WindowHandle>(active[0]);
    }
    Window focus = 0;
    int revert;
    XGetInputFocus(m.dpy, &focus, &revert);
    if (focus == None || focus == PointerRoot) return 0;
    // Climb to the child of the root: that is the top-level window.
    for (Window w = focus;;) {
        Window r, parent;
        Window* children = nullptr;
        unsigned int n;
        if (!XQueryTree(m.dpy, w, &r, &parent, &children, &n)) return 0;
        if (children) XFree(children);
        if (parent == r || parent == 0) return static_cast<WindowHandle>(w);
        w = parent;
    }
}

bool X11Desktop::sendKeys(const std::string& keys) {
    Impl& m = *impl_;
    if (!m.dpy || !m.xtest) return false;
    auto strokes = parseSendKeys(keys);
    if (!strokes) return false;
    bool ok = true;
    for (const auto& k : *strokes) ok = m.type(k) && ok;
    XSync(m.dpy, False);
    return ok;
}

bool X11Desktop::isKeyDown(Key key) {
    Impl& m = *impl_;
    if (!m.dpy) return false;
    if (key == Key::LeftButton || key == Key::RightButton) {
        Window r, child;
        int rx, ry, wx, wy;
        unsigned int mask = 0;
        XQueryPointer(m.dpy, m.root, &r, &child, &rx, &ry, &wx, &wy, &mask);
        return mask & (key == Key::LeftButton ? Button1Mask : Button3Mask);
    }
    char keys[32];
    XQueryKeymap(m.dpy, keys);
    switch (key) {
        case Key::Escape:
            return m.keysymDown(keys, XK_Escape);
        case Key::Return:
            return m.keysymDown(keys, XK_Return) || m.keysymDown(keys, XK_KP_Enter);
        case Key::Shift:
            return m.keysymDown(keys, XK_Shift_L) || m.keysymDown(keys, XK_Shift_R);
        case Key::Control:
            return m.keysymDown(keys, XK_Control_L) || m.keysymDown(keys, XK_Control_R);
        default:
            return false;
    }
}

void X11Desktop::sleepMs(int milliseconds) {
    if (milliseconds > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void X11Desktop::pumpMessages() {
    if (impl_->dpy) XFlush(impl_->dpy);
    if (onPump) onPump();
}

}  // namespace platform
