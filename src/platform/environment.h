#pragma once
// Where the program lives and works, and the one conversion between the
// program's backslash paths and the operating system's.
#include <string>

namespace platform {

class Environment {
  public:
    virtual ~Environment() = default;

    // Directory of the executable, without a trailing separator, in program
    // (backslash) form, as App.Path gives it.
    virtual std::string applicationDirectory() = 0;
    // The common application-data folder (CSIDL value 35), program form,
    // without a trailing separator.
    virtual std::string commonAppData() = 0;
    // The system's temporary directory, program form, with a trailing backslash.
    virtual std::string temporaryDirectory() = 0;
    // The process command line after the program name, as one string.
    virtual std::string commandLine() = 0;
};

// Converts a program path ("c:\temp\", "001\Block\00100170.dwg",
// "\\server\share\lib\") to the native form for the file system. On Windows
// this is the identity. Elsewhere backslashes become slashes and a drive
// letter "x:" is mapped to a directory: $TESSARA_DRIVE_X when set, else
// $HOME/.tessara/drive_x (so "c:\temp\" is a real, writable place).
std::string nativePath(const std::string& programPath);

// The inverse for paths that come from the operating system (a chosen
// directory, the executable's location): native separators become
// backslashes. A path under a mapped drive directory turns back into "x:\...".
std::string programPath(const std::string& nativePath);

}  // namespace platform
