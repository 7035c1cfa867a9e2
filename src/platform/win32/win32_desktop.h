#pragma once
// The Windows desktop: EnumWindows and GetWindowText for the visible
// top-level windows, SetForegroundWindow and BringWindowToTop for
// activation, SendInput for keystrokes in the SendKeys brace notation,
// GetAsyncKeyState for keys and buttons, and the thread's message pump.
#include "platform/desktop.h"

namespace platform {

class Win32Desktop : public Desktop {
  public:
    std::vector<WindowInfo> topLevelWindows() override;
    bool bringToFront(WindowHandle window) override;
    WindowHandle foregroundWindow() override;
    bool sendKeys(const std::string& keys) override;
    bool isKeyDown(Key key) override;
    void sleepMs(int milliseconds) override;
    void pumpMessages() override;
};

}  // namespace platform
