#pragma once
// Subcommands of tessara-cli. Each area defines its subcommands in its own
// file with a static Subcommand object, which registers itself at start-up:
//
//   static cli::Subcommand tables{"tables", "PATH", "list the tables", &runTables};
//
// A subcommand prints plain text, returns 0 on success, and on failure prints
// one line to stderr and returns non-zero.
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "jet/store/file_lock.h"

namespace cli {

using Args = std::vector<std::string>;  // arguments after the subcommand name
using Handler =
    std::function<int(const Args&, std::istream& in, std::ostream& out, std::ostream& err)>;

struct Subcommand {
    Subcommand(std::string name, std::string usage, std::string summary, Handler run);
};

struct Entry {
    std::string name, usage, summary;
    Handler run;
};
const std::vector<Entry>& subcommands();

// The wait for another process's lock on a database (lock_wait.cpp): the
// seconds TESSARA_LOCK_WAIT sets (10 when unset; false with the reason when
// it is no number of seconds), and the wait every subcommand opens its
// databases with, telling err once a second while it lasts.
bool lockWaitSeconds(double& seconds, std::string& problem);
jet::filelock::Wait lockWait(std::ostream& err);

}  // namespace cli

// A new catalogue database at path with the full catalogue schema (create-db
// without --empty); 0 on success, otherwise one line on err and non-zero.
// Defined in catalogue_create.cpp.
int createCatalogueDatabase(const std::string& path, std::ostream& err);
