#pragma once
// A scripted desktop: windows with titles that the test adds and removes,
// activations and typed keys recorded, key and button states set directly
// or scheduled on the fake clock or after a number of polls, and a sleep
// that advances the fake clock instead of waiting.
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "platform/memory/fake_clock.h"

namespace platform {

class MemoryDesktop : public Desktop {
  public:
    struct TypedKeys {
        WindowHandle target = 0;  // the foreground window when the keys were sent
        std::string keys;         // exactly as passed to sendKeys
    };

    // Without a clock, sleeping only adds to sleptMs().
    explicit MemoryDesktop(FakeClock* clock = nullptr) : clock_(clock) {}

    // --- the scene ---
    WindowHandle addWindow(const std::string& title);
    void removeWindow(WindowHandle window);
    void setTitle(WindowHandle window, const std::string& title);
    // Activation of this window fails from now on (a hung or elevated host).
    void refuseActivation(WindowHandle window, bool refuse = true);

    // --- key and button state ---
    void setKeyDown(Key key, bool down);
    // Down from `fromMs` (inclusive) to `untilMs` (exclusive) of the clock's tick.
    void pressDuring(Key key, std::int64_t fromMs, std::int64_t untilMs);
    // Down from the n-th query of this key on (1 = the first query), for
    // loops that poll without sleeping.
    void pressAfterQueries(Key key, int queries);
    int queries(Key key) const;

    // --- hooks ---
    // Runs on each sendKeys after recording, e.g. a simulated host reacting.
    std::function<void(const TypedKeys&)> onKeys;
    // Runs on each pumpMessages and sleepMs.
    std::function<void()> onPump;

    // --- what happened ---
    const std::vector<TypedKeys>& typed() const { return typed_; }
    // Every sendKeys text concatenated, for one-line comparisons.
    std::string allTypedKeys() const;
    const std::vector<WindowHandle>& activations() const { return activations_; }
    const std::vector<int>& sleeps() const { return sleeps_; }
    std::int64_t sleptMs() const { return slept_; }
    int pumps() const { return pumps_; }
    void clearRecords();

    // --- Desktop ---
    std::vector<WindowInfo> topLevelWindows() override;
    bool bringToFront(WindowHandle window) override;
    WindowHandle foregroundWindow() override { return foreground_; }
    bool sendKeys(const std::string& keys) override;
    bool isKeyDown(Key key) override;
    void sleepMs(int milliseconds) override;
    void pumpMessages() override;

  private:
    struct Window {
        WindowHandle handle;
        std::string title;
        bool refuse = false;
    };
    struct Press {
        Key key;
        std::int64_t from, until;
    };
    Window* find(WindowHandle h);
    bool activate(Window& w);

    FakeClock* clock_;
    std::vector<Window> windows_;
    WindowHandle next_ = 0x10010;
    WindowHandle foreground_ = 0;
    std::map<Key, bool> down_;
    std::vector<Press> presses_;
    std::map<Key, int> pressAfter_;
    std::map<Key, int> queries_;
    std::vector<TypedKeys> typed_;
    std::vector<WindowHandle> activations_;
    std::vector<int> sleeps_;
    std::int64_t slept_ = 0;
    int pumps_ = 0;
};

}  // namespace platform
