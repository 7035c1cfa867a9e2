// On Windows the program's paths are the system's own.
#include "platform/environment.h"

namespace platform {

std::string nativePath(const std::string& programPath) { return programPath; }

std::string programPath(const std::string& nativePath) {
    std::string p = nativePath;
    for (char& c : p)
        if (c == '/') c = '\\';
    return p;
}

}  // namespace platform
