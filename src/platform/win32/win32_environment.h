#pragma once
// The environment of a Windows process: the executable's folder, the common
// application-data folder (CSIDL_COMMON_APPDATA), the temporary folder and
// the command line after the program name, as VB's App.Path, Environ and
// Command$ give them.
#include "platform/environment.h"

namespace platform {

class Win32Environment : public Environment {
  public:
    std::string applicationDirectory() override;
    std::string commonAppData() override;
    std::string temporaryDirectory() override;
    std::string commandLine() override;

    // The part of a full command line after the program name: a quoted name
    // runs to its closing quote, an unquoted one to the first blank; the
    // blanks after it are skipped. A database path after "/d" without its
    // quotes gets them.
    static std::string afterProgramName(const std::string& fullCommandLine);
};

}  // namespace platform
