// Folder and Page subcommands: the same operations as the Folder and Page
// windows, on a library database given by its path. Every question is
// answered Yes; a refusal ends the command with the message that the
// window would have shown.
#include <filesystem>
#include <iostream>

#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "cli/cli.h"
#include "db/jet_opener.h"
#include "exchange/ordner_austausch.h"
#include "exchange/verzeichnis_austausch.h"
#include "library/navigation_model.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/seiten_verwaltung.h"
#include "platform/environment.h"
#include "platform/system.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace {

namespace fs = std::filesystem;

// Questions are answered Yes; the last message is kept for the error line,
// in English like every message of tessara-cli: the messages of the caption
// files come from the English file, and the two German texts the program
// shows whatever its language are put into English here (the error
// handler's "Fehler: " before the error's own text, and the one rename
// message that is not in the caption files).
class JaBenutzer : public tessara::Benutzer {
  public:
    std::string letzte;
    tessara::Antwort meldung(const std::string& text, const std::string& titel, tessara::Symbol,
                             tessara::Knoepfe knoepfe) override {
        if (knoepfe == tessara::Knoepfe::JaNein || knoepfe == tessara::Knoepfe::JaNeinAbbrechen)
            return tessara::Antwort::Ja;
        letzte = text;
        if (titel == "subErrorAllgemein" && letzte.rfind("Fehler: ", 0) == 0) letzte.erase(0, 8);
        if (letzte == tessara::kOrdnerInternerFehler)
            letzte = "an internal error keeps the folder from being renamed";
        for (auto& c : letzte)
            if (c == '\r') c = ' ';
        return tessara::Antwort::Ok;
    }
    std::string ordnerWaehlen(const std::string&, const std::string&) override { return {}; }
    std::string dateiWaehlen(const std::string&, const std::string&, const std::string&,
                             bool) override {
        return {};
    }
    // Progress on stderr, a line each tenth of the work, for scripts to follow.
    void fortschritt(long erledigt, long gesamt, const std::string& text) override {
        if (!err || gesamt <= 0) return;
        const long prozent = erledigt * 10 / gesamt;
        if (prozent == prozent_) return;
        prozent_ = prozent;
        *err << text << " " << erledigt << "/" << gesamt << "\n";
    }
    std::ostream* err = nullptr;

  private:
    long prozent_ = -1;
};

// A library opened as the main window opens it, with messages from the
// caption files beside the executable.
class Bibliothek {
  public:
    Bibliothek(const std::string& befehl, std::ostream& err)
        : befehl_(befehl),
          err_(err),
          m_(z_, db::jetOpener(platform::nativePath, cli::lockWait(err))) {
        z_.benutzer = &benutzer_;
        benutzer_.err = &err;
        z_.strAppPfad = platform::systemEnvironment()->applicationDirectory();
        z_.strSprache = "englisch";
        std::error_code ec;
        const fs::path log = fs::temp_directory_path(ec) / "tessara-cli-organisation.log";
        z_.strErrorDatei = platform::programPath(log.string());
    }

    bool oeffnen(const std::string& pfad) {
        std::error_code ec;
        const std::string voll = fs::absolute(pfad, ec).string();
        if (!fs::exists(voll, ec)) return fehler(pfad + ": no such file");
        m_.fctCodeTabelleLesen(tessara::fctCodeTabelleDatei(z_.strAppPfad));
        if (!m_.fctDatenbankOeffnen(platform::programPath(voll))) {
            // A catalogue server's failure: the message the window shows,
            // then the server's own words.
            std::string grund = m_.fehlerText();
            if (m_.lngServerMeldung())
                grund = tessara::fctBeschriftMsgboxZuordnen(z_, m_.lngServerMeldung(),
                                                            tessara::kGruppeAllg) +
                        " (" + grund + ")";
            return fehler(pfad + ": cannot open the library: " +
                          (grund.empty() ? "no reason given, see " + z_.strErrorDatei : grund));
        }
        if (!m_.OrdnerInArrayEinlesen()) return fehler(pfad + ": cannot read the folders");
        tessara::fctOrdnerReihenfolgeLesen(z_, m_, false);
        return m_.OrdnerInArrayEinlesen() || fehler(pfad + ": cannot read the folders");
    }
    // Makes the Folder of that name (exactly) current.
    bool ordner(const std::string& name) {
        for (const auto& o : m_.aryOrdner())
            if (o.OrdnerName == name) return m_.fctOrdnerWaehlen(o.OrdnerNr);
        return fehler("no folder named '" + name + "'");
    }
    const tessara::typOrdnerEintrag* ordnerEintrag(const std::string& name) const {
        for (const auto& o : m_.aryOrdner())
            if (o.OrdnerName == name) return &o;
        return nullptr;
    }
    // The end of an operation: 0, or 1 with the message it showed.
    int ergebnis(bool ok) {
        if (ok) return 0;
        fehler(benutzer_.letzte.empty() ? std::string("refused") : benutzer_.letzte);
        return 1;
    }
    // Whether a message (a refusal or an error) was shown.
    bool gemeldet() const { return !benutzer_.letzte.empty(); }
    bool fehler(const std::string& text) {
        err_ << "tessara-cli " << befehl_ << ": " << text << "\n";
        return false;
    }

    tessara::ProgrammZustand& z() { return z_; }
    tessara::NavigationsModell& m() { return m_; }

  private:
    std::string befehl_;
    std::ostream& err_;
    JaBenutzer benutzer_;
    tessara::ProgrammZustand z_;
    tessara::NavigationsModell m_;
};

int nutzung(std::ostream& err, const char* text) {
    err << "usage: tessara-cli " << text << "\n";
    return 2;
}

constexpr const char* kFolderNutzung =
    "folder list PATH | add PATH NAME | rename PATH OLD NEW | delete PATH NAME | "
    "export PATH NAME FILE | import PATH FILE NAME";

int runFolder(const cli::Args& a, std::istream&, std::ostream& out, std::ostream& err) {
    const std::string art = a.empty() ? std::string() : a[0];
    const std::size_t n = art == "list"                                           ? 2
                          : art == "add" || art == "delete"                       ? 3
                          : art == "rename" || art == "export" || art == "import" ? 4
                                                                                  : 0;
    if (n == 0 || a.size() != n) return nutzung(err, kFolderNutzung);
    Bibliothek b("folder " + art, err);
    if (!b.oeffnen(a[1])) return 1;
    if (art == "list") {
        for (const auto& o : tessara::fctOrdnerZeilen(b.z(), b.m()))
            out << o.OrdnerNr << "\t" << o.OrdnerName << "\n";
        return 0;
    }
    if (art == "add") {
        std::string code;
        const int r = b.ergebnis(tessara::fctOrdnerNeu(b.z(), b.m(), a[2], &code));
        if (r == 0) out << code << "\n";
        return r;
    }
    std::error_code ec;
    if (art == "import")
        return b.ergebnis(tessara::fctOrdnerImportieren(
            b.z(), b.m(), platform::programPath(fs::absolute(a[2], ec).string()), a[3]));
    const auto* o = b.ordnerEintrag(a[2]);
    if (!o) {
        b.fehler("no folder named '" + a[2] + "'");
        return 1;
    }
    if (art == "export")
        return b.ergebnis(tessara::fctOrdnerExportieren(
            b.z(), b.m(), o->OrdnerNr, platform::programPath(fs::absolute(a[3], ec).string())));
    if (art == "rename") return b.ergebnis(tessara::fctOrdnerUmbenennen(b.z(), b.m(), a[2], a[3]));
    return b.ergebnis(tessara::fctOrdnerLoeschen(b.z(), b.m(), o->Nr));
}

int runPage(const cli::Args& a, std::istream&, std::ostream& out, std::ostream& err) {
    const std::string art = a.empty() ? std::string() : a[0];
    if (!((art == "list" && a.size() == 3) || (art == "add" && a.size() == 5)))
        return nutzung(err, "page list PATH FOLDER | add PATH FOLDER NUMBER NAME");
    Bibliothek b("page " + art, err);
    if (!b.oeffnen(a[1]) || !b.ordner(a[2])) return 1;
    if (art == "add") return b.ergebnis(tessara::fctSeiteNeu(b.z(), b.m(), a[3], a[4]));
    for (const auto& s : b.m().seitenListe()) out << s.SeitenNr << "\t" << s.SeitenName << "\n";
    return 0;
}

// The drawings of a directory into a Folder (made when missing), or a
// Folder's drawings out to a directory.
int runDir(const cli::Args& a, std::ostream& out, std::ostream& err, bool einlesen) {
    const char* befehl = einlesen ? "import-dir" : "export-dir";
    if (a.size() != 3)
        return nutzung(err, einlesen ? "import-dir PATH DIR NAME" : "export-dir PATH NAME DIR");
    Bibliothek b(befehl, err);
    if (!b.oeffnen(a[0])) return 1;
    std::error_code ec;
    const std::string dir = platform::programPath(fs::absolute(a[einlesen ? 1 : 2], ec).string());
    long n = -1;
    if (einlesen) {
        n = tessara::fctZeichnungenEinlesen(b.z(), b.m(), tessara::fctZeichnungenImVerzeichnis(dir),
                                            a[2], fs::path(a[1]).filename().string());
    } else if (const auto* o = b.ordnerEintrag(a[1])) {
        n = tessara::fctZeichnungenAusgeben(b.z(), b.m(), o->OrdnerNr, dir);
    } else {
        b.fehler("no folder named '" + a[1] + "'");
        return 1;
    }
    // What was done counts even when a failure stopped the rest: the Blocks
    // made before it stand.
    if (n >= 0) out << n << (einlesen ? " blocks made\n" : " drawings written\n");
    return b.ergebnis(n >= 0 && !b.gemeldet());
}

cli::Subcommand importDirCmd{
    "import-dir", "PATH DIR NAME",
    "read every drawing of DIR into the Folder NAME (made when missing) as new Blocks",
    [](const cli::Args& a, std::istream&, std::ostream& out, std::ostream& err) {
        return runDir(a, out, err, true);
    }};
cli::Subcommand exportDirCmd{
    "export-dir", "PATH NAME DIR",
    "write the drawings of the Folder NAME to DIR, named by \"sSpalteDateiNameExport\", with a CSV",
    [](const cli::Args& a, std::istream&, std::ostream& out, std::ostream& err) {
        return runDir(a, out, err, false);
    }};

cli::Subcommand folderCmd{"folder", kFolderNutzung + 7,
                          "list, create, rename, delete, export or import the Folders of a "
                          "library (questions are answered Yes, progress on stderr)",
                          &runFolder};
cli::Subcommand pageCmd{"page", "list PATH FOLDER | add PATH FOLDER NUMBER NAME",
                        "list the Pages of a Folder or create one (questions are answered Yes)",
                        &runPage};

}  // namespace
