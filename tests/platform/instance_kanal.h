#pragma once
// Two channels of this process stand for the running program and a later
// start: the claim excludes a second one of the same process as of another.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "platform/instance_channel.h"

namespace platform {

// "OP|ARG|ARG" for each message, to compare whole lists.
inline std::vector<std::string> zeilen(const std::vector<InstanceMessage>& ms) {
    std::vector<std::string> out;
    for (const auto& m : ms) {
        out.push_back(m.operation);
        for (const auto& a : m.arguments) out.back() += "|" + a;
    }
    return out;
}

// Sends the messages in order from another thread while `holder` polls;
// what the holder received.
inline std::vector<std::string> sendeWaehrendAbholen(InstanceChannel& holder,
                                                     InstanceChannel& sender,
                                                     const std::string& name,
                                                     const std::vector<InstanceMessage>& ms) {
    auto ok = std::async(std::launch::async, [&] {
        for (const auto& m : ms)
            if (!sender.send(name, m)) return false;
        return true;
    });
    std::vector<InstanceMessage> got;
    while (ok.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready)
        for (auto& m : holder.receive()) got.push_back(std::move(m));
    EXPECT_TRUE(ok.get()) << "a send failed";
    for (auto& m : holder.receive()) got.push_back(std::move(m));
    return zeilen(got);
}

}  // namespace platform
