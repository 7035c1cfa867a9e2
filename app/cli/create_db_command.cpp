// create-db: a new database file, empty (system tables only) or holding
// the catalogue schema.
#include <filesystem>
#include <istream>
#include <ostream>

#include "cli/cli.h"
#include "jet/write/writer.h"

namespace {

int runCreateDb(const cli::Args& args, std::istream&, std::ostream&, std::ostream& err) {
    bool empty = false;
    std::string path;
    for (const std::string& a : args) {
        if (a == "--empty") {
            empty = true;
        } else if (path.empty() && !a.empty() && a[0] != '-') {
            path = a;
        } else {
            err << "usage: tessara-cli create-db [--empty] PATH\n";
            return 2;
        }
    }
    if (path.empty()) {
        err << "usage: tessara-cli create-db [--empty] PATH\n";
        return 2;
    }
    std::error_code ec;
    if (std::filesystem::exists(path, ec)) {
        err << "tessara-cli create-db: " << path << " exists already\n";
        return 1;
    }
    if (!empty) return createCatalogueDatabase(path, err);
    jet::createDatabase(path);
    return 0;
}

cli::Subcommand createDb{"create-db", "[--empty] PATH",
                         "create a new database (--empty: system tables only)", &runCreateDb};

}  // namespace
