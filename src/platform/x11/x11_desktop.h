#pragma once
// The desktop of an X11 session: top-level windows and their titles through
// EWMH (_NET_CLIENT_LIST, _NET_WM_NAME) or, without a window manager, the
// root window's mapped children and WM_NAME; activation through
// _NET_ACTIVE_WINDOW or raise-and-focus; keystrokes through XTest; key and
// button state from the server. Xlib stays inside the .cpp, so its macros
// never meet the rest of the program.
#include <functional>
#include <memory>
#include <string>

#include "platform/desktop.h"

namespace platform {

class X11Desktop : public Desktop {
  public:
    // Opens the display (nullptr: $DISPLAY). Without one every query finds
    // nothing and every action fails, as the program expects on a system
    // without a window system.
    explicit X11Desktop(const char* displayName = nullptr);
    ~X11Desktop() override;
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    bool connected() const;
    // Whether the XTest extension is there (keystrokes need it).
    bool canType() const;

    std::vector<WindowInfo> topLevelWindows() override;
    bool bringToFront(WindowHandle window) override;
    WindowHandle foregroundWindow() override;
    bool sendKeys(const std::string& keys) override;
    bool isKeyDown(Key key) override;
    void sleepMs(int milliseconds) override;
    // Flushes our requests to the server and then runs `onPump`, through
    // which the user interface processes its own pending events.
    void pumpMessages() override;

    std::function<void()> onPump;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace platform
