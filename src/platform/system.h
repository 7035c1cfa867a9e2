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

}  // namespace platform
