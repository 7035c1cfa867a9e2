#include "platform/system.h"

#include "platform/win32/win32_desktop.h"
#include "platform/win32/win32_environment.h"

namespace platform {

// Windows hands every process its own command line, so the arguments are
// not needed here.
std::unique_ptr<Environment> systemEnvironment(std::vector<std::string>) {
    return std::make_unique<Win32Environment>();
}

std::unique_ptr<Desktop> systemDesktop() { return std::make_unique<Win32Desktop>(); }

}  // namespace platform
