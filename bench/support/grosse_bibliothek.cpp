#include "grosse_bibliothek.h"

#include <unistd.h>

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <stdexcept>

#include "authoring/code_tabelle.h"
#include "authoring/demo_bibliothek.h"
#include "authoring/slide_library.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "jet/read/database.h"
#include "jet/write/writer.h"
#include "library/datenbank.h"
#include "library/navigation_model.h"
#include "library/schema.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/registry_werte.h"
#include "ui/slide_painter.h"

namespace tessara::bench {

namespace fs = std::filesystem;

namespace {

// Raised whenever what the generator writes changes, so that an old library
// left in the build directory is not measured by mistake.
constexpr int kStand = 2;
constexpr int kStapel = 1000;  // rows per unit of work, as an import commits them

std::string diaName(int d) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "dia_%04d", d);
    return buf;
}

// What a slide library holds and what the Block rows that show it say.
struct Vorlage {
    slide::Slide dia;
    const DemoSymbol* symbol;
};

std::vector<Vorlage> vorlagen(const std::vector<DemoSymbol>& symbole) {
    std::vector<Vorlage> v;
    for (const auto& s : symbole)
        for (const auto& a : s.ansichten) v.push_back({a, &s});
    return v;
}

void diasSchreiben(const fs::path& dir, const std::vector<Vorlage>& v) {
    fs::create_directories(dir / "Dias");
    fs::create_directories(dir / "png");
    for (int d = 0; d < kDias; ++d) {
        const slide::Slide& dia = v[static_cast<std::size_t>(d) % v.size()].dia;
        const auto lib = slide::writeSlideLibrary({{"0A", slide::writeSlide(dia)}});
        slide::writeFileBytes((dir / "Dias" / (diaName(d) + ".slb")).string(), lib);
        // The peer's thumbnail: the very picture the slot shows, as PNG.
        const QImage bild = ui::fctDiaBild(dia, kSlotGroesse, {ui::DiaHintergrund::Dunkel, true});
        const fs::path png = dir / "png" / (diaName(d) + ".png");
        if (!bild.save(QString::fromStdString(png.string()), "PNG"))
            throw std::runtime_error("cannot write " + png.string());
    }
}

// Folders and Pages through the record sets, as the program writes them;
// answers each Folder's key.
std::vector<std::int32_t> ordnerUndSeitenSchreiben(const std::string& mdb) {
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    z.benutzer = &benutzer;
    const auto oeffner = db::jetOpener();
    if (!Mk_Datenbank(z, oeffner, mdb))
        throw std::runtime_error(
            "the catalogue could not be created" +
            (benutzer.gezeigt.empty() ? std::string() : ": " + benutzer.gezeigt.front().text));
    db::Connection con(oeffner);
    con.open(fctJetVerbindung(mdb));
    db::Recordset ordner, seiten;
    ordner.open("SELECT * FROM tblOrdner", con, db::adOpenKeyset, db::adLockOptimistic);
    seiten.open("SELECT * FROM tblSeiten", con, db::adOpenKeyset, db::adLockOptimistic);
    std::vector<std::int32_t> ids;
    GrosseBibliothek namen;
    for (int o = 0; o < kOrdner; ++o) {
        // A new catalogue holds Folder "000" with its Page 1 already.
        if (o == 0) {
            ordner.moveFirst();
        } else {
            ordner.addNew();
            ordner.setValue("OrdnerNr", namen.ordnerNr(o));
            ordner.setValue("OrdnerRechte", "Alle");
            ordner.setValue("NrTblDefMenue", 1);
        }
        ordner.setValue("Ordnername", "Ordner " + namen.ordnerNr(o));
        ordner.update();
        ids.push_back(static_cast<std::int32_t>(ordner.value("Nr").asInt()));
        // The Pages that hold the Folder's Blocks carry names.
        const int von = namen.slot(o, 0) / 72, bis = namen.slot(o, kBloeckeProOrdner - 1) / 72;
        for (int s = von; s <= bis; ++s) {
            if (o == 0 && s == 0) {
                seiten.moveFirst();
            } else {
                seiten.addNew();
                seiten.setValue("SeitenNr", s + 1);
                seiten.setValue("NrTblOrdner", static_cast<long long>(ids.back()));
            }
            seiten.setValue("SeitenName", "Seite " + std::to_string(s + 1));
            seiten.update();
        }
    }
    return ids;
}

// The Block rows straight through the engine's writer, a thousand to a unit
// of work: 100 000 rows through a record set's AddNew would take longer than
// the benchmarks themselves.
void bloeckeSchreiben(const std::string& mdb, const std::vector<std::int32_t>& ordnerIds,
                      const std::vector<Vorlage>& v) {
    jet::OpenOptions oo;
    oo.writable = true;
    auto db = jet::Database::open(mdb, oo);
    jet::Writer w(db);
    const auto td = db->tableDef("tblBlockInfo");
    auto spalte = [&](const char* name) {
        const int i = td->columnPosition(name);
        if (i < 0) throw std::runtime_error(std::string("tblBlockInfo has no column ") + name);
        return static_cast<std::size_t>(i);
    };
    const std::size_t cBlock = spalte("Block"), cSlideLib = spalte("SlideLib"),
                      cOrdner = spalte("OrdnerID"), cName = spalte("BlkName0"), cM0 = spalte("M0"),
                      cM1 = spalte("M1"), cM2 = spalte("M2"), cM3 = spalte("M3"),
                      cAx = spalte("AX0"), cAy = spalte("AY0"), cAz = spalte("AZ0"),
                      cLayer = spalte("Layer"), cLyLine = spalte("LyLine"),
                      cLyColor = spalte("LyColor");
    const auto codes = fctCodeTabelleErzeugen();
    GrosseBibliothek namen;
    auto text = [](const std::string& s) { return s.empty() ? jet::Value{} : jet::Value{s}; };
    long n = 0;
    for (int o = 0; o < kOrdner; ++o) {
        for (int i = 0; i < kBloeckeProOrdner; ++i) {
            const int s = namen.slot(o, i);
            if (n % kStapel == 0) db->begin();
            const int d = namen.dia(o, s);
            const DemoSymbol& sym = *v[static_cast<std::size_t>(d) % v.size()].symbol;
            const std::string nr =
                fctBlocknummer(namen.ordnerNr(o), s, codes[static_cast<std::size_t>(s)]);
            jet::Row r(td->columns.size());
            r[cBlock] = nr;
            r[cSlideLib] = "Dias\\" + diaName(d) + ".slb";
            r[cOrdner] = ordnerIds[static_cast<std::size_t>(o)];
            r[cName] = sym.name.substr(0, 24) + "_" + std::to_string(s);
            r[cM0] = text(sym.m0);
            r[cM1] = text(sym.m1);
            r[cM2] = text(sym.m2);
            r[cM3] = text(sym.m3);
            r[cAx] = 0.0;
            r[cAy] = 0.0;
            r[cAz] = 0.0;
            r[cLayer] = text(sym.layer);
            r[cLyLine] = std::string("Continuous");
            r[cLyColor] = text(sym.layerFarbe);
            w.insert("tblBlockInfo", r);
            if (++n % kStapel == 0) db->commit();
        }
    }
    if (n % kStapel != 0) db->commit();
}

fs::path bibliotheksVerzeichnis() {
    return fs::path(TESSARA_BINARY_DIR) / "bench_data" /
           ("bibliothek_100000_v" + std::to_string(kStand));
}

GrosseBibliothek beschreiben(const fs::path& dir, double sekunden) {
    GrosseBibliothek b;
    b.verzeichnis = dir;
    b.mdbProgramm = platform::programPath((dir / "dbTessara.mdb").string());
    b.appProgramm = platform::programPath((fs::path(TESSARA_BINARY_DIR) / "app").string());
    b.sekundenGebaut = sekunden;
    b.bytes = fs::file_size(dir / "dbTessara.mdb");
    return b;
}

GrosseBibliothek bauen() {
    const fs::path ziel = bibliotheksVerzeichnis();
    if (fs::exists(ziel / "fertig")) return beschreiben(ziel, 0);
    if (!fs::exists(fs::path(TESSARA_BINARY_DIR) / "app" / "txtPrefix.txt"))
        throw std::runtime_error("build/app/txtPrefix.txt is missing: build tessara first");
    std::fprintf(stderr, "building the 100 000-Block library in %s ...\n", ziel.c_str());
    const auto t0 = std::chrono::steady_clock::now();
    // Built beside its place and moved there whole: a run that is stopped
    // half-way leaves nothing that a later run would take for the library.
    const fs::path bau = ziel.string() + ".bau" + std::to_string(::getpid());
    fs::remove_all(bau);
    fs::create_directories(bau);
    const auto symbole = fctDemoSymbole();
    const auto v = vorlagen(symbole);
    diasSchreiben(bau, v);
    const auto t1 = std::chrono::steady_clock::now();
    const std::string mdb = (bau / "dbTessara.mdb").string();
    const auto ids = ordnerUndSeitenSchreiben(mdb);
    const auto t2 = std::chrono::steady_clock::now();
    bloeckeSchreiben(mdb, ids, v);
    const auto t3 = std::chrono::steady_clock::now();
    auto sek = [](auto a, auto b) { return std::chrono::duration<double>(b - a).count(); };
    {
        std::ofstream f(bau / "fertig");
        f << kOrdner * kBloeckeProOrdner << " Blocks, " << kDias << " slide libraries, built in "
          << sek(t0, t3) << " s\n";
    }
    std::error_code ec;
    fs::rename(bau, ziel, ec);
    if (ec) {  // another run was quicker
        fs::remove_all(bau);
        return beschreiben(ziel, 0);
    }
    std::fprintf(stderr,
                 "built in %.1f s: %d slide libraries and thumbnails %.1f s, catalogue with %d "
                 "Folders and their Pages %.1f s, %d Block rows %.1f s (%.0f rows/s)\n",
                 sek(t0, t3), kDias, sek(t0, t1), kOrdner, sek(t1, t2), kOrdner * kBloeckeProOrdner,
                 sek(t2, t3), kOrdner * kBloeckeProOrdner / sek(t2, t3));
    return beschreiben(ziel, sek(t0, t3));
}

}  // namespace

std::string GrosseBibliothek::ordnerNr(int ordner) const {
    char buf[8];
    std::snprintf(buf, sizeof buf, "%03d", ordner);
    return buf;
}

int GrosseBibliothek::slot(int ordner, int i) const {
    return ordner == kOrdner - 1 ? kCodeTabelleLaenge - kBloeckeProOrdner + i : i;
}

int GrosseBibliothek::dia(int ordner, int slot) const { return (slot + 37 * ordner) % kDias; }

fs::path GrosseBibliothek::png(int d) const { return verzeichnis / "png" / (diaName(d) + ".png"); }

const GrosseBibliothek& fctGrosseBibliothek() {
    static const GrosseBibliothek b = bauen();
    return b;
}

ArbeitsVerzeichnis::ArbeitsVerzeichnis(const std::string& name)
    : pfad_(fs::temp_directory_path() / (name + "_" + std::to_string(::getpid()))) {
    fs::remove_all(pfad_);
    fs::create_directories(pfad_);
}

ArbeitsVerzeichnis::~ArbeitsVerzeichnis() {
    std::error_code ec;
    fs::remove_all(pfad_, ec);
}

void fctZustandEinrichten(ProgrammZustand& z, const fs::path& dir) {
    fs::create_directories(dir);
    const std::string basis = platform::programPath(dir.string()) + "\\";
    z.strCTemp = basis;
    z.strErrorDatei = basis + "fehler.txt";
    z.strAppPfad = platform::programPath((fs::path(TESSARA_BINARY_DIR) / "app").string());
}

namespace {
QtMessageHandler g_qtMeldungen = nullptr;
}  // namespace

FensterUmgebung::FensterUmgebung(const GrosseBibliothek& bib, const std::string& arbeitsName,
                                 int breite, int hoehe)
    : arbeit(arbeitsName) {
    fctZustandEinrichten(z, arbeit.pfad());
    plattform.registry = &registry;
    plattform.desktop = &desktop;
    z.plattform = &plattform;
    z.benutzer = &benutzer;
    z.strIniDatei = z.strCTemp + "Tessara9.0.ini";
    z.strSprache = "deutsch";
    const std::string bibliothek = platform::programPath(bib.verzeichnis.string());
    IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "DbVerzeichnis0", bibliothek);
    IniSetValue(z, z.strIniDatei, "MsgboxAnzeigen", "AcadVerbindung", "1");
    typSetupWerte w;
    w.longAnzahlDerBilder = kBilderIndex;
    w.lonFrmWidth = breite;
    w.lonFrmHeight = hoehe;
    SetupInRegistrierdatenbankSpeichern(z, w);
    std::filesystem::remove(platform::nativePath(fctDbIniDatei(bibliothek)));
}

typSuchKriterien fctSuchKriterien() {
    typSuchKriterien k;
    k.txtBenennung[0] = "ventil";
    k.txtBenennung[1] = "DN 50";
    k.txtBenennung[kFeldBlockname] = "ventil";
    k.chkAnsichtenVarianten = true;
    return k;
}

void fctQtPlattformWaehlen() {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The offscreen platform says so for every window raised; that is no
    // news in a benchmark's output.
    g_qtMeldungen = qInstallMessageHandler(
        [](QtMsgType typ, const QMessageLogContext& kontext, const QString& text) {
            if (text.startsWith(QLatin1String("This plugin does not support"))) return;
            if (g_qtMeldungen) g_qtMeldungen(typ, kontext, text);
        });
}

double fctMedian(std::vector<double> werte) {
    if (werte.empty()) return 0;
    std::sort(werte.begin(), werte.end());
    const std::size_t m = werte.size() / 2;
    return werte.size() % 2 ? werte[m] : (werte[m - 1] + werte[m]) / 2;
}

}  // namespace tessara::bench
