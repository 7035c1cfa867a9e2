#pragma once
// A clock that moves only when told to: by the test, or by the memory
// desktop's sleep.
#include <chrono>
#include <cstdint>

#include "platform/clock.h"

namespace platform {

class FakeClock : public Clock {
  public:
    FakeClock() = default;
    explicit FakeClock(std::chrono::system_clock::time_point start) : wall_(start) {}

    std::chrono::system_clock::time_point now() override { return wall_; }
    std::int64_t tickMs() override { return tick_; }

    // Moves both the wall clock and the monotonic tick forward.
    void advanceMs(std::int64_t ms) {
        tick_ += ms;
        wall_ += std::chrono::milliseconds(ms);
    }
    void setNow(std::chrono::system_clock::time_point t) { wall_ = t; }

  private:
    // 2015-06-01 10:00:00 UTC: a fixed, unremarkable default.
    std::chrono::system_clock::time_point wall_{std::chrono::seconds(1433152800)};
    std::int64_t tick_ = 1000;
};

}  // namespace platform
