#include "platform/memory/memory_desktop.h"

#include <algorithm>

#include "platform/send_keys.h"

namespace platform {

MemoryDesktop::Window* MemoryDesktop::find(WindowHandle h) {
    for (auto& w : windows_)
        if (w.handle == h) return &w;
    return nullptr;
}

WindowHandle MemoryDesktop::addWindow(const std::string& title) {
    WindowHandle h = next_;
    next_ += 0x10;
    windows_.push_back(Window{h, title});
    return h;
}

void MemoryDesktop::removeWindow(WindowHandle window) {
    windows_.erase(std::remove_if(windows_.begin(), windows_.end(),
                                  [&](const Window& w) { return w.handle == window; }),
                   windows_.end());
    if (foreground_ == window) foreground_ = 0;
}

void MemoryDesktop::setTitle(WindowHandle window, const std::string& title) {
    if (Window* w = find(window)) w->title = title;
}

void MemoryDesktop::refuseActivation(WindowHandle window, bool refuse) {
    if (Window* w = find(window)) w->refuse = refuse;
}

void MemoryDesktop::setKeyDown(Key key, bool down) {
    down_[key] = down;
    if (!down) {
        pressAfter_.erase(key);
        presses_.erase(std::remove_if(presses_.begin(), presses_.end(),
                                      [&](const Press& p) { return p.key == key; }),
                       presses_.end());
    }
}

void MemoryDesktop::pressDuring(Key key, std::int64_t fromMs, std::int64_t untilMs) {
    presses_.push_back(Press{key, fromMs, untilMs});
}

void MemoryDesktop::pressAfterQueries(Key key, int queries) { pressAfter_[key] = queries; }

int MemoryDesktop::queries(Key key) const {
    auto it = queries_.find(key);
    return it == queries_.end() ? 0 : it->second;
}

std::string MemoryDesktop::allTypedKeys() const {
    std::string all;
    for (const auto& t : typed_) all += t.keys;
    return all;
}

void MemoryDesktop::clearRecords() {
    typed_.clear();
    activations_.clear();
    sleeps_.clear();
    slept_ = 0;
    pumps_ = 0;
}

std::vector<WindowInfo> MemoryDesktop::topLevelWindows() {
    std::vector<WindowInfo> out;
    for (const auto& w : windows_)
        if (!w.title.empty()) out.push_back(WindowInfo{w.handle, w.title});
    return out;
}

bool MemoryDesktop::activate(Window& w) {
    if (w.refuse) return false;
    foreground_ = w.handle;
    activations_.push_back(w.handle);
    return true;
}

bool MemoryDesktop::bringToFront(WindowHandle window) {
    Window* w = find(window);
    return w && activate(*w);
}

bool MemoryDesktop::sendKeys(const std::string& keys) {
    if (!parseSendKeys(keys)) return false;
    typed_.push_back(TypedKeys{foreground_, keys});
    if (onKeys) onKeys(typed_.back());
    return true;
}

bool MemoryDesktop::isKeyDown(Key key) {
    int n = ++queries_[key];
    if (auto it = pressAfter_.find(key); it != pressAfter_.end() && n >= it->second) return true;
    if (auto it = down_.find(key); it != down_.end() && it->second) return true;
    if (clock_) {
        std::int64_t t = clock_->tickMs();
        for (const auto& p : presses_)
            if (p.key == key && t >= p.from && t < p.until) return true;
    }
    return false;
}

void MemoryDesktop::sleepMs(int milliseconds) {
    int ms = std::max(0, milliseconds);
    sleeps_.push_back(ms);
    slept_ += ms;
    if (clock_) clock_->advanceMs(ms);
    if (onPump) onPump();
}

void MemoryDesktop::pumpMessages() {
    ++pumps_;
    if (onPump) onPump();
}

}  // namespace platform
