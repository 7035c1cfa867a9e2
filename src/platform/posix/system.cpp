#include "platform/system.h"

#include "platform/posix/file_registry.h"
#include "platform/posix/posix_environment.h"
#include "platform/posix/unix_instance_channel.h"
#include "platform/x11/x11_desktop.h"

namespace platform {

std::unique_ptr<Environment> systemEnvironment(std::vector<std::string> arguments) {
    return std::make_unique<PosixEnvironment>(std::move(arguments));
}

std::unique_ptr<Desktop> systemDesktop(std::function<void()> uiPump) {
    auto desktop = std::make_unique<X11Desktop>();
    desktop->onPump = std::move(uiPump);
    return desktop;
}

std::unique_ptr<Registry> systemRegistry() { return std::make_unique<FileRegistry>(); }

std::unique_ptr<InstanceChannel> systemInstanceChannel() {
    return std::make_unique<UnixInstanceChannel>();
}

std::unique_ptr<AutomationHost> systemAutomationHost() { return nullptr; }

std::unique_ptr<AutomationServer> systemAutomationServer(const std::string&, const std::string&,
                                                         const std::vector<std::string>&) {
    return nullptr;
}

}  // namespace platform
