// The database list and older libraries, for installation scripts:
//   library list    [--ini FILE]
//   library attach  DIR [--ini FILE]   (a new catalogue, or the older
//                                       version's database imported)
//   library detach  DIR [--ini FILE]
//   library upgrade PATH               (missing tables and columns, relative
//                                       slide paths)
// The Settings file is the one beside the program unless --ini names
// another. Every question is answered Yes.
#include <filesystem>
#include <iostream>

#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "cli/cli.h"
#include "db/jet_opener.h"
#include "library/bibliothek_sitzung.h"
#include "library/bibliotheken.h"
#include "library/datenbank.h"
#include "platform/environment.h"
#include "platform/system.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/pfade.h"

namespace {

namespace fs = std::filesystem;

class JaBenutzer : public tessara::Benutzer {
  public:
    tessara::Antwort meldung(const std::string&, const std::string&, tessara::Symbol,
                             tessara::Knoepfe) override {
        return tessara::Antwort::Ja;
    }
    std::string ordnerWaehlen(const std::string&, const std::string&) override { return {}; }
    std::string dateiWaehlen(const std::string&, const std::string&, const std::string&,
                             bool) override {
        return {};
    }
    void fortschritt(long, long gesamt, const std::string& text) override {
        if (gesamt > 0) std::cerr << text << "\n";
    }
};

std::string absolut(const std::string& pfad) {
    std::error_code ec;
    return platform::programPath(fs::absolute(pfad, ec).lexically_normal().string());
}

int runLibrary(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    cli::Args a = args;
    std::string ini;
    for (std::size_t i = 0; i + 1 < a.size(); ++i)
        if (a[i] == "--ini") {
            ini = absolut(a[i + 1]);
            a.erase(a.begin() + static_cast<long>(i), a.begin() + static_cast<long>(i) + 2);
            break;
        }
    const std::string art = a.empty() ? std::string() : a[0];
    if (!((art == "list" && a.size() == 1) ||
          ((art == "attach" || art == "detach" || art == "upgrade") && a.size() == 2))) {
        err << "usage: tessara-cli library list|attach DIR|detach DIR|upgrade PATH [--ini FILE]\n";
        return 2;
    }
    JaBenutzer benutzer;
    tessara::ProgrammZustand z;
    z.benutzer = &benutzer;
    z.strAppPfad = platform::systemEnvironment()->applicationDirectory();
    z.strSprache = "englisch";
    z.strIniDatei = ini.empty() ? z.strAppPfad + "\\Tessara9.0.ini" : ini;
    std::error_code ec;
    z.strErrorDatei =
        platform::programPath((fs::temp_directory_path(ec) / "tessara-cli-library.log").string());
    const auto oeffner = db::jetOpener(platform::nativePath, cli::lockWait(err));
    auto fehler = [&](const std::string& text) {
        err << "tessara-cli library " << art << ": " << text << "\n";
        return 1;
    };
    if (art == "upgrade") {
        const std::string db = absolut(a[1]);
        if (!tessara::fctDateiExistiert(db)) return fehler(a[1] + ": no such file");
        const long neu = tessara::fctDatenbankAktualisieren(z, oeffner, db);
        if (neu < 0) return fehler(a[1] + ": " + z.fehler.strLetzterFehler);
        db::Connection con(oeffner);
        con.open(tessara::fctJetVerbindung(db));
        const long pfade =
            tessara::fctBlockTabelle(con) == "tblBlockInfo"
                ? tessara::fctPfadEintragAendern(z, con, tessara::fctVerzeichnisVon(db) + "\\")
                : 0;
        if (pfade < 0) return fehler(a[1] + ": " + z.fehler.strLetzterFehler);
        out << "added " << neu << " tables and columns, made " << pfade
            << " slide paths relative\n";
        return 0;
    }
    tessara::fctIniDateiErsterStart(z);
    tessara::subLesenTessaraIniDatei(z);
    tessara::BibliothekSitzung s(z, oeffner);
    s.modell().fctCodeTabelleLesen(tessara::fctCodeTabelleDatei(z.strAppPfad));
    if (art == "attach" || art == "detach") {
        const tessara::typOeffnenErgebnis r =
            art == "attach" ? s.fctAnhaengen(absolut(a[1])) : s.fctAbhaengen(absolut(a[1]));
        if (!r.ok())
            return fehler(tessara::fctMsgboxText(z, {tessara::MsgboxZeile(r.lngMeldung)},
                                                 tessara::kGruppeAllg) +
                          " " + r.strPfad);
        s.subSchliessen();
    }
    for (const auto& d : s.datenbankListe()) out << d << "\n";
    return 0;
}

cli::Subcommand library{"library", "list|attach DIR|detach DIR|upgrade PATH [--ini FILE]",
                        "the database list of the Settings file; upgrade adds what an older "
                        "library lacks",
                        &runLibrary};

}  // namespace
