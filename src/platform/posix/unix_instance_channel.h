#pragma once
// The instance channel over a Unix-domain socket. The claim is an exclusive
// lock on "<dir>/tessara-<name>.lock" plus the listening socket
// "<dir>/tessara-<name>.sock"; the lock dies with its process, so the socket
// file a crashed instance left behind is simply replaced. <dir> is
// $XDG_RUNTIME_DIR, else /tmp/tessara-<uid> (created private to the user).
// The receiver only ever reads what is already there: a sender that stalls
// or dies mid-message is dropped after a short grace time and never holds up
// the program.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/instance_channel.h"

namespace platform {

class UnixInstanceChannel : public InstanceChannel {
  public:
    // `directory` overrides where sockets live (tests use a private one).
    explicit UnixInstanceChannel(std::string directory = {});
    ~UnixInstanceChannel() override;
    UnixInstanceChannel(const UnixInstanceChannel&) = delete;
    UnixInstanceChannel& operator=(const UnixInstanceChannel&) = delete;

    bool claim(const std::string& instanceName) override;
    bool anotherInstanceRunning(const std::string& instanceName) override;
    bool send(const std::string& instanceName, const InstanceMessage& message) override;
    std::vector<InstanceMessage> receive() override;
    void release() override;

    // How long send waits for the holder to take the message (default 5 s).
    void setSendTimeoutMs(int ms) { sendTimeoutMs_ = ms; }
    // How long a connected sender may take to deliver its message (default 2 s).
    void setClientGraceMs(int ms) { clientGraceMs_ = ms; }
    // The listening socket, for an event loop that wants to wake on requests;
    // -1 when nothing is claimed.
    int listeningSocket() const { return listenFd_; }
    std::string socketPath(const std::string& instanceName) const;
    static std::string defaultDirectory();

  private:
    struct Client {
        int fd;
        std::int64_t since;
        std::string buffer;
    };
    std::string basePath(const std::string& instanceName) const;
    void dropClient(std::size_t index);

    std::string directory_;
    std::string claimedName_;
    std::string claimedSocket_;
    int lockFd_ = -1;
    int listenFd_ = -1;
    std::vector<Client> clients_;
    int sendTimeoutMs_ = 5000;
    int clientGraceMs_ = 2000;
};

}  // namespace platform
