#pragma once
#include <chrono>
#include <cstdint>

namespace platform {

class Clock {
  public:
    virtual ~Clock() = default;
    virtual std::chrono::system_clock::time_point now() = 0;  // local wall clock
    virtual std::int64_t tickMs() = 0;                        // monotonic milliseconds
};

}  // namespace platform
