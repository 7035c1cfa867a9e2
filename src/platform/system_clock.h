#pragma once
// The machine's clocks.
#include "platform/clock.h"

namespace platform {

class SystemClock : public Clock {
  public:
    std::chrono::system_clock::time_point now() override;
    std::int64_t tickMs() override;
};

}  // namespace platform
