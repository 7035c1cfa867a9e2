#include "platform/memory/memory_instance_channel.h"

#include "platform/case_fold.h"

namespace platform {

bool MemoryInstanceChannel::claim(const std::string& instanceName) {
    std::string key = foldCase(instanceName);
    auto it = bus_->names.find(key);
    if (it != bus_->names.end() && it->second.owner != this) return false;
    if (!claimed_.empty() && claimed_ != key) release();
    bus_->names[key].owner = this;
    claimed_ = key;
    return true;
}

bool MemoryInstanceChannel::anotherInstanceRunning(const std::string& instanceName) {
    auto it = bus_->names.find(foldCase(instanceName));
    return it != bus_->names.end() && it->second.owner != this;
}

bool MemoryInstanceChannel::send(const std::string& instanceName, const InstanceMessage& message) {
    auto it = bus_->names.find(foldCase(instanceName));
    if (it == bus_->names.end() || bus_->holderUnresponsive) return false;
    it->second.inbox.push_back(message);
    bus_->sent.push_back(message);
    return true;
}

std::vector<InstanceMessage> MemoryInstanceChannel::receive() {
    if (claimed_.empty()) return {};
    auto it = bus_->names.find(claimed_);
    if (it == bus_->names.end()) return {};
    std::vector<InstanceMessage> out;
    out.swap(it->second.inbox);
    return out;
}

void MemoryInstanceChannel::release() {
    if (claimed_.empty()) return;
    auto it = bus_->names.find(claimed_);
    if (it != bus_->names.end() && it->second.owner == this) bus_->names.erase(it);
    claimed_.clear();
}

}  // namespace platform
