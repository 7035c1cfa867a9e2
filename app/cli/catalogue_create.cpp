// create-db without --empty: the catalogue schema, made by the same code
// the program uses for a new library, so the two can never drift apart.
#include <filesystem>
#include <ostream>
#include <random>

#include "cli/cli.h"
#include "db/jet_opener.h"
#include "library/schema.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

int createCatalogueDatabase(const std::string& path, std::ostream& err) {
    namespace fs = std::filesystem;
    tessara::ProgrammZustand z;
    tessara::SkriptBenutzer stumm;  // a command line answers no message boxes
    z.benutzer = &stumm;
    // Failed steps are logged; the log goes to a scratch file whose
    // first entry becomes the command's error line.
    std::error_code ec;
    const fs::path log = fs::temp_directory_path(ec) /
                         ("tessara-cli-create-" + std::to_string(std::random_device{}()) + ".log");
    z.strErrorDatei = log.string();
    const bool ok = tessara::Mk_Datenbank(z, db::jetOpener({}, cli::lockWait(err)), path);
    fs::remove(log, ec);
    if (ok) return 0;
    err << "tessara-cli create-db: " << path << ": "
        << (z.fehler.strLetzterFehler.empty() ? std::string("creating the catalogue failed")
                                              : z.fehler.strLetzterFehler)
        << "\n";
    return 1;
}
