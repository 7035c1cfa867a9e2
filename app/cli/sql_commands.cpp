// tessara-cli sql PATH STATEMENT: runs one statement of the Jet SQL dialect on
// a database file (or the server catalogue its dbTessara.ini names); with "-" or "--file FILE"
// instead of the statement, the statements of standard input or of the file, in order, the first
// failure stopping the run with the number of its line. A SELECT prints its rows as CSV in the
// shape of `export` (header row, commas, text in double quotes with doubled quotes inside, NULL as
// empty); other statements print the number of rows affected; an error prints Jet's message and
// exits non-zero.
#include <cstdio>
#include <fstream>
#include <istream>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/cli.h"
#include "csv_wert.h"
#include "db/jet_opener.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"

namespace {

void ergebnisAusgeben(const sql::ExecResult& r, std::ostream& out) {
    if (!r.isQuery) {
        out << r.rowsAffected << "\n";
        return;
    }
    for (std::size_t i = 0; i < r.rows.columns.size(); ++i)
        out << (i ? "," : "") << r.rows.columns[i].name;
    out << "\n";
    for (const auto& row : r.rows.rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            out << (i ? "," : "") << cli::csvValue(row[i], r.rows.columns[i]);
        out << "\n";
    }
}

// A script: statements separated by lines that hold only ";", each with the
// number of the line it begins on. A statement too long for one command-line
// argument (a search over 20 000 block numbers) comes this way.
std::vector<std::pair<int, std::string>> anweisungen(std::istream& in) {
    std::vector<std::pair<int, std::string>> liste;
    std::string text, zeile;
    int nr = 0, anfang = 1;
    const auto abschliessen = [&] {
        if (text.find_first_not_of(" \t\r\n") != std::string::npos)
            liste.emplace_back(anfang, text);
        text.clear();
    };
    while (std::getline(in, zeile)) {
        ++nr;
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (zeile.find_first_not_of(" \t") != std::string::npos &&
            zeile.substr(zeile.find_first_not_of(" \t")) == ";") {
            abschliessen();
            anfang = nr + 1;
            continue;
        }
        if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
            text.clear();
            anfang = nr;
        }
        text += zeile + "\n";
    }
    abschliessen();
    return liste;
}

int runSql(const cli::Args& args, std::istream& in, std::ostream& out, std::ostream& err) {
    const bool ausDatei = args.size() == 3 && args[1] == "--file";
    if (args.size() != 2 && !ausDatei) {
        err << "usage: tessara-cli sql PATH STATEMENT | PATH - | PATH --file FILE\n";
        return 2;
    }
    int zeile = 0;
    try {
        sql::Executor ex(db::jetOpener({}, cli::lockWait(err))(args[0], false));
        if (!ausDatei && args[1] != "-") {
            ergebnisAusgeben(ex.execute(args[1]), out);
            return 0;
        }
        std::ifstream datei;
        if (ausDatei) {
            datei.open(args[2], std::ios::binary);
            if (!datei) {
                err << "tessara-cli sql: cannot read " << args[2] << "\n";
                return 1;
            }
        }
        for (const auto& [nr, anweisung] : anweisungen(ausDatei ? datei : in)) {
            zeile = nr;
            ergebnisAusgeben(ex.execute(anweisung), out);
        }
        return 0;
    } catch (const std::exception& e) {
        if (zeile > 0) err << "line " << zeile << ": ";
        err << e.what() << "\n";
        return 1;
    }
}

cli::Subcommand sqlCommand{
    "sql", "PATH STATEMENT|-|--file FILE",
    "run Jet SQL: one statement, or statements from standard input or a file "
    "separated by lines holding only \";\" (a SELECT prints CSV)",
    &runSql};

}  // namespace
