#include "platform/win32/win32_desktop.h"

#include <windows.h>

#include <vector>

#include "jet/format/text.h"
#include "platform/send_keys.h"
#include "platform/win32/utf16.h"

namespace platform {
namespace {

BOOL CALLBACK collect(HWND hwnd, LPARAM param) {
    auto* out = reinterpret_cast<std::vector<WindowInfo>*>(param);
    if (!IsWindowVisible(hwnd)) return TRUE;
    int len = GetWindowTextLengthW(hwnd);
    if (len <= 0) return TRUE;
    std::wstring text(static_cast<std::size_t>(len) + 1, L'\0');
    int got = GetWindowTextW(hwnd, text.data(), len + 1);
    text.resize(static_cast<std::size_t>(got > 0 ? got : 0));
    if (!text.empty())
        out->push_back(WindowInfo{reinterpret_cast<WindowHandle>(hwnd), win32::toUtf8(text)});
    return TRUE;
}

WORD namedVk(NamedKey k) {
    switch (k) {
        case NamedKey::Enter:
            return VK_RETURN;
        case NamedKey::Escape:
            return VK_ESCAPE;
        case NamedKey::Tab:
            return VK_TAB;
        case NamedKey::Backspace:
            return VK_BACK;
        case NamedKey::Delete:
            return VK_DELETE;
        case NamedKey::Insert:
            return VK_INSERT;
        case NamedKey::Home:
            return VK_HOME;
        case NamedKey::End:
            return VK_END;
        case NamedKey::PageUp:
            return VK_PRIOR;
        case NamedKey::PageDown:
            return VK_NEXT;
        case NamedKey::Left:
            return VK_LEFT;
        case NamedKey::Right:
            return VK_RIGHT;
        case NamedKey::Up:
            return VK_UP;
        case NamedKey::Down:
            return VK_DOWN;
        case NamedKey::Character:
            return 0;
        default:
            return static_cast<WORD>(VK_F1 +
                                     (static_cast<int>(k) - static_cast<int>(NamedKey::F1)));
    }
}

INPUT vkInput(WORD vk, bool up) {
    INPUT in{};
    in.type = INPUT_KEYBOARD;
    in.ki.wVk = vk;
    in.ki.wScan = static_cast<WORD>(MapVirtualKeyW(vk, MAPVK_VK_TO_VSC));
    in.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    return in;
}

INPUT unicodeInput(wchar_t unit, bool up) {
    INPUT in{};
    in.type = INPUT_KEYBOARD;
    in.ki.wScan = unit;
    in.ki.dwFlags = KEYEVENTF_UNICODE | (up ? KEYEVENTF_KEYUP : 0);
    return in;
}

void appendStroke(std::vector<INPUT>& out, const KeyStroke& k) {
    bool shift = k.shift, control = k.control, alt = k.alt;
    WORD vk = namedVk(k.key);
    std::wstring units;
    if (k.key == NamedKey::Character) {
        std::string utf8;
        jet::appendUtf8(utf8, k.character);
        units = win32::toWide(utf8);
        if (units.size() == 1) {
            SHORT scan = VkKeyScanW(units[0]);
            // A character on the keyboard with at most Shift, Ctrl and Alt is
            // typed as its key, so the target sees ordinary key messages;
            // anything else goes as a Unicode character.
            if (scan != -1 && (scan & 0xFF) != 0xFF) {
                vk = static_cast<WORD>(scan & 0xFF);
                shift = shift || (scan & 0x100);
                control = control || (scan & 0x200);
                alt = alt || (scan & 0x400);
            }
        }
    }
    if (control) out.push_back(vkInput(VK_CONTROL, false));
    if (alt) out.push_back(vkInput(VK_MENU, false));
    if (shift) out.push_back(vkInput(VK_SHIFT, false));
    if (vk) {
        out.push_back(vkInput(vk, false));
        out.push_back(vkInput(vk, true));
    } else {
        for (wchar_t u : units) {
            out.push_back(unicodeInput(u, false));
            out.push_back(unicodeInput(u, true));
        }
    }
    if (shift) out.push_back(vkInput(VK_SHIFT, true));
    if (alt) out.push_back(vkInput(VK_MENU, true));
    if (control) out.push_back(vkInput(VK_CONTROL, true));
}

}  // namespace

std::vector<WindowInfo> Win32Desktop::topLevelWindows() {
    std::vector<WindowInfo> out;
    EnumWindows(collect, reinterpret_cast<LPARAM>(&out));
    return out;
}

bool Win32Desktop::bringToFront(WindowHandle window) {
    HWND hwnd = reinterpret_cast<HWND>(window);
    if (!IsWindow(hwnd)) return false;
    if (IsIconic(hwnd)) ShowWindow(hwnd, SW_RESTORE);
    bool ok = SetForegroundWindow(hwnd) != FALSE;
    if (!ok || GetForegroundWindow() != hwnd) {
        // Windows lets only the foreground thread hand the foreground on;
        // joining its input queue for a moment makes us that thread.
        DWORD fg = GetWindowThreadProcessId(GetForegroundWindow(), nullptr);
        DWORD me = GetCurrentThreadId();
        if (fg && fg != me && AttachThreadInput(me, fg, TRUE)) {
            ok = SetForegroundWindow(hwnd) != FALSE;
            AttachThreadInput(me, fg, FALSE);
        }
    }
    BringWindowToTop(hwnd);
    return ok || GetForegroundWindow() == hwnd;
}

WindowHandle Win32Desktop::foregroundWindow() {
    return reinterpret_cast<WindowHandle>(GetForegroundWindow());
}

bool Win32Desktop::sendKeys(const std::string& keys) {
    auto strokes = parseSendKeys(keys);
    if (!strokes) return false;
    std::vector<INPUT> inputs;
    for (const auto& k : *strokes) appendStroke(inputs, k);
    if (inputs.empty()) return true;
    UINT sent = SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    // SendKeys with Wait: return once the foreground window's thread has
    // come round to its message queue again.
    HWND target = GetForegroundWindow();
    if (target && GetWindowThreadProcessId(target, nullptr) == GetCurrentThreadId()) {
        pumpMessages();
    } else if (target) {
        DWORD_PTR result;
        SendMessageTimeoutW(target, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 5000, &result);
    }
    return sent == inputs.size();
}

bool Win32Desktop::isKeyDown(Key key) {
    int vk = 0;
    switch (key) {
        case Key::Escape:
            vk = VK_ESCAPE;
            break;
        case Key::Return:
            vk = VK_RETURN;
            break;
        case Key::LeftButton:
            vk = VK_LBUTTON;
            break;
        case Key::RightButton:
            vk = VK_RBUTTON;
            break;
        case Key::Shift:
            vk = VK_SHIFT;
            break;
        case Key::Control:
            vk = VK_CONTROL;
            break;
    }
    return (GetAsyncKeyState(vk) & 0x8000) != 0;
}

void Win32Desktop::sleepMs(int milliseconds) {
    Sleep(milliseconds > 0 ? static_cast<DWORD>(milliseconds) : 0);
}

void Win32Desktop::pumpMessages() {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            // Leave the quit request for the main loop.
            PostQuitMessage(static_cast<int>(msg.wParam));
            break;
        }
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

}  // namespace platform
