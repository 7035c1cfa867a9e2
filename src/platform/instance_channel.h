#pragma once
// Single-instance detection and the local channel through which a second
// process hands its request to the running instance (a named pipe on
// Windows, a Unix-domain socket elsewhere). It stands in for the go-between
// automation server: the three operations LBlkEinfuegen, StartForm2 and
// ClassNameUebergeben travel as messages.
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace platform {

struct InstanceMessage {
    std::string operation;               // "LBlkEinfuegen", "StartForm2", "ClassNameUebergeben"
    std::vector<std::string> arguments;  // UTF-8
};

class InstanceChannel {
  public:
    virtual ~InstanceChannel() = default;

    // Claims the instance name for this process; false when another live
    // instance holds it (App.PrevInstance). A stale claim left by a crashed
    // process is taken over.
    virtual bool claim(const std::string& instanceName) = 0;
    // Whether another live process holds the name.
    virtual bool anotherInstanceRunning(const std::string& instanceName) = 0;
    // Sends one message to the instance holding the name; false when none
    // answers in time (the request is dropped, never half-delivered).
    virtual bool send(const std::string& instanceName, const InstanceMessage& message) = 0;
    // Messages received by the claiming process since the last call, in order.
    // Never blocks; called from the message pump.
    virtual std::vector<InstanceMessage> receive() = 0;
    virtual void release() = 0;
};

}  // namespace platform
