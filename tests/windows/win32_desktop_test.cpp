// The Win32 desktop with a window of our own: enumerated by title, activated
// by a title prefix, typed into (a multi-line edit control) with SendInput.
#include "platform/win32/win32_desktop.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>

#include "platform/win32/utf16.h"

namespace platform {
namespace {

class Win32DesktopTest : public ::testing::Test {
  protected:
    void SetUp() override {
        HINSTANCE inst = GetModuleHandleW(nullptr);
        WNDCLASSW wc{};
        wc.lpfnWndProc = DefWindowProcW;
        wc.hInstance = inst;
        wc.lpszClassName = L"TessaraTestHost";
        RegisterClassW(&wc);
        host_ =
            CreateWindowExW(0, L"TessaraTestHost", L"Tessara Testhost 2015 - [Zeichnung1.dwg]",
                            WS_OVERLAPPEDWINDOW, 10, 10, 400, 300, nullptr, nullptr, inst, nullptr);
        if (!host_ && GetEnvironmentVariableW(L"DISPLAY", nullptr, 0) == 0)
            GTEST_FAIL()
                << "wine has no X display (DISPLAY unset); `make test` gives it one of its own";
        ASSERT_NE(host_, nullptr) << "no window could be created";
        edit_ =
            CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE | ES_MULTILINE | ES_WANTRETURN,
                            0, 0, 380, 250, host_, nullptr, inst, nullptr);
        ASSERT_NE(edit_, nullptr);
        ShowWindow(host_, SW_SHOW);
        UpdateWindow(host_);
        desktop_.pumpMessages();
    }
    void TearDown() override {
        if (host_) DestroyWindow(host_);
        desktop_.pumpMessages();
    }
    std::string editText() {
        wchar_t buf[512] = {};
        GetWindowTextW(edit_, buf, 511);
        return win32::toUtf8(buf);
    }
    // Pumps until the edit control holds `expected` or a generous bound passes.
    std::string waitForText(const std::string& expected) {
        auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (editText() != expected && std::chrono::steady_clock::now() < until) {
            desktop_.pumpMessages();
            desktop_.sleepMs(10);
        }
        return editText();
    }
    Win32Desktop desktop_;
    HWND host_ = nullptr;
    HWND edit_ = nullptr;
};

TEST_F(Win32DesktopTest, EnumeratesActivatesAndTypesIntoAnEditControl) {
    bool found = false;
    for (const auto& w : desktop_.topLevelWindows())
        if (w.handle == reinterpret_cast<WindowHandle>(host_)) {
            EXPECT_EQ(w.title, "Tessara Testhost 2015 - [Zeichnung1.dwg]");
            found = true;
        }
    EXPECT_TRUE(found);

    ASSERT_TRUE(desktop_.activateByTitle("tessara testhost"));
    EXPECT_EQ(desktop_.foregroundWindow(), reinterpret_cast<WindowHandle>(host_));
    SetFocus(edit_);
    ASSERT_TRUE(desktop_.sendKeys("LINE{ENTER}{(}load \"a b\"{)}~x+y"));
    EXPECT_EQ(waitForText("LINE\r\n(load \"a b\")\r\nxY"), "LINE\r\n(load \"a b\")\r\nxY");
    EXPECT_FALSE(desktop_.sendKeys("{NICHTS}"));
    EXPECT_FALSE(desktop_.activateByTitle("Kein solches Fenster"));
}

TEST_F(Win32DesktopTest, KeyStateFollowsInjectedInput) {
    ASSERT_TRUE(desktop_.bringToFront(reinterpret_cast<WindowHandle>(host_)));
    EXPECT_FALSE(desktop_.isKeyDown(Key::Escape));
    INPUT in{};
    in.type = INPUT_KEYBOARD;
    in.ki.wVk = VK_ESCAPE;
    for (bool unten : {true, false}) {
        in.ki.dwFlags = unten ? 0 : KEYEVENTF_KEYUP;
        SendInput(1, &in, sizeof in);
        desktop_.pumpMessages();
        EXPECT_EQ(desktop_.isKeyDown(Key::Escape), unten);
    }
}

}  // namespace
}  // namespace platform
