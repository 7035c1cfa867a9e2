// The 100 000-Block library with its catalogue pushed to a private
// PostgreSQL server (kept filled under bench_data/ between runs), two
// figures, each against its peer in the same run:
//
// 1. The search window's statement through the driver: composed, opened as
//    a record set on the program's connection to the server catalogue, its
//    hits read. The peer is libpq itself: PQexec of the very statement the
//    driver rendered for the server, every value of every row fetched.
//    Wall-clock time (the server works for both sides). Target: <= 1.2.
//
// 2. Opening a Page: rsBlockInfo0 of one Folder read again and the 72 Finds
//    that fill its last full Page (what choosing the Folder pays), over the
//    server catalogue against the same over the .mdb. Target: <= 1.5.
//
// Rounds alternate the two sides; the figures are medians.
#include "db/server_catalogue.h"

#include <libpq-fe.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "authoring/datei_layout.h"
#include "db/jet_opener.h"
#include "db/pg/pg_storage.h"
#include "grosse_bibliothek.h"
#include "jet/sql/engine_storage.h"
#include "library/datenbank.h"
#include "library/navigation_model.h"
#include "pg_server.h"
#include "platform/environment.h"
#include "search/datenbank_suche.h"
#include "startup/benutzer.h"

namespace {

using namespace tessara;
namespace fs = std::filesystem;
using Uhr = std::chrono::steady_clock;
using test::PgServer;

constexpr int kRunden = 15;
constexpr int kOrdnerNr = 5;
constexpr long kSeite = bench::kBloeckeProOrdner / 72 - 1;  // the last full Page
// Raised whenever what is pushed to the kept cluster changes.
constexpr int kKatalogStand = 1;

double sekunden(Uhr::time_point a, Uhr::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

// The cluster beside the library, filled by one push the first time.
struct Katalog {
    fs::path dir;
    std::unique_ptr<PgServer> server;
    db::ServerCatalogue adresse;

    explicit Katalog(const bench::GrosseBibliothek& bib)
        : dir(bib.verzeichnis.parent_path() / ("server_" + bib.verzeichnis.filename().string() +
                                               "_v" + std::to_string(kKatalogStand))) {
        const bool gefuellt = fs::exists(dir / "fertig");
        if (!gefuellt) fs::remove_all(dir);
        server = std::make_unique<PgServer>(dir.string());
        if (!server->error().empty()) throw std::runtime_error(server->error());
        adresse = {"127.0.0.1", std::to_string(server->port()), "kat", PgServer::kUser};
        if (gefuellt) return;
        if (auto e = server->createDatabase("kat"); !e.empty()) throw std::runtime_error(e);
        const auto t0 = Uhr::now();
        auto from = sql::openEngineStorage(platform::nativePath(bib.mdbProgramm), false);
        auto to = db::openServerCatalogue(adresse, false);
        long zeilen = 0;
        for (const auto& [tabelle, n] : db::copyCatalogue(*from, *to, {}, {})) zeilen += n;
        server->psql("kat", "VACUUM ANALYZE");
        std::ofstream(dir / "fertig") << zeilen << " rows\n";
        std::fprintf(stderr, "server_catalogue: %ld rows pushed in %.1f s, kept in %s\n", zeilen,
                     sekunden(t0, Uhr::now()), dir.c_str());
    }
};

// A library directory whose dbTessara.ini sends the program to the server.
struct ServerBibliothek {
    bench::ArbeitsVerzeichnis arbeit{"tessara_bench_server_catalogue"};
    std::string mdbProgramm;
    explicit ServerBibliothek(const PgServer& server) {
        fs::create_directories(arbeit.pfad() / "bib");
        std::ofstream(arbeit.pfad() / "bib" / "dbTessara.ini", std::ios::binary)
            << server.iniSection("kat");
        mdbProgramm = platform::programPath((arbeit.pfad() / "bib" / "dbTessara.mdb").string());
    }
};

// --- 1. the search -----------------------------------------------------------

class Suche {
  public:
    Suche(const std::string& mdbProgramm, const fs::path& arbeit)
        : con_(db::jetOpener(platform::nativePath)) {
        bench::fctZustandEinrichten(z_, arbeit);
        z_.benutzer = &benutzer_;
        con_.open(fctJetVerbindung(mdbProgramm));
    }
    std::size_t suchen() {
        const auto a = fctDatenbankSuchen(z_, con_, bench::fctSuchKriterien(), "tblBlockInfo", 0);
        if (a.ergebnis != SuchErgebnis::Anzeigen)
            throw std::runtime_error("the search found nothing");
        return a.treffer.size();
    }
    std::string gerendert() { return db::pg::lastRendered(*con_.storage()); }

  private:
    ProgrammZustand z_;
    SkriptBenutzer benutzer_;
    db::Connection con_;
};

// libpq on its own: the statement, every value of every row touched.
class Peer {
  public:
    explicit Peer(const db::ServerCatalogue& a) {
        const std::string info =
            "host=" + a.host + " port=" + a.port + " dbname=" + a.database + " user=" + a.user;
        c_ = PQconnectdb(info.c_str());
        if (PQstatus(c_) != CONNECTION_OK)
            throw std::runtime_error(std::string("libpq: ") + PQerrorMessage(c_));
    }
    ~Peer() { PQfinish(c_); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    int ausfuehren(const std::string& anweisung, std::size_t& bytes) {
        PGresult* r = PQexec(c_, anweisung.c_str());
        if (PQresultStatus(r) != PGRES_TUPLES_OK) {
            const std::string why = PQresultErrorMessage(r);
            PQclear(r);
            throw std::runtime_error("libpq: " + why);
        }
        const int zeilen = PQntuples(r), spalten = PQnfields(r);
        for (int i = 0; i < zeilen; ++i)
            for (int k = 0; k < spalten; ++k)
                bytes +=
                    static_cast<std::size_t>(PQgetlength(r, i, k)) + (*PQgetvalue(r, i, k) != 0);
        PQclear(r);
        return zeilen;
    }

  private:
    PGconn* c_ = nullptr;
};

void sucheGegenLibpq(const std::string& mdbProgramm, const Katalog& k, const fs::path& arbeit) {
    Suche suche(mdbProgramm, arbeit);
    const std::size_t treffer = suche.suchen();  // warms the connection, as the window's is
    const std::string anweisung = suche.gerendert();
    if (anweisung.empty()) throw std::runtime_error("the driver rendered no statement");
    Peer peer(k.adresse);
    std::size_t bytes = 0;
    const int zeilen = peer.ausfuehren(anweisung, bytes);
    std::vector<double> wir, libpq;
    for (int r = 0; r < kRunden; ++r) {
        auto t0 = Uhr::now();
        if (suche.suchen() != treffer) throw std::runtime_error("the hits changed");
        auto t1 = Uhr::now();
        peer.ausfuehren(anweisung, bytes);
        auto t2 = Uhr::now();
        wir.push_back(sekunden(t0, t1));
        libpq.push_back(sekunden(t1, t2));
    }
    const double w = bench::fctMedian(wir), p = bench::fctMedian(libpq);
    std::printf(
        "server_catalogue: search, %zu hits (the server sent %d rows) of the rendered statement\n"
        "  %s\n",
        treffer, zeilen, anweisung.c_str());
    std::printf(
        "server_catalogue: search through the driver %.2f ms, libpq PQexec of the rendered "
        "statement %.2f ms (medians of %d rounds), ratio %.2fx (target <= 1.2)\n",
        w * 1e3, p * 1e3, kRunden, w / p);
}

// --- 2. opening a Page -------------------------------------------------------

struct Ordner {
    ProgrammZustand z;
    NavigationsModell modell{z, db::jetOpener(platform::nativePath)};
    std::vector<std::string> nummern;  // the block numbers of the Page's slots

    Ordner(const std::string& mdbProgramm, const bench::GrosseBibliothek& bib,
           const fs::path& arbeit) {
        bench::fctZustandEinrichten(z, arbeit);
        if (!modell.fctCodeTabelleLesen(fctCodeTabelleDatei(z.strAppPfad)) ||
            !modell.fctDatenbankOeffnen(mdbProgramm))
            throw std::runtime_error("cannot open the library: " + modell.fehlerText());
        modell.setAnzahlDerBilder(bench::kBilderIndex);
        modell.OrdnerInArrayEinlesen();
        if (!modell.fctOrdnerWaehlen(bib.ordnerNr(kOrdnerNr), kSeite))
            throw std::runtime_error("Folder " + bib.ordnerNr(kOrdnerNr) + " is missing");
        const auto& alle = modell.aryBlocknummern();
        nummern.assign(alle.end() - 72, alle.end());
    }
    db::Recordset& rs() { return modell.datenbank().rsBlockInfo0; }

    // Read again, then the Page's slots looked up as the model does.
    long seiteOeffnen(double& lesen, double& finden) {
        const auto t0 = Uhr::now();
        rs().requery();
        const auto t1 = Uhr::now();
        long gefunden = 0;
        for (const auto& nr : nummern) {
            rs().moveFirst();
            gefunden += rs().find("Block Like '" + nr + "'");
        }
        lesen = sekunden(t0, t1);
        finden = sekunden(t1, Uhr::now());
        return gefunden;
    }
};

void seiteGegenMdb(const std::string& mdbProgramm, const bench::GrosseBibliothek& bib,
                   const Katalog& k, const fs::path& arbeit) {
    Ordner server(mdbProgramm, bib, arbeit / "server"), mdb(bib.mdbProgramm, bib, arbeit / "mdb");
    // Where the server's time ends: its statement for rsBlockInfo0 alone.
    db::pg::lastRendered(*server.modell.datenbank().con.storage());
    server.rs().requery();
    const std::string anweisung = db::pg::lastRendered(*server.modell.datenbank().con.storage());
    Peer peer(k.adresse);
    std::vector<double> sLesen, sFinden, sGanz, mLesen, mFinden, mGanz, libpq;
    long gefunden = 0;
    std::size_t bytes = 0;
    for (int r = 0; r < kRunden; ++r) {
        double l, f;
        gefunden = server.seiteOeffnen(l, f);
        sLesen.push_back(l), sFinden.push_back(f), sGanz.push_back(l + f);
        if (mdb.seiteOeffnen(l, f) != gefunden)
            throw std::runtime_error("the .mdb and the server find different Blocks");
        mLesen.push_back(l), mFinden.push_back(f), mGanz.push_back(l + f);
        const auto t0 = Uhr::now();
        if (!anweisung.empty()) peer.ausfuehren(anweisung, bytes);
        libpq.push_back(sekunden(t0, Uhr::now()));
    }
    using bench::fctMedian;
    const double s = fctMedian(sGanz), m = fctMedian(mGanz);
    std::printf(
        "server_catalogue: Page %ld of Folder %s (%ld rows), %ld of 72 found; server: read %.2f ms "
        "(of which libpq alone %.2f ms) + 72 Finds %.3f ms, .mdb: read %.2f ms + 72 Finds %.3f ms "
        "(medians of %d rounds)\n",
        kSeite + 1, bib.ordnerNr(kOrdnerNr).c_str(), server.rs().recordCount(), gefunden,
        fctMedian(sLesen) * 1e3, anweisung.empty() ? 0.0 : fctMedian(libpq) * 1e3,
        fctMedian(sFinden) * 1e3, fctMedian(mLesen) * 1e3, fctMedian(mFinden) * 1e3, kRunden);
    std::printf(
        "server_catalogue: opening a Page over the server %.2f ms, over the .mdb %.2f ms, ratio "
        "%.2fx (target <= 1.5)\n",
        s * 1e3, m * 1e3, s / m);
}

}  // namespace

int main() {
    try {
        const auto& bib = bench::fctGrosseBibliothek();
        Katalog katalog(bib);
        ServerBibliothek serverBib(*katalog.server);
        sucheGegenLibpq(serverBib.mdbProgramm, katalog, serverBib.arbeit.pfad() / "suche");
        seiteGegenMdb(serverBib.mdbProgramm, bib, katalog, serverBib.arbeit.pfad());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "server_catalogue: %s\n", e.what());
        return 1;
    }
    return 0;
}
