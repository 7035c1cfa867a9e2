// The database search on the 100 000-Block library, two figures:
//
// 1. The search window's statement (two attribute fields and the block name
//    searched in all Views and Variants) as the window runs it: composed,
//    opened as a record set on the library connection, its hits read. The
//    peer is Debian's sqlite3 running the very same statement over the same
//    rows (every column of tblBlockInfo and tblVariationBloecke, copied once
//    into a cached SQLite file beside the library). sqlite3's own timer
//    gives each statement's time inside one process, its rows written to
//    /dev/null; the first statement of each process is dropped, as the
//    window's connection is warm too. Both sides keep the table in their
//    own memory between statements: the engine's page cache holds up to
//    256 MB while the file is unchanged, so tblBlockInfo's 100 MB stay in it,
//    and sqlite3 is given a cache of the same size (PRAGMA cache_size) for
//    its 23 MB file; both test every row against the same WHERE. Target:
//    search/sqlite3 <= 1.0.
//    Measured in CPU time on both sides (user + system), since other work
//    on the machine stretches wall-clock times unevenly; the wall-clock
//    ratio is printed beside it.
//
// 2. The quick filter of the main window: from a keystroke in its text box
//    to the first 50 hits painted in its list, with the library's snapshot
//    already read (the first keystroke after opening a library waits for
//    that read; printed apart). The peer is the search of part 1 on the
//    same library, timed in the same rounds. Target: keystroke/search <= 0.5.
//
// Rounds alternate measurement and peer; the figures are medians.
#include "search/datenbank_suche.h"

#include <unistd.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>

#include "cad/cad_verbindung.h"
#include "db/jet_opener.h"
#include "grosse_bibliothek.h"
#include "jet/sql/engine_storage.h"
#include "library/datenbank.h"
#include "platform/environment.h"
#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/registry_werte.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/schnellfilter_steuerung.h"

namespace {

using namespace tessara;
namespace fs = std::filesystem;
using Uhr = std::chrono::steady_clock;

constexpr int kRunden = 7;
constexpr int kJeRunde = 5;  // searches of each side in a round
constexpr const char* kWiederholen = "--repeat=";

// Raised whenever the SQLite copy's contents change.
constexpr int kSqliteStand = 1;

typSuchKriterien kriterien() { return bench::fctSuchKriterien(); }

double sekunden(Uhr::time_point a, Uhr::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

double cpuSekunden() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

// --- the SQLite copy -------------------------------------------------------

std::string sqliteTyp(sql::ColumnType t) {
    switch (t) {
        case sql::ColumnType::Boolean:
        case sql::ColumnType::Byte:
        case sql::ColumnType::Integer:
        case sql::ColumnType::Long:
            return "INTEGER";
        case sql::ColumnType::Currency:
        case sql::ColumnType::Single:
        case sql::ColumnType::Double:
        case sql::ColumnType::DateTime:
        case sql::ColumnType::Numeric:
            return "REAL";
        case sql::ColumnType::Binary:
        case sql::ColumnType::OLE:
        case sql::ColumnType::Guid:
            return "BLOB";
        default:
            return "TEXT";
    }
}

std::string sqliteLiteral(const sql::Value& v) {
    switch (v.kind()) {
        case sql::Value::Kind::Null:
            return "NULL";
        case sql::Value::Kind::Text: {
            std::string s = "'";
            for (char c : v.textRef()) s += c == '\'' ? std::string("''") : std::string(1, c);
            return s + "'";
        }
        case sql::Value::Kind::Binary: {
            static const char* hex = "0123456789ABCDEF";
            std::string s = "X'";
            for (unsigned char c : v.textRef()) {
                s += hex[c >> 4];
                s += hex[c & 15];
            }
            return s + "'";
        }
        case sql::Value::Kind::Double:
        case sql::Value::Kind::Date: {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.17g", v.asDouble());
            return buf;
        }
        default:
            return std::to_string(v.asInt());
    }
}

// The table's rows, every column, into the sqlite3 process at out.
void tabelleKopieren(sql::Storage& st, const std::string& name, FILE* out) {
    const auto t = st.table(name);
    if (!t) throw std::runtime_error("the library has no table " + name);
    const auto spalten = t->columns();
    std::string create = "CREATE TABLE " + name + " (";
    for (std::size_t i = 0; i < spalten.size(); ++i) {
        create += (i ? ", " : "") + spalten[i].name + " " + sqliteTyp(spalten[i].type);
        if (spalten[i].name == "Nr") create += " PRIMARY KEY";
    }
    std::fprintf(out, "%s);\n", create.c_str());
    t->scan([&](sql::RowId, const sql::Row& r) {
        std::string s = "INSERT INTO " + name + " VALUES (";
        for (std::size_t i = 0; i < r.size(); ++i) s += (i ? "," : "") + sqliteLiteral(r[i]);
        std::fprintf(out, "%s);\n", s.c_str());
        return true;
    });
}

// The SQLite copy of the library's Block rows, built once beside it.
fs::path sqliteDatei(const bench::GrosseBibliothek& bib) {
    const fs::path ziel = bib.verzeichnis / ("suche_v" + std::to_string(kSqliteStand) + ".sqlite");
    if (fs::exists(ziel)) return ziel;
    std::fprintf(stderr, "copying the Block rows into %s ...\n", ziel.c_str());
    const auto t0 = Uhr::now();
    const fs::path bau = ziel.string() + ".bau" + std::to_string(::getpid());
    fs::remove(bau);
    FILE* out = ::popen(("sqlite3 '" + bau.string() + "' >/dev/null").c_str(), "w");
    if (!out) throw std::runtime_error("sqlite3 cannot be started");
    std::fprintf(out, "PRAGMA journal_mode=OFF;\nBEGIN;\n");
    {
        const auto st = sql::openEngineStorage(platform::nativePath(bib.mdbProgramm), false);
        tabelleKopieren(*st, "tblBlockInfo", out);
        tabelleKopieren(*st, "tblVariationBloecke", out);
    }
    std::fprintf(out, "COMMIT;\n");
    if (::pclose(out) != 0) throw std::runtime_error("sqlite3 could not load the rows");
    fs::rename(bau, ziel);
    std::fprintf(stderr, "copied in %.1f s\n", sekunden(t0, Uhr::now()));
    return ziel;
}

// --- the two sides of part 1 ------------------------------------------------

struct Zeit {
    double wand = 0, cpu = 0;
};

// The search as the window runs it, on a connection kept open as the
// window keeps the library's.
class Suche {
  public:
    explicit Suche(const bench::GrosseBibliothek& bib)
        : arbeit_("tessara_bench_datenbank_suche"), con_(db::jetOpener(platform::nativePath)) {
        bench::fctZustandEinrichten(z_, arbeit_.pfad());
        z_.benutzer = &benutzer_;
        con_.open(fctJetVerbindung(bib.mdbProgramm));
    }
    typSuchAusgang suchen() { return fctDatenbankSuchen(z_, con_, kriterien(), "tblBlockInfo", 0); }
    Zeit messen(std::size_t treffer) {
        const double c0 = cpuSekunden();
        const auto t0 = Uhr::now();
        const auto a = suchen();
        const Zeit z{sekunden(t0, Uhr::now()), cpuSekunden() - c0};
        if (a.ergebnis != SuchErgebnis::Anzeigen || a.treffer.size() != treffer)
            throw std::runtime_error("the search found " + std::to_string(a.treffer.size()) +
                                     " Blocks this time");
        return z;
    }

  private:
    bench::ArbeitsVerzeichnis arbeit_;
    ProgrammZustand z_;
    SkriptBenutzer benutzer_;
    db::Connection con_;
};

std::string lauf(const std::string& befehl) {
    std::string text;
    FILE* p = ::popen(befehl.c_str(), "r");
    if (!p) throw std::runtime_error("cannot run " + befehl);
    char buf[65536];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) text.append(buf, n);
    if (::pclose(p) != 0) throw std::runtime_error("failed: " + befehl);
    return text;
}

// n timed statements in one sqlite3 process, after one that warms it.
std::vector<Zeit> sqliteMessen(const fs::path& db, const fs::path& dir,
                               const std::string& anweisung, int n) {
    const fs::path skript = dir / "suche.sql";
    {
        std::ofstream s(skript);
        s << "PRAGMA cache_size = -262144;\n.timer on\n.output /dev/null\n";
        for (int i = 0; i <= n; ++i) s << anweisung << ";\n";
    }
    std::istringstream text(lauf("sqlite3 '" + db.string() + "' < '" + skript.string() + "'"));
    std::vector<Zeit> zeiten;
    for (std::string zeile; std::getline(text, zeile);) {
        double wand = 0, user = 0, sys = 0;
        if (std::sscanf(zeile.c_str(), "Run Time: real %lf user %lf sys %lf", &wand, &user, &sys) ==
            3)
            zeiten.push_back({wand, user + sys});
    }
    if (zeiten.size() != static_cast<std::size_t>(n + 1))
        throw std::runtime_error("sqlite3 reported " + std::to_string(zeiten.size()) + " times");
    zeiten.erase(zeiten.begin());
    return zeiten;
}

// Both sides find the same Blocks.
std::size_t gleicheTreffer(Suche& suche, const fs::path& db, const std::string& anweisung) {
    std::set<long> unsere, peer;
    for (const auto& t : suche.suchen().treffer) unsere.insert(t.Nr);
    std::istringstream text(lauf("sqlite3 -csv '" + db.string() + "' \"" + anweisung + "\""));
    for (std::string zeile; std::getline(text, zeile);) peer.insert(std::stol(zeile));
    if (unsere != peer || unsere.empty())
        throw std::runtime_error("the search found " + std::to_string(unsere.size()) +
                                 " Blocks, sqlite3 " + std::to_string(peer.size()));
    return unsere.size();
}

double medianVon(const std::vector<Zeit>& z, double Zeit::*feld) {
    std::vector<double> w;
    for (const auto& x : z) w.push_back(x.*feld);
    return bench::fctMedian(w);
}

void anweisungGegenSqlite(const bench::GrosseBibliothek& bib) {
    const fs::path db = sqliteDatei(bib);
    const bench::ArbeitsVerzeichnis arbeit("tessara_bench_datenbank_suche_sqlite");
    Suche suche(bib);
    const std::string anweisung = fctSuchAnweisung(kriterien(), "tblBlockInfo", 0);
    const std::size_t treffer = gleicheTreffer(suche, db, anweisung);
    std::printf(
        "datenbank_suche: %zu hits, the same Blocks on both sides, of the statement\n  %s\n",
        treffer, anweisung.c_str());
    std::vector<Zeit> unsere, peer;
    std::vector<double> rundenCpu;
    for (int r = 0; r < kRunden; ++r) {
        std::vector<Zeit> u, p = sqliteMessen(db, arbeit.pfad(), anweisung, kJeRunde);
        for (int i = 0; i < kJeRunde; ++i) u.push_back(suche.messen(treffer));
        rundenCpu.push_back(medianVon(u, &Zeit::cpu) / medianVon(p, &Zeit::cpu));
        unsere.insert(unsere.end(), u.begin(), u.end());
        peer.insert(peer.end(), p.begin(), p.end());
    }
    const double uc = medianVon(unsere, &Zeit::cpu), pc = medianVon(peer, &Zeit::cpu);
    const double uw = medianVon(unsere, &Zeit::wand), pw = medianVon(peer, &Zeit::wand);
    std::sort(rundenCpu.begin(), rundenCpu.end());
    std::printf(
        "datenbank_suche: medians of %d rounds x %d: search %.1f ms CPU (%.1f ms wall), sqlite3 "
        "%.1f ms CPU (%.1f ms wall); rounds' CPU ratios %.2f .. %.2f\n",
        kRunden, kJeRunde, uc * 1e3, uw * 1e3, pc * 1e3, pw * 1e3, rundenCpu.front(),
        rundenCpu.back());
    std::printf("datenbank_suche ratio search/sqlite3 = %.2f CPU, %.2f wall (target <= 1.0)\n",
                uc / pc, uw / pw);
}

// --- part 2: the quick filter --------------------------------------------

class Schnellfilter {
  public:
    explicit Schnellfilter(const bench::GrosseBibliothek& bib)
        : u_(bib, "tessara_bench_schnellfilter", 1600, 1000) {
        // The window answers each request on standard output; not here.
        vorher_ = std::cout.rdbuf(still_.rdbuf());
        f_ = std::make_unique<FrmBlockverwaltung>(u_.z, cad_);
        bool gemalt = false;
        QObject::connect(f_.get(), &FrmBlockverwaltung::seiteGemalt, [&] { gemalt = true; });
        f_->laden();
        f_->show();
        while (!gemalt) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        steuerung_ = f_->findChild<SchnellfilterSteuerung*>();
        txt_ = f_->findChild<QLineEdit*>(QStringLiteral("txtSchnellfilter"));
        lis_ = f_->findChild<QListWidget*>(QStringLiteral("lisSchnellfilter"));
        if (!steuerung_ || !txt_ || !lis_)
            throw std::runtime_error("the main window has no quick filter");
        QObject::connect(steuerung_, &SchnellfilterSteuerung::trefferGeliefert,
                         [this] { geliefert_ = true; });
        QObject::connect(steuerung_, &SchnellfilterSteuerung::scanFertig,
                         [this](long) { fertig_ = true; });
        ruhen(300);
    }
    ~Schnellfilter() {
        f_.reset();
        QCoreApplication::processEvents();
        std::cout.rdbuf(vorher_);
    }

    // Types text into the box, one key after the other, each time until
    // its scan has ended.
    void tippen(const QString& text) {
        for (QChar c : text) taste(c, true);
    }
    void loeschen() {
        while (!txt_->text().isEmpty()) {
            fertig_ = false;
            druecken(Qt::Key_Backspace, QString());
        }
        ruhen(50);
    }

    // One key; the time until its first 50 hits are painted in the list, or
    // with fewer hits, until its scan has ended and the list is painted.
    double taste(QChar c, bool bisEnde = false) {
        fertig_ = geliefert_ = false;
        const auto t0 = Uhr::now();
        druecken(Qt::Key_unknown, QString(c));
        while (!(fertig_ || (!bisEnde && geliefert_ && lis_->count() >= 50)))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        lis_->viewport()->repaint();
        const double s = sekunden(t0, Uhr::now());
        if (bisEnde) return s;
        while (!fertig_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return s;
    }
    int angezeigt() const { return lis_->count(); }
    long gesamt() const { return steuerung_->trefferGesamt(); }

  private:
    void druecken(int key, const QString& text) {
        QKeyEvent druck(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(txt_, &druck);
        QKeyEvent los(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QApplication::sendEvent(txt_, &los);
    }
    void ruhen(int ms) {
        const auto bis = Uhr::now() + std::chrono::milliseconds(ms);
        while (Uhr::now() < bis) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    bench::FensterUmgebung u_;
    CadVerbindung cad_;
    std::ostringstream still_;
    std::streambuf* vorher_ = nullptr;
    std::unique_ptr<FrmBlockverwaltung> f_;
    SchnellfilterSteuerung* steuerung_ = nullptr;
    QLineEdit* txt_ = nullptr;
    QListWidget* lis_ = nullptr;
    bool geliefert_ = false, fertig_ = false;
};

void schnellfilterGegenSuche(const bench::GrosseBibliothek& bib) {
    Suche suche(bib);
    const std::size_t treffer = suche.suchen().treffer.size();
    Schnellfilter f(bib);
    // The first key after opening the library reads its snapshot.
    const double erste = f.taste('v', true);
    f.tippen("enti");
    std::vector<double> tasten, leer, peer;
    long gesamt = 0, leerGesamt = -1;
    int angezeigt = 0;
    for (int r = 0; r < kRunden; ++r) {
        for (int i = 0; i < kJeRunde; ++i) {
            // "venti" typed, its scan ended: the key is the "l" of "ventil".
            tasten.push_back(f.taste('l'));
            angezeigt = f.angezeigt();
            gesamt = f.gesamt();
            f.loeschen();
            f.tippen("venti");
            peer.push_back(suche.messen(treffer).wand);
        }
        // A text without a hit is scanned to the end of the snapshot.
        f.loeschen();
        f.tippen("ventilx");
        leer.push_back(f.taste('y', true));
        leerGesamt = f.gesamt();
        f.loeschen();
        f.tippen("venti");
    }
    const double t = bench::fctMedian(tasten), p = bench::fctMedian(peer);
    std::printf(
        "schnellfilter: the first key after opening the library (its %d Blocks read) %.1f ms to "
        "the end of its scan\n",
        bench::kOrdner * bench::kBloeckeProOrdner, erste * 1e3);
    std::printf(
        "schnellfilter: medians of %d rounds x %d: \"ventil\" (%ld hits, %d listed) %.1f ms from "
        "the key to the first 50 hits painted; \"ventilxy\" (%ld hits) %.1f ms to the end of its "
        "scan; the search %.1f ms\n",
        kRunden, kJeRunde, gesamt, angezeigt, t * 1e3, leerGesamt, bench::fctMedian(leer) * 1e3,
        p * 1e3);
    std::printf("schnellfilter ratio key/search = %.2f (target <= 0.5)\n", t / p);
}

}  // namespace

int main(int argc, char** argv) {
    bench::fctQtPlattformWaehlen();
    QApplication app(argc, argv);
    try {
        const auto& bib = bench::fctGrosseBibliothek();
        // Only the search, this many times, for a profiler.
        for (int i = 1; i < argc; ++i)
            if (std::strncmp(argv[i], kWiederholen, std::strlen(kWiederholen)) == 0) {
                Suche suche(bib);
                for (int n = std::atoi(argv[i] + std::strlen(kWiederholen)); n > 0; --n)
                    suche.suchen();
                return 0;
            }
        std::printf("datenbank_suche: library of %d Blocks (%.1f MB)\n",
                    bench::kOrdner * bench::kBloeckeProOrdner, double(bib.bytes) / 1e6);
        if (std::system("sqlite3 -version >/dev/null 2>&1") == 0)
            anweisungGegenSqlite(bib);
        else
            std::printf(
                "datenbank_suche: sqlite3 is not installed (scripts/setup-deps): no peer\n");
        schnellfilterGegenSuche(bib);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "datenbank_suche: %s\n", e.what());
        return 1;
    }
    return 0;
}
