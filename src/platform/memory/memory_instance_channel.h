#pragma once
// Instance channels inside one process: each MemoryInstanceChannel stands for
// one process, and channels sharing a MemoryInstanceBus see each other's
// claims and messages. Start-up tests use two of them for "first" and
// "second" instance.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/instance_channel.h"

namespace platform {

class MemoryInstanceBus {
  public:
    struct Holder {
        const void* owner = nullptr;
        std::vector<InstanceMessage> inbox;
    };
    std::map<std::string, Holder> names;  // by folded instance name
    // Every message ever sent, in order, whoever received it.
    std::vector<InstanceMessage> sent;
    // While set, sends fail as if the holder did not answer in time.
    bool holderUnresponsive = false;
};

class MemoryInstanceChannel : public InstanceChannel {
  public:
    explicit MemoryInstanceChannel(std::shared_ptr<MemoryInstanceBus> bus) : bus_(std::move(bus)) {}
    ~MemoryInstanceChannel() override { release(); }

    bool claim(const std::string& instanceName) override;
    bool anotherInstanceRunning(const std::string& instanceName) override;
    bool send(const std::string& instanceName, const InstanceMessage& message) override;
    std::vector<InstanceMessage> receive() override;
    void release() override;

  private:
    std::shared_ptr<MemoryInstanceBus> bus_;
    std::string claimed_;
};

}  // namespace platform
