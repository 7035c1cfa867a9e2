// Showing a Page of 72 slots of a 100 000-Block library: the navigation
// model's Finds for the Page (GeheZuSeite) and the 72 previews painted from
// their slide libraries at slot size through the preview cache and the
// painter of the main window. Cold: the cache is empty, every slot reads and
// paints its own file. Warm: paging back to a Page already painted. The peer
// is Qt reading and decoding 72 PNG thumbnails of the same pixel size from 72
// files, in the same run; the figures are cold/peer (target <= 1.0) and
// warm/peer (target <= 0.3). Measured on two Pages: the last full Page of a
// Folder of 10 000 Blocks, and the code table's last Page, in the Folder
// whose Blocks lie there (a page flip fills the block numbers of every slot
// before the Page).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <chrono>
#include <cstdio>
#include <set>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "db/jet_opener.h"
#include "grosse_bibliothek.h"
#include "library/navigation_model.h"
#include "platform/environment.h"
#include "ui/preview_cache.h"
#include "ui/slide_page_painter.h"

namespace {

using namespace tessara;
using Uhr = std::chrono::steady_clock;

// A Page to show and the Page before it, to page back to.
struct Ziel {
    int ordner;
    long seite;
};
// The last full Page of Folder 005 and the code table's last Page, in 009.
constexpr Ziel kZiele[] = {{5, bench::kBloeckeProOrdner / 72 - 1},
                           {bench::kOrdner - 1, kCodeTabelleLaenge / 72 - 1}};

double sekunden(Uhr::time_point a, Uhr::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

class Blaettern {
  public:
    Blaettern(const bench::GrosseBibliothek& bib, Ziel ziel)
        : arbeit_("tessara_bench_page_flip_" + std::to_string(ziel.ordner)),
          bib_(bib),
          ordner(ziel.ordner),
          seite(ziel.seite),
          vorige(ziel.seite - 1),
          modell_(z_, db::jetOpener(platform::nativePath)),
          maler_(cache_) {
        bench::fctZustandEinrichten(z_, arbeit_.pfad());
        if (!modell_.fctCodeTabelleLesen(fctCodeTabelleDatei(z_.strAppPfad)) ||
            !modell_.fctDatenbankOeffnen(bib.mdbProgramm))
            throw std::runtime_error("cannot open the library: " + modell_.fehlerText());
        modell_.setAnzahlDerBilder(bench::kBilderIndex);
        modell_.OrdnerInArrayEinlesen();
        if (!modell_.fctOrdnerWaehlen(bib.ordnerNr(ordner), 0))
            throw std::runtime_error("Folder " + bib.ordnerNr(ordner) + " is missing");
        QObject::connect(&maler_, &ui::DiaMaler::bildFertig, [this](int gen, int, const QImage&) {
            if (gen == maler_.generation()) ++bilder_;
        });
        QObject::connect(&maler_, &ui::DiaMaler::seiteFertig, [this](int gen) {
            if (gen == maler_.generation()) fertig_ = true;
        });
        for (int slot = 0; slot < 72; ++slot)
            pngs_.push_back(QString::fromStdString(
                bib.png(bib.dia(ordner, static_cast<int>(seite) * 72 + slot)).string()));
    }

    // The model's part of a page flip alone.
    void seiteWaehlen(long nr) {
        if (!modell_.GeheZuSeite(nr)) throw std::runtime_error("GeheZuSeite failed");
    }

    // A page flip as the window does it: the model, then the pictures, until
    // the last one is in.
    void zeigen(long nr) {
        seiteWaehlen(nr);
        QStringList namen;
        for (const auto& s : modell_.seitenSlots()) namen << QString::fromStdString(s.strBildname);
        fertig_ = false;
        bilder_ = 0;
        maler_.seiteAnfordern(namen, bench::kSlotGroesse, ui::DiaHintergrund::Dunkel);
        while (!fertig_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (bilder_ != 72) throw std::runtime_error("a Page came in with fewer than 72 pictures");
    }

    // The same Page painted on this thread alone, one picture after another.
    void zeigenEinFaden(long nr) {
        seiteWaehlen(nr);
        for (const auto& s : modell_.seitenSlots())
            benchmark::DoNotOptimize(
                cache_.bild(s.strBildname, bench::kSlotGroesse, ui::DiaHintergrund::Dunkel)
                    .constBits());
    }

    void pngsDekodieren() {
        for (const QString& datei : pngs_) {
            QFile f(datei);
            if (!f.open(QIODevice::ReadOnly)) throw std::runtime_error("PNG missing");
            QImage bild;
            if (!bild.loadFromData(f.readAll(), "PNG")) throw std::runtime_error("PNG unreadable");
            benchmark::DoNotOptimize(bild.constBits());
        }
    }

    // The Page before, painted, with the cache holding it alone: the next
    // flip to seite is cold, the one back to vorige warm.
    void vorbereiten() {
        cache_.leeren();
        zeigen(vorige);
    }

    // Every slot of the measured Page is a Block, with a slide library of
    // its own, so that a cold flip really reads 72 files.
    void pruefen() {
        seiteWaehlen(seite);
        std::set<std::string> dateien;
        for (const auto& s : modell_.seitenSlots()) {
            if (!s.booBelegt) throw std::runtime_error("a free slot on the measured Page");
            dateien.insert(s.strBildname);
        }
        if (dateien.size() != 72) throw std::runtime_error("slots share slide libraries");
        const int vorher = cache_.gemalt();
        vorbereiten();
        zeigen(seite);
        if (cache_.gemalt() - vorher != 144)
            throw std::runtime_error("a cold Page did not paint all 72 slides");
        const int gemalt = cache_.gemalt();
        zeigen(vorige);
        if (cache_.gemalt() != gemalt) throw std::runtime_error("a warm Page painted again");
        std::printf("Page %ld of Folder %s: 72 Blocks, 72 slide libraries (%s ...), %dx%d\n",
                    seite + 1, bib_.ordnerNr(ordner).c_str(),
                    modell_.seitenSlots()[0].strBildname.c_str(), bench::kSlotGroesse.width(),
                    bench::kSlotGroesse.height());
    }

    std::string name() const {
        return "Page " + std::to_string(seite + 1) + " of Folder " + bib_.ordnerNr(ordner);
    }

    ui::DiaVorschauCache& cache() { return cache_; }

    bench::ArbeitsVerzeichnis arbeit_;
    const bench::GrosseBibliothek& bib_;
    const int ordner;
    const long seite, vorige;

  private:
    ProgrammZustand z_;
    NavigationsModell modell_;
    ui::DiaVorschauCache cache_;
    ui::DiaMaler maler_;
    QStringList pngs_;
    bool fertig_ = false;
    int bilder_ = 0;
};

Blaettern* g_b = nullptr;

void BM_SeiteKalt(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        g_b->vorbereiten();
        state.ResumeTiming();
        g_b->zeigen(g_b->seite);
    }
}
BENCHMARK(BM_SeiteKalt)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SeiteWarm(benchmark::State& state) {
    g_b->zeigen(g_b->seite);
    g_b->zeigen(g_b->vorige);
    long seiten[2] = {g_b->seite, g_b->vorige};
    int i = 0;
    for (auto _ : state) g_b->zeigen(seiten[i++ & 1]);
}
BENCHMARK(BM_SeiteWarm)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_GeheZuSeite(benchmark::State& state) {
    long seiten[2] = {g_b->seite, g_b->vorige};
    int i = 0;
    for (auto _ : state) g_b->seiteWaehlen(seiten[i++ & 1]);
}
BENCHMARK(BM_GeheZuSeite)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_72PngsDekodieren(benchmark::State& state) {
    for (auto _ : state) g_b->pngsDekodieren();
}
BENCHMARK(BM_72PngsDekodieren)->Unit(benchmark::kMillisecond)->UseRealTime();

// Rounds of cold, warm, one thread, the model alone and the peer,
// alternating so that all see the same machine; the median of each.
void verhaeltnisse(Blaettern& b) {
    constexpr int kRunden = 21;
    std::vector<double> kalt, warm, einFaden, modell, peer;
    for (int r = 0; r < kRunden; ++r) {
        b.vorbereiten();
        auto t0 = Uhr::now();
        b.zeigen(b.seite);
        auto t1 = Uhr::now();
        b.zeigen(b.vorige);
        auto t2 = Uhr::now();
        b.pngsDekodieren();
        auto t3 = Uhr::now();
        b.seiteWaehlen(b.seite);
        auto t4 = Uhr::now();
        b.vorbereiten();
        auto t5 = Uhr::now();
        b.zeigenEinFaden(b.seite);
        auto t6 = Uhr::now();
        kalt.push_back(sekunden(t0, t1));
        warm.push_back(sekunden(t1, t2));
        peer.push_back(sekunden(t2, t3));
        modell.push_back(sekunden(t3, t4));
        einFaden.push_back(sekunden(t5, t6));
    }
    const double k = bench::fctMedian(kalt), w = bench::fctMedian(warm), p = bench::fctMedian(peer),
                 m = bench::fctMedian(modell), e = bench::fctMedian(einFaden);
    const std::string name = b.name();
    std::printf(
        "page_flip, %s: medians of %d rounds: cold %.2f ms, warm %.2f ms, 72 PNGs read and "
        "decoded %.2f ms; of which the model (GeheZuSeite) %.2f ms; cold on one thread %.2f ms\n",
        name.c_str(), kRunden, k * 1e3, w * 1e3, p * 1e3, m * 1e3, e * 1e3);
    std::printf(
        "page_flip ratio, %s: cold/peer = %.2f (target <= 1.0), warm/peer = %.2f (target <= 0.3); "
        "cold on one thread/peer = %.2f\n",
        name.c_str(), k / p, w / p, e / p);
}

}  // namespace

int main(int argc, char** argv) {
    bench::fctQtPlattformWaehlen();
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    try {
        const auto& bib = bench::fctGrosseBibliothek();
        std::printf("library: %d Folders x %d Blocks, %.1f MB catalogue%s; Qt platform %s\n",
                    bench::kOrdner, bench::kBloeckeProOrdner, double(bib.bytes) / 1e6,
                    bib.sekundenGebaut > 0 ? " (built in this run)" : " (from bench_data)",
                    qPrintable(QGuiApplication::platformName()));
        Blaettern b(bib, kZiele[0]), tief(bib, kZiele[1]);
        b.pruefen();
        tief.pruefen();
        g_b = &b;
        benchmark::RunSpecifiedBenchmarks();
        g_b = nullptr;
        verhaeltnisse(b);
        verhaeltnisse(tief);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "page_flip: %s\n", e.what());
        return 1;
    }
    benchmark::Shutdown();
    return 0;
}
