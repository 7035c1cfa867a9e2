// The entry class from outside: hands one request to the running Tessara
// window, as the CAD host's AutoLISP or VBA does through clsTessaraStart:
// over the instance channel, or with --com over COM as the host does.
#include <iostream>

#include "cli/cli.h"
#include "entry/start_ablauf.h"
#include "entry/tessara_start.h"
#include "platform/automation.h"
#include "platform/instance_channel.h"
#include "platform/system.h"

namespace {

// As the host's VBA does it: CreateObject and the call, over COM.
int uberCom(const cli::Args& args, std::ostream& out, std::ostream& err) {
    auto com = platform::systemAutomationHost();
    if (!com) {
        err << "tessara-start: this system has no COM\n";
        return 1;
    }
    try {
        auto objekt = com->createObject(tessara::kTessaraStartKlasse);
        std::vector<platform::Variant> werte;
        for (auto a = args.begin() + 1; a != args.end(); ++a)
            werte.push_back(platform::Variant::fromString(*a));
        objekt->call(args[0], werte);
    } catch (const platform::AutomationError& e) {
        err << "tessara-start: " << e.what() << " (" << e.number() << ")\n";
        return 1;
    }
    out << "handed over: " << args[0] << "\n";
    return 0;
}

int tessaraStart(const cli::Args& argumente, std::istream&, std::ostream& out, std::ostream& err) {
    const bool com = !argumente.empty() && argumente[0] == "--com";
    const cli::Args args(argumente.begin() + (com ? 1 : 0), argumente.end());
    if (args.empty()) {
        err << "tessara-start: an operation is needed (StartTessara, StartTessara2, "
               "StartTessara3, ChangeDb, LBlockEinfuegen)\n";
        return 2;
    }
    if (com) return uberCom(args, out, err);
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

cli::Subcommand tessaraStartCmd{"tessara-start", "[--com] OPERATION [ARGUMENT...]",
                                "hand a request to the running Tessara window (clsTessaraStart)",
                                &tessaraStart};

}  // namespace
