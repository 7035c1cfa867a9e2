// The X11 desktop against a real X server, one of the test's own (focus and
// typed keys must not meet the windows of other tests): a window of ours is
// found by its title, activated, typed into through XTest, and the key
// events it receives are read back.
// clang-format off
// GoogleTest first: Xlib's macros (None, Bool) would break its templates.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "eigener_x_server.h"
#include "platform/x11/x11_desktop.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
// clang-format on

namespace {

using tessara::test::EigenerXServer;
using tessara::test::warteAufDesktop;
using tessara::test::warteAufVerbindung;
using Uhr = std::chrono::steady_clock;
using namespace std::chrono_literals;

::testing::Environment* const xServer =
    ::testing::AddGlobalTestEnvironment(new tessara::test::EigenesDisplay);

// A top-level window in its own connection, as another program's window is.
class TestWindow {
  public:
    explicit TestWindow(const std::string& title, const char* display = nullptr) {
        dpy_ = XOpenDisplay(display);
        if (!dpy_) return;
        win_ = XCreateSimpleWindow(dpy_, DefaultRootWindow(dpy_), 10, 10, 200, 100, 0, 0, 0);
        XStoreName(dpy_, win_, title.c_str());
        Atom netWmName = XInternAtom(dpy_, "_NET_WM_NAME", False);
        Atom utf8 = XInternAtom(dpy_, "UTF8_STRING", False);
        XChangeProperty(dpy_, win_, netWmName, utf8, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(title.data()),
                        static_cast<int>(title.size()));
        XSelectInput(dpy_, win_,
                     KeyPressMask | StructureNotifyMask | FocusChangeMask | VisibilityChangeMask);
        // On screen once the server reports it mapped and visible (under a
        // window manager, inside its frame), within a generous bound. A
        // manager that is still starting may drop the map request, so it is
        // repeated, as a user would click again, when a second brings nothing.
        auto sichtbar = [this] {
            XWindowAttributes a;
            return XGetWindowAttributes(dpy_, win_, &a) && a.map_state == IsViewable;
        };
        const auto ende = Uhr::now() + 15s;
        while (!mapped_ && Uhr::now() < ende) {
            XMapWindow(dpy_, win_);
            XSync(dpy_, False);
            const auto nochmal = std::min(ende, Uhr::now() + 1s);
            while (!(mapped_ = sichtbar()) && Uhr::now() < nochmal) {
                XEvent e;
                while (XCheckTypedWindowEvent(dpy_, win_, MapNotify, &e) ||
                       XCheckTypedWindowEvent(dpy_, win_, VisibilityNotify, &e)) {
                }
                warteAufVerbindung(ConnectionNumber(dpy_), nochmal);
            }
        }
    }
    ~TestWindow() {
        if (dpy_) XCloseDisplay(dpy_);
    }
    bool ok() const { return dpy_ != nullptr && mapped_; }
    Window id() const { return win_; }

    // The text of the key presses received, Return as "\r": all that the
    // server has sent so far, and more as it comes until `expected`
    // characters arrived or a generous bound passes.
    std::string typedText(std::size_t expected) {
        std::string text;
        const auto ende = Uhr::now() + 10s;
        XSync(dpy_, False);
        for (;;) {
            while (XPending(dpy_)) {
                XEvent e;
                XNextEvent(dpy_, &e);
                // Keys the keymap lacks arrive on borrowed keycodes; a client
                // follows the mapping change as every X program must.
                if (e.type == MappingNotify) XRefreshKeyboardMapping(&e.xmapping);
                if (e.type != KeyPress) continue;
                char buf[8];
                KeySym sym;
                int n = XLookupString(&e.xkey, buf, sizeof buf, &sym, nullptr);
                if (sym == XK_Return)
                    text += '\r';
                else if (sym == XK_Escape)
                    text += "<ESC>";
                else if (n > 0)
                    text.append(buf, static_cast<std::size_t>(n));
            }
            if (text.size() >= expected || Uhr::now() >= ende) break;
            warteAufVerbindung(ConnectionNumber(dpy_), ende);
        }
        return text;
    }

  private:
    Display* dpy_ = nullptr;
    Window win_ = 0;
    bool mapped_ = false;
};

class X11DesktopTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!desktop_.connected()) GTEST_FAIL() << "no X display: Xvfb did not start";
        ASSERT_TRUE(desktop_.canType()) << "the X server lacks the XTEST extension";
    }
    platform::X11Desktop desktop_;
};

TEST_F(X11DesktopTest, FindsActivatesAndTypesIntoAWindowByTitle) {
    TestWindow host("Simulierter Host LT 2015 - [Zeichnung1.dwg]");
    ASSERT_TRUE(host.ok());
    TestWindow other("Anderes Fenster");
    ASSERT_TRUE(other.ok());

    bool found = false;
    for (const auto& w : desktop_.topLevelWindows())
        if (w.handle == host.id()) {
            EXPECT_EQ(w.title, "Simulierter Host LT 2015 - [Zeichnung1.dwg]");
            found = true;
        }
    ASSERT_TRUE(found);

    // The focus moves between windows; a prefix in other case finds one, as
    // AppActivate does.
    ASSERT_TRUE(desktop_.activateByTitle("Anderes Fenster"));
    EXPECT_EQ(desktop_.foregroundWindow(), other.id());
    ASSERT_TRUE(desktop_.activateByTitle("simulierter host lt"));
    EXPECT_EQ(desktop_.foregroundWindow(), host.id());
    EXPECT_FALSE(desktop_.activateByTitle("Kein solches Fenster"));
    EXPECT_FALSE(desktop_.activateByTitle(""));

    ASSERT_TRUE(desktop_.sendKeys("LINE{ENTER}"));
    EXPECT_EQ(host.typedText(5), "LINE\r");

    // Shifted characters, the brace forms, "~" and a carriage return, and a
    // character the default keymap lacks.
    ASSERT_TRUE(desktop_.sendKeys("{(}load \"C:/a b\"{)}~x\r{ESC}ä"));
    EXPECT_EQ(host.typedText(22), "(load \"C:/a b\")\rx\r<ESC>\xE4");

    // Malformed keys type nothing; modifiers are held for one key; a named key.
    EXPECT_FALSE(desktop_.sendKeys("{UNBEKANNT}"));
    EXPECT_FALSE(desktop_.sendKeys("(ohne Umschalt)"));
    ASSERT_TRUE(desktop_.sendKeys("+ab{TAB}"));
    EXPECT_EQ(host.typedText(3), "Ab\t");

    EXPECT_TRUE(other.typedText(0).empty());
}

TEST_F(X11DesktopTest, ReadsKeyAndButtonState) {
    Display* d = XOpenDisplay(nullptr);
    ASSERT_NE(d, nullptr);
    const KeyCode esc = XKeysymToKeycode(d, XK_Escape);
    const std::pair<std::function<void(Bool)>, platform::Key> faelle[] = {
        {[&](Bool unten) { XTestFakeKeyEvent(d, esc, unten, CurrentTime); }, platform::Key::Escape},
        {[&](Bool unten) { XTestFakeButtonEvent(d, 1, unten, CurrentTime); },
         platform::Key::LeftButton},
        {[&](Bool unten) { XTestFakeButtonEvent(d, 3, unten, CurrentTime); },
         platform::Key::RightButton}};
    for (const auto& [druecken, key] : faelle) {
        for (const Bool unten : {True, False}) {
            druecken(unten);
            XSync(d, False);
            EXPECT_EQ(desktop_.isKeyDown(key), unten == True);
        }
    }
    XCloseDisplay(d);
}

// An X server with an EWMH window manager (openbox) on it, so the
// _NET_CLIENT_LIST and _NET_ACTIVE_WINDOW route is exercised as on a user's
// desktop. The manager answers asynchronously: each step waits until the
// root window reports the change.
TEST(X11DesktopUnderAWindowManager, FindsActivatesAndTypesThroughEwmh) {
    EigenerXServer server(true);
    ASSERT_TRUE(server.bereit())
        << "Xvfb with openbox did not come up (scripts/setup-deps installs both)";
    platform::X11Desktop desktop(server.name().c_str());
    ASSERT_TRUE(desktop.connected());
    TestWindow host("AutoCAD LT 2015 - [Zeichnung1.dwg]", server.name().c_str());
    TestWindow other("Bricscad Pro V10 - [Plan.dwg]", server.name().c_str());
    ASSERT_TRUE(host.ok() && other.ok());

    // The manager lists its clients once it has taken them on.
    std::vector<platform::WindowInfo> windows;
    warteAufDesktop(server.name(), [&] {
        windows = desktop.topLevelWindows();
        return windows.size() >= 2;
    });
    ASSERT_EQ(windows.size(), 2u);
    bool found = false;
    for (const auto& w : windows)
        if (w.handle == host.id()) found = w.title == "AutoCAD LT 2015 - [Zeichnung1.dwg]";
    EXPECT_TRUE(found);

    auto imVordergrund = [&](Window w) {
        return warteAufDesktop(server.name(), [&] { return desktop.foregroundWindow() == w; });
    };
    ASSERT_TRUE(desktop.activateByTitle("Bricscad"));
    EXPECT_TRUE(imVordergrund(other.id()));
    ASSERT_TRUE(desktop.activateByTitle("autocad lt"));
    ASSERT_TRUE(imVordergrund(host.id()));
    // The activated window is on top, and listed first as in the z-order.
    auto topFirst = [&] {
        auto w = desktop.topLevelWindows();
        return w.empty() ? platform::WindowHandle(0) : w.front().handle;
    };
    warteAufDesktop(server.name(), [&] { return topFirst() == host.id(); });
    EXPECT_EQ(topFirst(), host.id());
    ASSERT_TRUE(desktop.sendKeys("LINE{ENTER}"));
    EXPECT_EQ(host.typedText(5), "LINE\r");
    EXPECT_EQ(other.typedText(0), "");
}

TEST(X11DesktopWithoutDisplay, FindsNothingAndDoesNothing) {
    platform::X11Desktop none(":9999");  // no such server
    EXPECT_FALSE(none.connected());
    EXPECT_TRUE(none.topLevelWindows().empty());
    EXPECT_FALSE(none.activateByTitle("AutoCAD"));
    EXPECT_FALSE(none.sendKeys("{ESC}"));
    EXPECT_FALSE(none.isKeyDown(platform::Key::Escape));
    EXPECT_EQ(none.foregroundWindow(), 0u);
}

}  // namespace
