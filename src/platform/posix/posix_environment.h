#pragma once
// The environment of a Linux process, in the program's path form.
//  - applicationDirectory: the directory of /proc/self/exe.
//  - commonAppData: $TESSARA_COMMON_APPDATA when set, else
//    $XDG_DATA_HOME/tessara-common (default ~/.local/share/tessara-common);
//    created when missing, as the Windows folder always exists.
//  - temporaryDirectory: $TMPDIR when set, else /tmp.
//  - commandLine: the arguments after the program name, joined and quoted
//    the way Windows builds a command line from an argument vector.
#include <string>
#include <vector>

#include "platform/environment.h"

namespace platform {

class PosixEnvironment : public Environment {
  public:
    PosixEnvironment(int argc, const char* const* argv);
    explicit PosixEnvironment(std::vector<std::string> arguments = {});

    std::string applicationDirectory() override;
    std::string commonAppData() override;
    std::string temporaryDirectory() override;
    std::string commandLine() override;

    // One argument vector as a Windows command line (the inverse of
    // CommandLineToArgvW): plain arguments as they are, others in quotes
    // with backslashes doubled before a quote and at the end.
    static std::string joinCommandLine(const std::vector<std::string>& arguments);

  private:
    std::vector<std::string> arguments_;
};

}  // namespace platform
