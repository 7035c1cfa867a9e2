// The entry class from outside: hands one request to the running Tessara
// window, as the CAD host's AutoLISP or VBA does through clsTessaraStart.
#include <iostream>

#include "cli/cli.h"
#include "entry/start_ablauf.h"
#include "platform/instance_channel.h"
#include "platform/system.h"

namespace {

int tessaraStart(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.empty()) {
        err << "tessara-start: an operation is needed (StartTessara, StartTessara2, "
               "StartTessara3, ChangeDb, LBlockEinfuegen)\n";
        return 2;
    }
    auto kanal = platform::systemInstanceChannel();
    const tessara::ProgrammZustand z;
    const std::string name = tessara::fctInstanzName(z);
    if (!kanal || !kanal->anotherInstanceRunning(name)) {
        err << "tessara-start: Tessara is not running\n";
        return 1;
    }
    // The running window checks the request; what reaches it is its to refuse.
    if (!kanal->send(name, {args[0], cli::Args(args.begin() + 1, args.end())})) {
        err << "tessara-start: the running Tessara did not take the request\n";
        return 1;
    }
    out << "handed over: " << args[0] << "\n";
    return 0;
}

cli::Subcommand tessaraStartCmd{"tessara-start", "OPERATION [ARGUMENT...]",
                                "hand a request to the running Tessara window (clsTessaraStart)",
                                &tessaraStart};

}  // namespace
