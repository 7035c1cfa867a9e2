#pragma once
// An environment whose directories and command line the test sets.
#include <string>

#include "platform/environment.h"

namespace platform {

class MemoryEnvironment : public Environment {
  public:
    MemoryEnvironment() = default;
    MemoryEnvironment(std::string applicationDirectory, std::string commonAppData,
                      std::string temporaryDirectory, std::string commandLine = {})
        : applicationDirectory_(std::move(applicationDirectory)),
          commonAppData_(std::move(commonAppData)),
          temporaryDirectory_(std::move(temporaryDirectory)),
          commandLine_(std::move(commandLine)) {}

    std::string applicationDirectory() override { return applicationDirectory_; }
    std::string commonAppData() override { return commonAppData_; }
    std::string temporaryDirectory() override { return temporaryDirectory_; }
    std::string commandLine() override { return commandLine_; }

    void setApplicationDirectory(std::string v) { applicationDirectory_ = std::move(v); }
    void setCommonAppData(std::string v) { commonAppData_ = std::move(v); }
    void setTemporaryDirectory(std::string v) { temporaryDirectory_ = std::move(v); }
    void setCommandLine(std::string v) { commandLine_ = std::move(v); }

  private:
    std::string applicationDirectory_ = "c:\\Programme\\Tessara";
    std::string commonAppData_ = "c:\\ProgramData";
    std::string temporaryDirectory_ = "c:\\temp\\";
    std::string commandLine_;
};

}  // namespace platform
