#pragma once
// A console program's arguments and standard streams, the same on every
// system: arguments as UTF-8 (Windows hands a narrow main() its ANSI code
// page), and output written byte for byte (Windows' text mode would turn
// every "\n" into "\r\n").
#include <string>
#include <vector>

namespace platform {

// The arguments after the program name, UTF-8.
std::vector<std::string> commandLineArguments(int argc, char** argv);

// Standard input and output in binary mode.
void binaryStandardStreams();

}  // namespace platform
