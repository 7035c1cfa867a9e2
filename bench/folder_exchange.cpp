// Folder export and import of a Folder of 5 000 Blocks with their files (a
// slide library and a drawing each, 10 000 files of 4 KiB), against `cp -r`
// copying the same Folder directory in the same run. Three rounds, each
// taking the four in turn; the figures are medians.
//
// Target: export and import each <= 2x the copy.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "db/jet_opener.h"
#include "exchange/ordner_austausch.h"
#include "library/datenbank.h"
#include "library/navigation_model.h"
#include "library/schema.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/schreib_einheit.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace tessara;

constexpr int kBloecke = 5000;

double sekundenSeit(Clock::time_point t0) {
    return std::chrono::duration<double>(Clock::now() - t0).count();
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

std::string pp(const fs::path& p) { return platform::programPath(p.string()); }

}  // namespace

int main() {
    const char* env = std::getenv("TESSARA_JET_BENCH_DIR");
    const fs::path wurzel =
        (env && *env ? fs::path(env) : fs::temp_directory_path()) / "tessara_bench_exchange";
    fs::remove_all(wurzel);
    fs::create_directories(wurzel / "prog");
    fs::create_directories(wurzel / "lib");
    std::ofstream(wurzel / "prog" / "txtPrefix.txt", std::ios::binary) << fctCodeTabelleText();

    SkriptBenutzer benutzer;
    ProgrammZustand z;
    z.benutzer = &benutzer;
    z.strCTemp = pp(wurzel) + "\\";
    z.strErrorDatei = z.strCTemp + "fehler.txt";
    z.strIniDatei = z.strCTemp + "Tessara9.0.ini";
    z.strAppPfad = pp(wurzel / "prog");
    const auto oeffner = db::jetOpener(platform::nativePath);
    const std::string basis = pp(wurzel / "lib") + "\\";
    const std::string db = basis + "dbTessara.mdb";
    if (!Mk_Datenbank(z, oeffner, db)) return 1;
    NavigationsModell m(z, oeffner);
    if (!m.fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt") || !m.fctDatenbankOeffnen(db) ||
        !m.OrdnerInArrayEinlesen())
        return 1;
    std::string code;
    if (!fctOrdnerNeu(z, m, "Quelle", &code)) return 1;

    const std::string inhalt(4096, 'x');
    {
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(db));
        SchreibEinheit e(con);
        const auto codes = fctCodeTabelleErzeugen();
        for (int i = 0; i < kBloecke; ++i) {
            const std::string nr = fctBlocknummer(code, i, codes[static_cast<std::size_t>(i)]);
            con.execute(
                "INSERT INTO tblBlockInfo (Block, OrdnerID, SlideLib, M0, BlkName0) "
                "VALUES ('" +
                nr + "', 2, '" + fctSlideLibEintrag(code, nr, true) + "', 'Teil " +
                std::to_string(i) + "', 'T" + std::to_string(i) + "')");
            for (const std::string& d :
                 {fctDiaBibliothek(code, nr, 0), fctZeichnungDatei(code, nr, 0)}) {
                const fs::path p = platform::nativePath(basis + d);
                fs::create_directories(p.parent_path());
                std::ofstream(p, std::ios::binary) << inhalt;
            }
        }
        e.commit();
    }

    const fs::path ordner = platform::nativePath(basis + code);
    std::vector<double> cp, aus, ein;
    for (int runde = 0; runde < 3; ++runde) {
        const fs::path ziel = wurzel / ("aus" + std::to_string(runde));
        fs::create_directories(ziel);
        const std::string befehl = "cp -r '" + ordner.string() + "' '" +
                                   (wurzel / ("cp" + std::to_string(runde))).string() + "'";
        auto t0 = Clock::now();
        if (std::system(befehl.c_str()) != 0) return 1;
        cp.push_back(sekundenSeit(t0));

        const std::string datei = pp(ziel / "Quelle.mdb");
        t0 = Clock::now();
        if (!fctOrdnerExportieren(z, m, code, datei)) return 1;
        aus.push_back(sekundenSeit(t0));

        t0 = Clock::now();
        if (!fctOrdnerImportieren(z, m, datei, "Kopie " + std::to_string(runde))) return 1;
        ein.push_back(sekundenSeit(t0));
    }
    const double c = median(cp), a = median(aus), i = median(ein);
    std::printf(
        "Folder of %d Blocks (%d files): cp -r %.0f ms, export %.0f ms (%.2fx), import "
        "%.0f ms (%.2fx) (medians of 3; target <= 2x each)\n",
        kBloecke, 2 * kBloecke, c * 1e3, a * 1e3, a / c, i * 1e3, i / c);
    fs::remove_all(wurzel);
    return 0;
}
