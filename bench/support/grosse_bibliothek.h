#pragma once
// A library of 100 000 Blocks for the main-window benchmarks: ten Folders of
// 10 000 Blocks each in a real dbTessara.mdb, block numbers as the program
// forms them (Folder code, "0", the slot's code), their previews in a shared
// set of slide libraries, and the same pictures as PNG thumbnails for the
// peer. Built once under the build directory and taken from there while the
// generator is unchanged.
//
// Folders 000 to 008 hold their Blocks on slots 0 .. 9 999; the last Folder
// holds them on the code table's last 10 000 slots, so that the deepest
// Pages a Folder can have are measured too.
#include <QSize>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "search/datenbank_suche.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::bench {

constexpr int kOrdner = 10;
constexpr int kBloeckeProOrdner = 10000;
// Slide libraries shared by all Blocks; Block on slot s of any Folder shows
// library (s + 37 × Folder) mod kDias, so a Page of 72 slots names 72
// different files.
constexpr int kDias = 400;
// Picture-size index 7: 72 slots a Page, and the size a slot shows them at.
constexpr long kBilderIndex = 7;
const QSize kSlotGroesse(140, 105);

struct GrosseBibliothek {
    std::filesystem::path verzeichnis;  // the library directory (native)
    std::string mdbProgramm;            // dbTessara.mdb in the program's path form
    std::string appProgramm;            // program directory (txtPrefix.txt, frei2.sld)
    double sekundenGebaut = 0;          // 0 when taken from an earlier run
    std::uintmax_t bytes = 0;           // the .mdb's size

    std::string ordnerNr(int ordner) const;  // "000" .. "009"
    // The absolute slot of the Folder's i-th Block.
    int slot(int ordner, int i) const;
    // The slide library that Block on slot s of the Folder shows, and its
    // PNG thumbnail at kSlotGroesse.
    int dia(int ordner, int slot) const;
    std::filesystem::path png(int dia) const;
};

// Builds the library on first use (and after a change of the generator),
// reporting how long that took on stderr.
const GrosseBibliothek& fctGrosseBibliothek();

// A directory of its own below the system's temporary directory, removed
// with the object.
class ArbeitsVerzeichnis {
  public:
    explicit ArbeitsVerzeichnis(const std::string& name);
    ~ArbeitsVerzeichnis();
    ArbeitsVerzeichnis(const ArbeitsVerzeichnis&) = delete;
    ArbeitsVerzeichnis& operator=(const ArbeitsVerzeichnis&) = delete;
    const std::filesystem::path& pfad() const { return pfad_; }

  private:
    std::filesystem::path pfad_;
};

// A program state over temporary files below dir (created), the program
// directory of this build, and no platform: enough for the navigation model.
void fctZustandEinrichten(ProgrammZustand& z, const std::filesystem::path& dir);

// What a main window starts from in a benchmark: the program state over a
// working directory of its own, a Settings file naming the library, the
// registry and desktop in memory with the picture size and window size set,
// and no remembered position, so that it opens on the first Page of the
// first Folder. Holds pointers into itself: neither copied nor moved.
struct FensterUmgebung {
    FensterUmgebung(const GrosseBibliothek& bib, const std::string& arbeitsName, int breite,
                    int hoehe);
    FensterUmgebung(const FensterUmgebung&) = delete;
    FensterUmgebung& operator=(const FensterUmgebung&) = delete;
    ArbeitsVerzeichnis arbeit;
    ProgrammZustand z;
    platform::MemoryRegistry registry;
    platform::MemoryDesktop desktop;
    platform::Platform plattform;
    SkriptBenutzer benutzer;
};

// The database search the benchmarks measure: two attribute fields and the
// block name, searched in all Views and Variants.
typSuchKriterien fctSuchKriterien();

// Chooses Qt's platform before the application is made: the offscreen one
// when there is no display, so that `make bench` runs headless.
void fctQtPlattformWaehlen();

// The median of a set of timings (seconds).
double fctMedian(std::vector<double> werte);

}  // namespace tessara::bench
