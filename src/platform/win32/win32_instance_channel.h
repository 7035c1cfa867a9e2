#pragma once
// The instance channel on Windows: the claim is a named mutex
// ("Local\Tessara-<name>"), which dies with its process, so a crashed
// instance leaves nothing to clean up; messages travel through the named
// pipe "\\.\pipe\tessara-<name>". The receiver never blocks: it takes
// connections and bytes only when they are already there, and a sender that
// stalls or dies mid-message is dropped.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/instance_channel.h"

namespace platform {

class Win32InstanceChannel : public InstanceChannel {
  public:
    Win32InstanceChannel() = default;
    ~Win32InstanceChannel() override;
    Win32InstanceChannel(const Win32InstanceChannel&) = delete;
    Win32InstanceChannel& operator=(const Win32InstanceChannel&) = delete;

    bool claim(const std::string& instanceName) override;
    bool anotherInstanceRunning(const std::string& instanceName) override;
    bool send(const std::string& instanceName, const InstanceMessage& message) override;
    std::vector<InstanceMessage> receive() override;
    void release() override;

    void setSendTimeoutMs(int ms) { sendTimeoutMs_ = ms; }
    void setClientGraceMs(int ms) { clientGraceMs_ = ms; }

    static std::string pipeName(const std::string& instanceName);
    static std::string mutexName(const std::string& instanceName);

  private:
    struct Client {
        void* pipe;
        std::int64_t since;
        std::string buffer;
        bool acked = false;
    };
    bool listen();
    void dropClient(std::size_t index);

    std::string claimedName_;
    void* mutex_ = nullptr;
    void* listening_ = nullptr;  // the pipe instance waiting for a sender
    void* connectEvent_ = nullptr;
    void* connectOverlapped_ = nullptr;  // OVERLAPPED of the pending connect
    bool firstInstance_ = true;
    std::vector<Client> clients_;
    int sendTimeoutMs_ = 5000;
    int clientGraceMs_ = 2000;
};

}  // namespace platform
