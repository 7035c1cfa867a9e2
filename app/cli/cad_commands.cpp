// CAD-bridge subcommands: which host the program would talk to, and the
// AutoLISP routine it loads into full AutoCAD.
#include <iostream>

#include "cad/block_einfuegen.h"
#include "cad/cad_verbindung.h"
#include "cad/einfuege_texte.h"
#include "cli/cli.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "platform/system.h"
#include "platform/system_clock.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace {

// Messages go to stderr; questions are not asked in batch use.
class KonsolenBenutzer : public tessara::Benutzer {
  public:
    explicit KonsolenBenutzer(std::ostream& err) : err_(err) {}
    tessara::Antwort meldung(const std::string& text, const std::string& titel, tessara::Symbol,
                             tessara::Knoepfe) override {
        err_ << titel << ": " << text << "\n";
        return tessara::Antwort::Abbrechen;
    }
    std::string ordnerWaehlen(const std::string&, const std::string&) override { return {}; }
    std::string dateiWaehlen(const std::string&, const std::string&, const std::string&,
                             bool) override {
        return {};
    }
    void fortschritt(long, long, const std::string&) override {}

  private:
    std::ostream& err_;
};

int cadConnect(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    bool lt = !args.empty() && args[0] == "--lt";
    auto desktop = platform::systemDesktop();
    platform::SystemClock uhr;
    platform::Platform plattform;
    plattform.desktop = desktop.get();
    plattform.clock = &uhr;
    KonsolenBenutzer benutzer(err);
    tessara::ProgrammZustand z;
    z.plattform = &plattform;
    z.benutzer = &benutzer;
    tessara::CadVerbindung v;
    v.meldungsText = [](int nr) {
        return nr == 117 ? std::string("Tessara") : std::string("Kein CAD-Programm gefunden.");
    };
    if (!tessara::ACAD_Connect(z, v, false, true, lt)) {
        err << "tessara-cli cad-connect: no CAD host window found\n";
        return 1;
    }
    const auto& i = v.typAcadVersionInfo;
    out << "strACadVersion=" << i.strACadVersion << "\n"
        << "strAcadTitel=" << i.strAcadTitel << "\n"
        << "lngAcadHwnd=" << i.lngAcadHwnd << "\n"
        << "bytNurFenster=" << static_cast<int>(v.bytNurFenster) << "\n";
    return 0;
}

int insertLsp(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) {
        err << "usage: tessara-cli insert-lsp FILE\n";
        return 2;
    }
    tessara::ProgrammZustand z;
    if (!tessara::WriteInsertLsp(z, platform::programPath(args[0]))) {
        err << "tessara-cli insert-lsp: cannot write " << args[0] << "\n";
        return 1;
    }
    out << args[0] << "\n";
    return 0;
}

cli::Subcommand cadConnectCmd{"cad-connect", "[--lt]",
                              "find the CAD host window by title as the program does and print "
                              "typAcadVersionInfo",
                              &cadConnect};
cli::Subcommand insertLspCmd{"insert-lsp", "FILE",
                             "write the AutoLISP routine insert.lsp that full AutoCAD loads",
                             &insertLsp};

}  // namespace
