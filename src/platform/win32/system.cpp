#include "platform/system.h"

#include "platform/win32/com_automation.h"
#include "platform/win32/com_entry_server.h"
#include "platform/win32/win32_desktop.h"
#include "platform/win32/win32_environment.h"
#include "platform/win32/win32_instance_channel.h"
#include "platform/win32/win32_registry.h"

namespace platform {

// Windows hands every process its own command line, so the arguments are
// not needed here.
std::unique_ptr<Environment> systemEnvironment(std::vector<std::string>) {
    return std::make_unique<Win32Environment>();
}

// The window program's events arrive through the thread's message queue,
// which the desktop's own pump dispatches.
std::unique_ptr<Desktop> systemDesktop(std::function<void()>) {
    return std::make_unique<Win32Desktop>();
}

std::unique_ptr<Registry> systemRegistry() { return std::make_unique<Win32Registry>(); }

std::unique_ptr<InstanceChannel> systemInstanceChannel() {
    return std::make_unique<Win32InstanceChannel>();
}

std::unique_ptr<AutomationHost> systemAutomationHost() {
    return std::make_unique<ComAutomationHost>();
}

std::unique_ptr<AutomationServer> systemAutomationServer(const std::string& progId,
                                                         const std::string& clsid,
                                                         const std::vector<std::string>& methods) {
    return ComEntryServer::start(progId, clsid, methods);
}

}  // namespace platform
