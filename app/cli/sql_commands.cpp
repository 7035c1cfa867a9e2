// tessara-cli sql PATH STATEMENT: runs one statement of the Jet SQL dialect on
// a database file. A SELECT prints its rows as CSV in the shape of `export`
// (header row, commas, text in double quotes with doubled quotes inside,
// NULL as empty); other statements print the number of rows affected; an
// error prints Jet's message and exits non-zero.
#include <cstdio>
#include <ostream>

#include "cli/cli.h"
#include "csv_wert.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"

namespace {

int runSql(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 2) {
        err << "usage: tessara-cli sql PATH STATEMENT\n";
        return 2;
    }
    try {
        sql::Executor ex(sql::openEngineStorage(args[0], false, {}, cli::lockWait(err)));
        sql::ExecResult r = ex.execute(args[1]);
        if (!r.isQuery) {
            out << r.rowsAffected << "\n";
            return 0;
        }
        for (std::size_t i = 0; i < r.rows.columns.size(); ++i)
            out << (i ? "," : "") << r.rows.columns[i].name;
        out << "\n";
        for (const auto& row : r.rows.rows) {
            for (std::size_t i = 0; i < row.size(); ++i)
                out << (i ? "," : "") << cli::csvValue(row[i], r.rows.columns[i]);
            out << "\n";
        }
        return 0;
    } catch (const std::exception& e) {
        err << e.what() << "\n";
        return 1;
    }
}

cli::Subcommand sqlCommand{"sql", "PATH STATEMENT",
                           "run one Jet SQL statement (a SELECT prints CSV)", &runSql};

}  // namespace
