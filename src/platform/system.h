#pragma once
// The backends of the system the program was built for, for entry points
// that must not name a POSIX, X11 or Win32 class themselves.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/automation.h"
#include "platform/desktop.h"
#include "platform/environment.h"
#include "platform/instance_channel.h"
#include "platform/registry.h"

namespace platform {

// arguments: those after the program name (what Command$ gives), as
// commandLineArguments() of console.h returns them.
std::unique_ptr<Environment> systemEnvironment(std::vector<std::string> arguments = {});
// uiPump: how the window program processes its own pending events while the
// desktop waits for another program (Windows dispatches them itself with the
// thread's message queue).
std::unique_ptr<Desktop> systemDesktop(std::function<void()> uiPump = {});
std::unique_ptr<Registry> systemRegistry();
std::unique_ptr<InstanceChannel> systemInstanceChannel();
// Late-bound automation of other programs (COM), or null where the system
// has none.
std::unique_ptr<AutomationHost> systemAutomationHost();
// The automation class this program offers to others while it runs (a COM
// local server on Windows, registered for the current user so that a host's
// AutoLISP or VBA can create it by its program identifier), or null where
// the system has none. clsid in registry form, "{XXXXXXXX-...}".
std::unique_ptr<AutomationServer> systemAutomationServer(const std::string& progId,
                                                         const std::string& clsid,
                                                         const std::vector<std::string>& methods);

}  // namespace platform
