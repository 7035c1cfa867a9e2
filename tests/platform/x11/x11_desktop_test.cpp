// The X11 desktop against a real X server (the test run's Xvfb): a window of
// our own is found by its title, activated, typed into through XTest, and
// the key events it receives are read back.
// clang-format off
// GoogleTest first: Xlib's macros (None, Bool) would break its templates.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/x11/x11_desktop.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
// clang-format on

extern "C" char** environ;

namespace {

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
        XSelectInput(dpy_, win_, KeyPressMask | StructureNotifyMask | FocusChangeMask);
        // On screen within a generous bound. A window manager that is still
        // starting may drop the map request, so it is repeated as a user
        // would click again.
        auto until = std::chrono::steady_clock::now() + std::chrono::seconds(15);
        auto nextMap = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() < until) {
            if (std::chrono::steady_clock::now() >= nextMap) {
                XMapWindow(dpy_, win_);
                nextMap += std::chrono::seconds(1);
            }
            XSync(dpy_, False);
            XWindowAttributes a;
            if (XGetWindowAttributes(dpy_, win_, &a) && a.map_state == IsViewable) {
                mapped_ = true;
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        XSync(dpy_, False);
    }
    ~TestWindow() {
        if (dpy_) XCloseDisplay(dpy_);
    }
    bool ok() const { return dpy_ != nullptr && mapped_; }
    Window id() const { return win_; }

    // The text of the key presses received, Return as "\r"; waits until
    // `expected` characters arrived or a generous bound passes.
    std::string typedText(std::size_t expected) {
        std::string text;
        auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (text.size() < expected && std::chrono::steady_clock::now() < until) {
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
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
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
        if (!desktop_.connected())
            GTEST_FAIL() << "no X display (DISPLAY unset); run under xvfb-run as `make test` does";
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

    // A prefix in other case finds it, as AppActivate does.
    ASSERT_TRUE(desktop_.activateByTitle("simulierter host lt"));
    EXPECT_EQ(desktop_.foregroundWindow(), host.id());

    ASSERT_TRUE(desktop_.sendKeys("LINE{ENTER}"));
    EXPECT_EQ(host.typedText(5), "LINE\r");

    // Shifted characters, the brace forms, "~" and a carriage return, and a
    // character the default keymap lacks.
    ASSERT_TRUE(desktop_.sendKeys("{(}load \"C:/a b\"{)}~x\r{ESC}ä"));
    EXPECT_EQ(host.typedText(22), "(load \"C:/a b\")\rx\r<ESC>\xE4");

    // Modifiers held for one key, and a named key.
    ASSERT_TRUE(desktop_.sendKeys("+ab{TAB}"));
    EXPECT_EQ(host.typedText(3), "Ab\t");

    EXPECT_TRUE(other.typedText(0).empty());
}

TEST_F(X11DesktopTest, ActivationMovesTheFocusBetweenWindows) {
    TestWindow a("Fenster Alpha");
    TestWindow b("Fenster Beta");
    ASSERT_TRUE(a.ok() && b.ok());
    ASSERT_TRUE(desktop_.activateByTitle("Fenster Beta"));
    EXPECT_EQ(desktop_.foregroundWindow(), b.id());
    ASSERT_TRUE(desktop_.activateByTitle("Fenster Alpha"));
    EXPECT_EQ(desktop_.foregroundWindow(), a.id());
    EXPECT_FALSE(desktop_.activateByTitle("Kein solches Fenster"));
    EXPECT_FALSE(desktop_.activateByTitle(""));
}

TEST_F(X11DesktopTest, MalformedKeysTypeNothing) {
    TestWindow host("Tipp-Ziel");
    ASSERT_TRUE(host.ok());
    ASSERT_TRUE(desktop_.activateByTitle("Tipp-Ziel"));
    EXPECT_FALSE(desktop_.sendKeys("{UNBEKANNT}"));
    EXPECT_FALSE(desktop_.sendKeys("(ohne Umschalt)"));
    ASSERT_TRUE(desktop_.sendKeys("ok"));
    EXPECT_EQ(host.typedText(2), "ok");
}

TEST_F(X11DesktopTest, ReadsKeyAndButtonState) {
    Display* d = XOpenDisplay(nullptr);
    ASSERT_NE(d, nullptr);
    KeyCode esc = XKeysymToKeycode(d, XK_Escape);
    EXPECT_FALSE(desktop_.isKeyDown(platform::Key::Escape));
    XTestFakeKeyEvent(d, esc, True, CurrentTime);
    XSync(d, False);
    EXPECT_TRUE(desktop_.isKeyDown(platform::Key::Escape));
    XTestFakeKeyEvent(d, esc, False, CurrentTime);
    XSync(d, False);
    EXPECT_FALSE(desktop_.isKeyDown(platform::Key::Escape));

    for (auto [button, key] :
         {std::pair{1u, platform::Key::LeftButton}, std::pair{3u, platform::Key::RightButton}}) {
        EXPECT_FALSE(desktop_.isKeyDown(key));
        XTestFakeButtonEvent(d, button, True, CurrentTime);
        XSync(d, False);
        EXPECT_TRUE(desktop_.isKeyDown(key));
        XTestFakeButtonEvent(d, button, False, CurrentTime);
        XSync(d, False);
        EXPECT_FALSE(desktop_.isKeyDown(key));
    }
    XCloseDisplay(d);
}

// An X server of our own with an EWMH window manager (openbox) on it, so
// the _NET_CLIENT_LIST and _NET_ACTIVE_WINDOW route is exercised as on a
// user's desktop, without disturbing the shared test display.
class ManagedDisplay {
  public:
    ManagedDisplay() {
        int fds[2];
        if (pipe(fds) != 0) return;
        fcntl(fds[0], F_SETFD, FD_CLOEXEC);
        std::string fd = std::to_string(fds[1]);
        xvfb_ = spawn({"Xvfb", "-displayfd", fd, "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-noreset"},
                      {});
        close(fds[1]);
        std::string number;
        char c;
        while (read(fds[0], &c, 1) == 1 && c != '\n') number += c;
        close(fds[0]);
        if (number.empty()) return;
        name_ = ":" + number;
        wm_ = spawn({"openbox", "--sm-disable"}, {"DISPLAY=" + name_});
        // Ready once the manager announces itself on the root window.
        Display* d = XOpenDisplay(name_.c_str());
        if (!d) return;
        Atom check = XInternAtom(d, "_NET_SUPPORTING_WM_CHECK", False);
        auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (std::chrono::steady_clock::now() < until) {
            Atom type;
            int format;
            unsigned long n = 0, after;
            unsigned char* data = nullptr;
            XGetWindowProperty(d, DefaultRootWindow(d), check, 0, 1, False, XA_WINDOW, &type,
                               &format, &n, &after, &data);
            if (data) XFree(data);
            if (n == 1) {
                ready_ = true;
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        XCloseDisplay(d);
    }
    ~ManagedDisplay() {
        for (pid_t p : {wm_, xvfb_})
            if (p > 0) {
                kill(p, SIGTERM);
                waitpid(p, nullptr, 0);
            }
    }
    bool ready() const { return ready_; }
    const char* name() const { return name_.c_str(); }

  private:
    static pid_t spawn(std::vector<std::string> args, std::vector<std::string> extraEnv) {
        std::vector<char*> argv, envp;
        for (auto& a : args) argv.push_back(a.data());
        argv.push_back(nullptr);
        for (auto& e : extraEnv) envp.push_back(e.data());
        for (char** e = environ; *e; ++e)
            if (extraEnv.empty() || std::string(*e).rfind("DISPLAY=", 0) != 0) envp.push_back(*e);
        envp.push_back(nullptr);
        posix_spawn_file_actions_t fa;
        posix_spawn_file_actions_init(&fa);
        posix_spawn_file_actions_addopen(&fa, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&fa, 2, "/dev/null", O_WRONLY, 0);
        pid_t pid = -1;
        if (posix_spawnp(&pid, argv[0], &fa, nullptr, argv.data(), envp.data()) != 0) pid = -1;
        posix_spawn_file_actions_destroy(&fa);
        return pid;
    }
    pid_t xvfb_ = -1, wm_ = -1;
    std::string name_;
    bool ready_ = false;
};

// Waits, within a generous bound, until the window manager has made `w` the
// active window (it does so asynchronously).
bool becomesForeground(platform::X11Desktop& d, Window w) {
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < until) {
        if (d.foregroundWindow() == w) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

TEST(X11DesktopUnderAWindowManager, FindsActivatesAndTypesThroughEwmh) {
    ManagedDisplay server;
    ASSERT_TRUE(server.ready())
        << "Xvfb with openbox did not come up (scripts/setup-deps installs both)";
    platform::X11Desktop desktop(server.name());
    ASSERT_TRUE(desktop.connected());
    TestWindow host("AutoCAD LT 2015 - [Zeichnung1.dwg]", server.name());
    TestWindow other("Bricscad Pro V10 - [Plan.dwg]", server.name());
    ASSERT_TRUE(host.ok() && other.ok());

    // The manager lists its clients once it has taken them on.
    std::vector<platform::WindowInfo> windows;
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (windows.size() < 2 && std::chrono::steady_clock::now() < until) {
        windows = desktop.topLevelWindows();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ASSERT_EQ(windows.size(), 2u);
    bool found = false;
    for (const auto& w : windows)
        if (w.handle == host.id()) found = w.title == "AutoCAD LT 2015 - [Zeichnung1.dwg]";
    EXPECT_TRUE(found);

    ASSERT_TRUE(desktop.activateByTitle("Bricscad"));
    EXPECT_TRUE(becomesForeground(desktop, other.id()));
    ASSERT_TRUE(desktop.activateByTitle("autocad lt"));
    ASSERT_TRUE(becomesForeground(desktop, host.id()));
    // The activated window is on top, and listed first as in the z-order.
    auto topFirst = [&] {
        auto w = desktop.topLevelWindows();
        return w.empty() ? platform::WindowHandle(0) : w.front().handle;
    };
    until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (topFirst() != host.id() && std::chrono::steady_clock::now() < until)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
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
