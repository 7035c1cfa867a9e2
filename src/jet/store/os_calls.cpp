// The file-server hook of os.h, shared by every system's layer.
#include <atomic>
#include <thread>

#include "jet/store/os.h"

namespace jet::os {

namespace {
std::atomic<std::int64_t> g_delayMicroseconds{0};
std::atomic<std::uint64_t> g_reads{0}, g_writes{0};
}  // namespace

void setCallDelay(std::chrono::microseconds perCall) {
    g_delayMicroseconds.store(perCall.count(), std::memory_order_relaxed);
}

CallCounts callCounts() {
    return {g_reads.load(std::memory_order_relaxed), g_writes.load(std::memory_order_relaxed)};
}

void countCall(bool write) {
    (write ? g_writes : g_reads).fetch_add(1, std::memory_order_relaxed);
    const std::int64_t us = g_delayMicroseconds.load(std::memory_order_relaxed);
    if (us > 0) std::this_thread::sleep_for(std::chrono::microseconds(us));
}

}  // namespace jet::os
