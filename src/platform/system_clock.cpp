#include "platform/system_clock.h"

namespace platform {

std::chrono::system_clock::time_point SystemClock::now() {
    return std::chrono::system_clock::now();
}

std::int64_t SystemClock::tickMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace platform
