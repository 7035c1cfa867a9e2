#include "platform/system.h"

#include "platform/posix/posix_environment.h"
#include "platform/x11/x11_desktop.h"

namespace platform {

std::unique_ptr<Environment> systemEnvironment(std::vector<std::string> arguments) {
    return std::make_unique<PosixEnvironment>(std::move(arguments));
}

std::unique_ptr<Desktop> systemDesktop() { return std::make_unique<X11Desktop>(); }

}  // namespace platform
