// The 100 000-Block library on a file server: every read and write call the
// engine makes is a round trip over the network, here 1 ms each (a LAN file
// server), added by the engine's file-server hook (jet::os::setCallDelay).
// Three figures, each with the engine's read (and write) calls it took:
//
// - start: the main window constructed on the library, its load sequence
//   run, until its first Page of 72 slots is painted (seiteGemalt);
// - flip: the next Page (combutVor) until it is painted, five times, the
//   median and the slowest;
// - search: the search window's statement (bench/datenbank_suche.cpp's
//   criteria) run by fctDatenbankSuchen on the window's own connection, as
//   the search window runs it, its hits read; then the same search again,
//   and once on a connection of its own that has read nothing yet.
//
// Targets: start <= 0.5 s, flip <= 100 ms, search <= 3 s. The peer is the
// same sequence with the library on the local disk (no delay), in the same
// run, rounds alternating; the ratio server/local is printed beside.
// Only the engine's calls are delayed: the slide libraries the previews are
// painted from are read from the local disk on both sides.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "cad/cad_verbindung.h"
#include "db/jet_opener.h"
#include "grosse_bibliothek.h"
#include "jet/store/os.h"
#include "library/datenbank.h"
#include "platform/environment.h"
#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "search/datenbank_suche.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/registry_werte.h"
#include "ui/frm_blockverwaltung.h"

namespace {

using namespace tessara;
namespace fs = std::filesystem;
using Uhr = std::chrono::steady_clock;

constexpr auto kRundreise = std::chrono::milliseconds(1);
constexpr int kRunden = 5;
constexpr int kBlaettern = 5;
constexpr double kZielStart = 0.5, kZielBlaettern = 0.1, kZielSuche = 3.0;

struct Messung {
    double sekunden = 0;
    jet::os::CallCounts aufrufe;
};

// Times f and counts the engine's calls it makes.
template <class F>
Messung messen(F&& f) {
    const auto vorher = jet::os::callCounts();
    const auto t0 = Uhr::now();
    f();
    Messung m;
    m.sekunden = std::chrono::duration<double>(Uhr::now() - t0).count();
    const auto nachher = jet::os::callCounts();
    m.aufrufe = {nachher.reads - vorher.reads, nachher.writes - vorher.writes};
    return m;
}

typSuchKriterien kriterien() { return bench::fctSuchKriterien(); }

struct Runde {
    Messung start, suche, sucheNochmals, sucheKalt;
    std::vector<Messung> blaettern;
    std::size_t treffer = 0;
};

// One start of the main window on the library, its flips and searches.
Runde runde(const bench::GrosseBibliothek& bib, int nr) {
    bench::FensterUmgebung u(bib, "tessara_bench_file_server_" + std::to_string(nr), 1900, 1000);
    ProgrammZustand& z = u.z;
    SkriptBenutzer& benutzer = u.benutzer;
    CadVerbindung cad;

    // The window answers each request on standard output; not here.
    std::ostringstream still;
    auto* vorher = std::cout.rdbuf(still.rdbuf());
    Runde r;
    std::unique_ptr<FrmBlockverwaltung> f;
    int gemalt = 0;
    auto warten = [&] {
        while (!gemalt) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        gemalt = 0;
    };
    r.start = messen([&] {
        f = std::make_unique<FrmBlockverwaltung>(z, cad);
        QObject::connect(f.get(), &FrmBlockverwaltung::seiteGemalt, [&] { ++gemalt; });
        f->laden();
        warten();
    });
    const long seite = f->modell().intSeite();
    for (int i = 0; i < kBlaettern; ++i)
        r.blaettern.push_back(messen([&] {
            f->combutVor_Click();
            warten();
        }));
    const long geblaettert = f->modell().intSeite() - seite;
    typSuchAusgang a;
    auto suchen = [&] {
        a = fctDatenbankSuchen(z, f->modell().datenbank().con, kriterien(), "tblBlockInfo", 0);
    };
    r.suche = messen(suchen);
    r.treffer = a.treffer.size();
    r.sucheNochmals = messen(suchen);
    bool gleich = a.treffer.size() == r.treffer;
    {
        db::Connection con(db::jetOpener(platform::nativePath));
        con.open(fctJetVerbindung(bib.mdbProgramm));
        r.sucheKalt =
            messen([&] { a = fctDatenbankSuchen(z, con, kriterien(), "tblBlockInfo", 0); });
        gleich = gleich && a.treffer.size() == r.treffer;
    }
    const std::string meldung = benutzer.gezeigt.empty() ? "" : benutzer.gezeigt.front().text;
    f.reset();
    QCoreApplication::processEvents();
    std::cout.rdbuf(vorher);
    if (geblaettert != kBlaettern)
        throw std::runtime_error("the window flipped " + std::to_string(geblaettert) + " Pages");
    if (a.ergebnis != SuchErgebnis::Anzeigen || r.treffer == 0 || !gleich)
        throw std::runtime_error("the search found " + std::to_string(r.treffer) + " Blocks");
    if (!meldung.empty()) throw std::runtime_error("the window showed: " + meldung);
    return r;
}

Messung median(std::vector<Messung> m) {
    std::sort(m.begin(), m.end(),
              [](const Messung& a, const Messung& b) { return a.sekunden < b.sekunden; });
    return m[m.size() / 2];
}

Messung median(const std::vector<Runde>& runden, Messung Runde::*feld) {
    std::vector<Messung> m;
    for (const auto& r : runden) m.push_back(r.*feld);
    return median(m);
}

void zeile(const char* was, const Messung& server, const Messung& lokal, double ziel) {
    std::printf(
        "file_server, %s: %.3f s at 1 ms a call, %llu read calls, %llu write calls (target <= "
        "%.1f s); on the local disk %.3f s, server/local = %.1f\n",
        was, server.sekunden, static_cast<unsigned long long>(server.aufrufe.reads),
        static_cast<unsigned long long>(server.aufrufe.writes), ziel, lokal.sekunden,
        server.sekunden / lokal.sekunden);
}

}  // namespace

int main(int argc, char** argv) {
    bench::fctQtPlattformWaehlen();
    QApplication app(argc, argv);
    try {
        const auto& bib = bench::fctGrosseBibliothek();
        std::printf(
            "file_server: library of %d Blocks (%.1f MB), %d rounds alternating a file "
            "server (1 ms a read or write call) and the local disk\n",
            bench::kOrdner * bench::kBloeckeProOrdner, double(bib.bytes) / 1e6, kRunden);
        runde(bib, 0);  // what the first window of a process pays belongs to neither
        std::vector<Runde> server, lokal;
        for (int i = 1; i <= kRunden; ++i) {
            jet::os::setCallDelay(kRundreise);
            server.push_back(runde(bib, i));
            jet::os::setCallDelay({});
            lokal.push_back(runde(bib, i));
        }
        std::vector<Messung> blaetternServer, blaetternLokal;
        for (const auto& r : server)
            blaetternServer.insert(blaetternServer.end(), r.blaettern.begin(), r.blaettern.end());
        for (const auto& r : lokal)
            blaetternLokal.insert(blaetternLokal.end(), r.blaettern.begin(), r.blaettern.end());
        const auto langsamste = *std::max_element(
            blaetternServer.begin(), blaetternServer.end(),
            [](const Messung& a, const Messung& b) { return a.sekunden < b.sekunden; });
        std::printf(
            "file_server: medians of %d rounds (flips: of %zu); the search finds %zu "
            "Blocks\n",
            kRunden, blaetternServer.size(), server.front().treffer);
        zeile("open and paint the first Page", median(server, &Runde::start),
              median(lokal, &Runde::start), kZielStart);
        zeile("flip to the next Page", median(blaetternServer), median(blaetternLokal),
              kZielBlaettern);
        zeile("slowest flip", langsamste, median(blaetternLokal), kZielBlaettern);
        zeile("database search", median(server, &Runde::suche), median(lokal, &Runde::suche),
              kZielSuche);
        zeile("the same search again", median(server, &Runde::sucheNochmals),
              median(lokal, &Runde::sucheNochmals), kZielSuche);
        zeile("the search on a connection that has read nothing yet",
              median(server, &Runde::sucheKalt), median(lokal, &Runde::sucheKalt), kZielSuche);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "file_server: %s\n", e.what());
        return 1;
    }
    return 0;
}
