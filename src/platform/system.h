#pragma once
// The backends of the system the program was built for, for entry points
// that must not name a POSIX, X11 or Win32 class themselves.
#include <memory>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "platform/environment.h"

namespace platform {

// arguments: those after the program name (what Command$ gives), as
// commandLineArguments() of console.h returns them.
std::unique_ptr<Environment> systemEnvironment(std::vector<std::string> arguments = {});
std::unique_ptr<Desktop> systemDesktop();

}  // namespace platform
