#pragma once
// The desktop as the CAD bridge and start-up see it: top-level windows by
// title, keystrokes to the foreground window, key and mouse-button state,
// sleeping and pumping pending window messages.
// Backends: win32/ (EnumWindows, SendInput, GetAsyncKeyState), x11/ (EWMH,
// XTest), memory/ (a scripted desktop for tests).
#include <cstdint>
#include <string>
#include <vector>

namespace platform {

using WindowHandle = std::uintptr_t;  // HWND on Windows, X11 Window id elsewhere

struct WindowInfo {
    WindowHandle handle = 0;
    std::string title;  // UTF-8
};

enum class Key { Escape, Return, LeftButton, RightButton, Shift, Control };

class Desktop {
  public:
    virtual ~Desktop() = default;

    // Visible top-level windows with a non-empty title, in the system's order.
    virtual std::vector<WindowInfo> topLevelWindows() = 0;
    // AppActivate: activates the first window whose title equals the text,
    // else the first whose title begins with it (case-insensitive), in the
    // order of topLevelWindows; the same on every backend.
    bool activateByTitle(const std::string& title);
    // SetForegroundWindow followed by BringWindowToTop.
    virtual bool bringToFront(WindowHandle window) = 0;
    // GetForegroundWindow: the window that has the focus now, 0 when none.
    virtual WindowHandle foregroundWindow() { return 0; }
    // Types into the foreground window. Brace notation as SendKeys: "{ESC}",
    // "{ENTER}", "~" for Enter, "{(}", "{)}", "{{}", "{}}", "{+}", "{^}",
    // "{%}", "{~}"; a carriage return "\r" is Enter too.
    virtual bool sendKeys(const std::string& keys) = 0;
    // Whether the key or button is down now (GetAsyncKeyState's high bit).
    virtual bool isKeyDown(Key key) = 0;
    virtual void sleepMs(int milliseconds) = 0;
    // DoEvents: processes pending window messages of this process.
    virtual void pumpMessages() = 0;
};

}  // namespace platform
