// tessara-cli server push LIBRARY_DIR / server pull LIBRARY_DIR OUT.mdb: moves
// a library's catalogue to the PostgreSQL server its dbTessara.ini names, and
// back into a Jet file. Both print each table's row count as read back.
#include <filesystem>
#include <ostream>

#include "cli/cli.h"
#include "db/server_catalogue.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"

namespace {

namespace fs = std::filesystem;

// Two workstations checking for a free Folder code or Page number and then
// adding it could both take it; on the server these make the second fail,
// and the program takes the next one instead. A .mdb has no such guard.
std::vector<db::CopyIndex> serverGuards() {
    sql::IndexDef ordner{"OrdnerNrEindeutig", {{"OrdnerNr", false}}, false, true};
    sql::IndexDef seiten{
        "SeitenNrEindeutig", {{"NrTblOrdner", false}, {"SeitenNr", false}}, false, true};
    return {{"tblOrdner", ordner}, {"tblSeiten", seiten}};
}

int report(const std::vector<std::pair<std::string, long>>& counts, std::ostream& out) {
    for (const auto& [table, n] : counts) out << table << ": " << n << " rows\n";
    return 0;
}

int runServer(const cli::Args& a, std::istream&, std::ostream& out, std::ostream& err) {
    const bool push = a.size() == 2 && a[0] == "push";
    const bool pull = a.size() == 3 && a[0] == "pull";
    if (!push && !pull) {
        err << "usage: tessara-cli server push LIBRARY_DIR | server pull LIBRARY_DIR OUT.mdb\n";
        return 2;
    }
    const std::string mdb = (fs::path(a[1]) / "dbTessara.mdb").string();
    const auto server = db::serverBeside(mdb);
    if (!server) {
        err << "tessara-cli server: " << (fs::path(a[1]) / "dbTessara.ini").string()
            << " has no section [Server]\n";
        return 1;
    }
    try {
        if (push) {
            auto from = sql::openEngineStorage(mdb, false, {}, cli::lockWait(err));
            auto to = db::openServerCatalogue(*server, false);
            // One transaction: a push cut off half way leaves nothing
            // behind, and the next one starts on an empty database.
            to->begin();
            try {
                const auto counts = db::copyCatalogue(*from, *to, serverGuards(), {});
                db::enforceFolderRights(*to);
                to->commit();
                return report(counts, out);
            } catch (...) {
                to->rollback();
                throw;
            }
        }
        std::vector<std::string> skip;
        for (const auto& g : serverGuards()) skip.push_back(g.index.name);
        auto from = db::openServerCatalogue(*server, true);
        auto to = sql::openEngineStorage(a[2], true, {}, cli::lockWait(err));
        return report(db::copyCatalogue(*from, *to, {}, skip), out);
    } catch (const jet::Error& e) {
        err << "tessara-cli server: " << e.what() << "\n";
        return 1;
    }
}

cli::Subcommand serverCmd{"server", "push LIBRARY_DIR | pull LIBRARY_DIR OUT.mdb",
                          "copy a library's catalogue to the server its dbTessara.ini names "
                          "(section [Server]), or from there into a new .mdb",
                          &runServer};

}  // namespace
