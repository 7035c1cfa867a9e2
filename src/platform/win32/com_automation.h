#pragma once
// Automation over COM's IDispatch. The host initialises COM for the calling
// thread (apartment-threaded, as a VB program is) for as long as it lives;
// objects must not outlive it. Every failure is an AutomationError carrying
// the EXCEPINFO description (or the system's text for the HRESULT) and the
// code.
#include "platform/automation.h"

namespace platform {

class ComAutomationHost : public AutomationHost {
  public:
    ComAutomationHost();
    ~ComAutomationHost() override;
    ComAutomationHost(const ComAutomationHost&) = delete;
    ComAutomationHost& operator=(const ComAutomationHost&) = delete;

    std::shared_ptr<AutomationObject> getActiveObject(const std::string& progId) override;
    std::shared_ptr<AutomationObject> createObject(const std::string& progId) override;

  private:
    bool uninitialize_ = false;
};

}  // namespace platform
