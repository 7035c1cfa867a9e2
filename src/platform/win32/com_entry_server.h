#pragma once
// The program's automation class as a COM local server: while the program
// runs, its class object answers CoCreateInstance for the class identifier,
// and the class is registered for the current user (HKCU\Software\Classes:
// the program identifier, and LocalServer32 naming this executable, so that
// COM starts the program when it is not running). The object offers the
// given methods through IDispatch; a call converts its arguments to text,
// queues them and returns at once.
#include <memory>
#include <string>
#include <vector>

#include "platform/automation.h"

namespace platform {

class ComEntryServer : public AutomationServer {
  public:
    // Null when the class cannot be offered (no COM, a malformed clsid).
    static std::unique_ptr<ComEntryServer> start(const std::string& progId,
                                                 const std::string& clsid,
                                                 const std::vector<std::string>& methods);
    ~ComEntryServer() override;
    std::vector<InstanceMessage> receive() override;

    struct State;

  private:
    explicit ComEntryServer(std::shared_ptr<State> s) : state_(std::move(s)) {}
    std::shared_ptr<State> state_;
};

// Writes the registration of the class for the current user; false when
// the registry refuses. The values point at exePath.
bool registerComClassForUser(const std::string& progId, const std::string& clsid,
                             const std::string& exePath);

}  // namespace platform
