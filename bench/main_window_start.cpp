// Start to first painted Page on the 100 000-Block library: the main window
// constructed, its load sequence run (laden), until the first Page of 72
// slots has all its pictures in (seiteGemalt). The peer is an empty
// QMainWindow of the same size: constructed, shown, its first paint event
// processed, in the same run. Target: window/peer <= 2.
//
// Measured two ways, alternating window and peer:
// - as a program starts: each in a process of its own (this executable
//   again), from the launch through QApplication to the painted window, so
//   both pay what the first window of a process pays (platform, fonts,
//   style);
// - within one process that has shown a window before: the window alone.
//   There an empty QMainWindow costs well under a millisecond.
// Each start is a fresh one as far as the program can tell: a new program
// state, registry and Settings file, a new window with an empty preview
// cache (the operating system's file cache stays warm).
#include <unistd.h>

#include <QApplication>
#include <QMainWindow>
#include <QPaintEvent>
#include <QProcess>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <sstream>

#include "cad/cad_verbindung.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "grosse_bibliothek.h"
#include "library/datenbank.h"
#include "library/navigation_model.h"
#include "platform/environment.h"
#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/registry_werte.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/sld_blockverwaltung.h"

namespace {

using namespace tessara;
namespace fs = std::filesystem;
using Uhr = std::chrono::steady_clock;

const QSize kFenster(1900, 1000);
constexpr const char* kKind = "--kind=";
// Only the window's start, this many times, for a profiler.
constexpr const char* kWiederholen = "--repeat=";

double sekunden(Uhr::time_point a, Uhr::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

class LeeresFenster : public QMainWindow {
  public:
    std::function<void()> gemalt;

  protected:
    void paintEvent(QPaintEvent* e) override {
        QMainWindow::paintEvent(e);
        if (gemalt) gemalt();
    }
};

double leeresFensterZeigen() {
    bool gemalt = false;
    const auto t0 = Uhr::now();
    auto f = std::make_unique<LeeresFenster>();
    f->gemalt = [&] { gemalt = true; };
    f->resize(kFenster);
    f->show();
    while (!gemalt) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const auto t1 = Uhr::now();
    f.reset();
    QCoreApplication::processEvents();
    return sekunden(t0, t1);
}

struct Start {
    double sekunden = 0;
    QSize bild;           // the pictures of the first Page when it was reported painted
    QSize bildDanach;     // the same once the window has settled
    int nochmals = 0;     // Pages painted again while it settled
    int dias = 0;         // slides read and painted until the first Page was in
    int diasDanach = 0;   // the same once the window has settled
    int anzahlSlots = 0;  // slots of the first Page
    std::string meldung;  // the first message the window showed, if any
    std::string select;   // the statement of rsBlockInfo0
};

// nachsehen: after the measurement, let the window settle for a moment and
// note whether it painted the Page again.
Start fensterStarten(const bench::GrosseBibliothek& bib, int runde, bool nachsehen = false) {
    bench::FensterUmgebung u(bib, "tessara_bench_start_" + std::to_string(runde), kFenster.width(),
                             kFenster.height());
    ProgrammZustand& z = u.z;
    SkriptBenutzer& benutzer = u.benutzer;
    CadVerbindung cad;

    // The window answers each request on standard output; not here.
    std::ostringstream still;
    auto* vorher = std::cout.rdbuf(still.rdbuf());
    Start s;
    int gemalt = 0;
    const auto t0 = Uhr::now();
    auto f = std::make_unique<FrmBlockverwaltung>(z, cad);
    QObject::connect(f.get(), &FrmBlockverwaltung::seiteGemalt, [&] { ++gemalt; });
    f->laden();
    while (!gemalt) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const auto t1 = Uhr::now();
    s.sekunden = sekunden(t0, t1);
    s.anzahlSlots = static_cast<int>(f->modell().seitenSlots().size());
    auto* dia = f->findChild<SldBlockverwaltung*>(QStringLiteral("sldBlockverwaltung_0"));
    if (dia) s.bild = dia->bild().size();
    s.dias = f->vorschau().gemalt();
    // The Folder's statement, which the window reads once the Page is painted.
    if (const auto* ordner = f->modell().aktuellerOrdner())
        s.select = fctSqlBlockInfo() + " WHERE OrdnerID = " + std::to_string(ordner->Nr);
    if (nachsehen) {
        const auto bis = Uhr::now() + std::chrono::milliseconds(600);
        while (Uhr::now() < bis) QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        s.nochmals = gemalt - 1;
        if (dia) s.bildDanach = dia->bild().size();
        s.diasDanach = f->vorschau().gemalt();
    }
    if (!benutzer.gezeigt.empty()) s.meldung = benutzer.gezeigt.front().text;
    f.reset();
    QCoreApplication::processEvents();
    std::cout.rdbuf(vorher);
    return s;
}

// The engine's part of the start: rsBlockInfo0 read on a connection of its
// own, as the window reads it for the first Folder.
double blockInfoOeffnen(const bench::GrosseBibliothek& bib, const std::string& select) {
    db::Connection con(db::jetOpener(platform::nativePath));
    con.open(fctJetVerbindung(bib.mdbProgramm));
    const auto t0 = Uhr::now();
    db::Recordset rs;
    rs.open(select, con, db::adOpenStatic, db::adLockReadOnly);
    const auto t1 = Uhr::now();
    if (rs.recordCount() != bench::kBloeckeProOrdner)
        throw std::runtime_error("rsBlockInfo0 holds " + std::to_string(rs.recordCount()) +
                                 " rows");
    return sekunden(t0, t1);
}

// The child's side of a start in a process of its own: what it prints for
// the parent, the clock being the same in both.
int kindStart(const std::string& art) {
    const auto t0 = Uhr::now();
    bench::fctQtPlattformWaehlen();
    int argc = 1;
    char name[] = "bench_main_window_start";
    char* argv[] = {name, nullptr};
    QApplication app(argc, argv);
    const auto t1 = Uhr::now();
    const double fenster = art == "leer" ? leeresFensterZeigen()
                                         : fensterStarten(bench::fctGrosseBibliothek(), 0).sekunden;
    std::printf(
        "zeiten %lld %.9f %.9f\n",
        static_cast<long long>(
            std::chrono::duration_cast<std::chrono::nanoseconds>(t0.time_since_epoch()).count()),
        sekunden(t0, t1), fenster);
    std::fflush(stdout);
    return 0;
}

struct ProzessStart {
    double starten = 0;    // launch to main()
    double anwendung = 0;  // QApplication
    double fenster = 0;    // the window to painted
    double summe() const { return starten + anwendung + fenster; }
};

ProzessStart prozessStarten(const char* art) {
    QProcess p;
    p.setProcessChannelMode(QProcess::SeparateChannels);
    const auto t = Uhr::now();
    p.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(kKind) + art});
    if (!p.waitForFinished(60000) || p.exitCode() != 0)
        throw std::runtime_error(std::string("the ") + art +
                                 " start failed: " + p.readAllStandardError().toStdString());
    for (const QByteArray& zeile : p.readAllStandardOutput().split('\n')) {
        long long t0 = 0;
        double anwendung = 0, fenster = 0;
        if (std::sscanf(zeile.constData(), "zeiten %lld %lf %lf", &t0, &anwendung, &fenster) == 3) {
            ProzessStart s;
            s.starten = double(t0 - std::chrono::duration_cast<std::chrono::nanoseconds>(
                                        t.time_since_epoch())
                                        .count()) /
                        1e9;
            s.anwendung = anwendung;
            s.fenster = fenster;
            return s;
        }
    }
    throw std::runtime_error(std::string("the ") + art + " start reported nothing");
}

void inProzessen() {
    constexpr int kRunden = 7;
    prozessStarten("leer");  // the executable's pages into the file cache
    prozessStarten("fenster");
    std::vector<double> fenster, peer, start, app, fensterAllein, peerAllein;
    for (int r = 1; r <= kRunden; ++r) {
        const ProzessStart l = prozessStarten("leer");
        const ProzessStart f = prozessStarten("fenster");
        peer.push_back(l.summe());
        fenster.push_back(f.summe());
        start.push_back(l.starten);
        start.push_back(f.starten);
        app.push_back(l.anwendung);
        app.push_back(f.anwendung);
        peerAllein.push_back(l.fenster);
        fensterAllein.push_back(f.fenster);
    }
    const double f = bench::fctMedian(fenster), p = bench::fctMedian(peer);
    std::printf(
        "main_window_start, each start a process of its own: medians of %d rounds: launch to "
        "first painted Page %.1f ms, launch to shown empty QMainWindow %.1f ms (of both: "
        "launch to main %.1f ms, QApplication %.1f ms; then the main window %.1f ms, the empty "
        "one %.1f ms)\n",
        kRunden, f * 1e3, p * 1e3, bench::fctMedian(start) * 1e3, bench::fctMedian(app) * 1e3,
        bench::fctMedian(fensterAllein) * 1e3, bench::fctMedian(peerAllein) * 1e3);
    std::printf("main_window_start ratio (process start) = %.2f (target <= 2)\n", f / p);
}

void inEinemProzess(const bench::GrosseBibliothek& bib) {
    // Once each unmeasured: what the first window of a process pays
    // (fonts, styles, the platform's window) belongs to neither.
    leeresFensterZeigen();
    const Start erster = fensterStarten(bib, 0, true);
    std::printf(
        "first Page: %d slots; %d slides painted, pictures %dx%d when reported painted; once the "
        "window settled: %d slides painted, pictures %dx%d, Page reported %d more time(s)%s%s\n",
        erster.anzahlSlots, erster.dias, erster.bild.width(), erster.bild.height(),
        erster.diasDanach, erster.bildDanach.width(), erster.bildDanach.height(), erster.nochmals,
        erster.meldung.empty() ? "" : "; message shown: ", erster.meldung.c_str());
    constexpr int kRunden = 7;
    std::vector<double> fenster, peer, engine;
    for (int r = 1; r <= kRunden; ++r) {
        peer.push_back(leeresFensterZeigen());
        fenster.push_back(fensterStarten(bib, r).sekunden);
        engine.push_back(blockInfoOeffnen(bib, erster.select));
    }
    const double f = bench::fctMedian(fenster), p = bench::fctMedian(peer);
    std::printf("reading rsBlockInfo0 of the first Folder (%d rows) alone: %.1f ms\n",
                bench::kBloeckeProOrdner, bench::fctMedian(engine) * 1e3);
    std::printf(
        "main_window_start, within one process: medians of %d rounds: construct to first painted "
        "Page %.1f ms, empty QMainWindow construct to shown %.2f ms, ratio %.1f\n",
        kRunden, f * 1e3, p * 1e3, f / p);
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], kKind, std::strlen(kKind)) == 0)
            return kindStart(argv[i] + std::strlen(kKind));
    bench::fctQtPlattformWaehlen();
    QApplication app(argc, argv);
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], kWiederholen, std::strlen(kWiederholen)) == 0) {
            const int n = std::atoi(argv[i] + std::strlen(kWiederholen));
            for (int r = 0; r < n; ++r) fensterStarten(bench::fctGrosseBibliothek(), r);
            return 0;
        }
    try {
        const auto& bib = bench::fctGrosseBibliothek();
        std::printf(
            "main_window_start: library of %d Folders x %d Blocks (%.1f MB), Qt platform %s, "
            "window %dx%d\n",
            bench::kOrdner, bench::kBloeckeProOrdner, double(bib.bytes) / 1e6,
            qPrintable(QGuiApplication::platformName()), kFenster.width(), kFenster.height());
        inEinemProzess(bib);
        inProzessen();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "main_window_start: %s\n", e.what());
        return 1;
    }
    return 0;
}
