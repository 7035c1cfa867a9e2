// A Page of 72 previews at 160 x 120: decoding and painting the slides from
// their bytes, against Qt decoding 72 PNG thumbnails of the same pictures at
// the same size. The figure is the ratio of the two, measured in this run;
// the target is at most 1.0.
#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "authoring/demo_bibliothek.h"
#include "authoring/slide.h"
#include "ui/slide_painter.h"

namespace {

constexpr int kSeite = 72;
const QSize kGroesse(160, 120);

struct Daten {
    std::vector<std::vector<std::uint8_t>> dias;  // slide files as read from disk
    std::vector<QByteArray> pngs;                 // the same pictures as PNG thumbnails
};

const Daten& daten() {
    static const Daten d = [] {
        Daten out;
        std::vector<std::vector<std::uint8_t>> quellen;
        for (const auto& s : tessara::fctDemoSymbole())
            for (const auto& v : s.ansichten) quellen.push_back(tessara::slide::writeSlide(v));
        for (const char* name : {"slide_up.sld", "slide_dn.sld", "slide_kss.sld", "slide_kz.sld"}) {
            try {
                quellen.push_back(tessara::slide::readFileBytes(std::string(TESSARA_TESTDATA) +
                                                                "/slides/" + name));
            } catch (const std::exception&) {
            }
        }
        for (int i = 0; i < kSeite; ++i) {
            const auto& bytes = quellen[static_cast<std::size_t>(i) % quellen.size()];
            out.dias.push_back(bytes);
            QImage bild = tessara::ui::fctDiaBild(tessara::slide::readSlide(bytes), kGroesse);
            QByteArray png;
            QBuffer puffer(&png);
            puffer.open(QIODevice::WriteOnly);
            bild.save(&puffer, "PNG");
            out.pngs.push_back(png);
        }
        return out;
    }();
    return d;
}

void seiteMalen() {
    for (const auto& bytes : daten().dias) {
        QImage bild = tessara::ui::fctDiaBild(tessara::slide::readSlide(bytes), kGroesse);
        benchmark::DoNotOptimize(bild.constBits());
    }
}

void pngsDekodieren() {
    for (const auto& png : daten().pngs) {
        QImage bild = QImage::fromData(png, "PNG");
        benchmark::DoNotOptimize(bild.constBits());
    }
}

void BM_Seite72DiasMalen(benchmark::State& state) {
    for (auto _ : state) seiteMalen();
    state.SetItemsProcessed(state.iterations() * kSeite);
}
BENCHMARK(BM_Seite72DiasMalen)->Unit(benchmark::kMillisecond);

void BM_Seite72PngsDekodieren(benchmark::State& state) {
    for (auto _ : state) pngsDekodieren();
    state.SetItemsProcessed(state.iterations() * kSeite);
}
BENCHMARK(BM_Seite72PngsDekodieren)->Unit(benchmark::kMillisecond);

// Best of several rounds of each, alternating so that both see the same machine.
double bestesVerhaeltnis() {
    using Uhr = std::chrono::steady_clock;
    double malen = 1e300, png = 1e300;
    for (int runde = 0; runde < 30; ++runde) {
        auto t0 = Uhr::now();
        seiteMalen();
        auto t1 = Uhr::now();
        pngsDekodieren();
        auto t2 = Uhr::now();
        malen = std::min(malen, std::chrono::duration<double>(t1 - t0).count());
        png = std::min(png, std::chrono::duration<double>(t2 - t1).count());
    }
    std::printf("page of %d slides at %dx%d: paint %.3f ms, PNG decode %.3f ms\n", kSeite,
                kGroesse.width(), kGroesse.height(), malen * 1e3, png * 1e3);
    return malen / png;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    daten();
    benchmark::RunSpecifiedBenchmarks();
    double r = bestesVerhaeltnis();
    std::printf("slide_render ratio (paint / PNG decode) = %.2f (target <= 1.0)\n", r);
    benchmark::Shutdown();
    return 0;
}
