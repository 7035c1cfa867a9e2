#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <thread>

#include "cli/cli.h"
#include "jet/store/journal.h"
#include "platform/console.h"

namespace cli {
namespace {
std::vector<Entry>& registry() {
    static std::vector<Entry> entries;
    return entries;
}
}  // namespace

Subcommand::Subcommand(std::string name, std::string usage, std::string summary, Handler run) {
    registry().push_back({std::move(name), std::move(usage), std::move(summary), std::move(run)});
}

const std::vector<Entry>& subcommands() { return registry(); }
}  // namespace cli

namespace {
void printHelp(std::ostream& out) {
    out << "usage: tessara-cli SUBCOMMAND [ARGS...]\n\nsubcommands:\n";
    auto list = cli::subcommands();
    std::sort(list.begin(), list.end(), [](auto& a, auto& b) { return a.name < b.name; });
    for (const auto& e : list) {
        out << "  " << e.name << (e.usage.empty() ? "" : " ") << e.usage << "\n      " << e.summary
            << "\n";
    }
    out << "\nenvironment:\n"
           "  TESSARA_LOCK_WAIT=SECONDS\n"
           "      how long to wait for a database another process has locked before\n"
           "      failing with \"Could not update; currently locked.\" (default 10;\n"
           "      after the first second each second waited is told on stderr)\n";
}
// Crash tests of another build stop this one in the middle of a commit and
// kill it there: TESSARA_HALT_AT_STEP names the commit step (see
// jet::setCrashHook) at which the tool says so on stderr and waits.
void haltAtStepFromEnvironment() {
    const char* step = std::getenv("TESSARA_HALT_AT_STEP");
    if (!step || !*step) return;
    jet::setCrashHook([wanted = std::string(step)](const char* s) {
        if (wanted != s) return;
        std::cerr << "halted at " << s << std::endl;
        for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
    });
}
}  // namespace

int main(int argc, char** argv) {
    platform::binaryStandardStreams();
    haltAtStepFromEnvironment();
    const std::vector<std::string> argument = platform::commandLineArguments(argc, argv);
    if (argument.empty()) {
        printHelp(std::cerr);
        return 2;
    }
    std::string name = argument[0];
    if (name == "--help" || name == "-h" || name == "help") {
        printHelp(std::cout);
        return 0;
    }
    double lockWait = 0;
    std::string problem;
    if (!cli::lockWaitSeconds(lockWait, problem)) {
        std::cerr << "tessara-cli: " << problem << "\n";
        return 2;
    }
    for (const auto& e : cli::subcommands()) {
        if (e.name == name) {
            cli::Args args(argument.begin() + 1, argument.end());
            try {
                return e.run(args, std::cin, std::cout, std::cerr);
            } catch (const std::exception& ex) {
                std::cerr << "tessara-cli " << name << ": " << ex.what() << "\n";
                return 1;
            }
        }
    }
    std::cerr << "tessara-cli: unknown subcommand '" << name << "' (see --help)\n";
    return 2;
}
