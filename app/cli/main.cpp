#include <algorithm>
#include <exception>
#include <iostream>

#include "cli/cli.h"

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
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        printHelp(std::cerr);
        return 2;
    }
    std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        printHelp(std::cout);
        return 0;
    }
    for (const auto& e : cli::subcommands()) {
        if (e.name == name) {
            cli::Args args(argv + 2, argv + argc);
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
