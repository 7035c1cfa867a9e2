// The database file from the command line: its tables, their definitions,
// their rows as CSV (comparable with mdb-export) and a structural check.
#include <istream>
#include <ostream>
#include <sstream>

#include "cli/cli.h"
#include "jet/check/check.h"
#include "jet/read/csv_export.h"
#include "jet/read/database.h"
#include "jet/read/table.h"

namespace {

int usage(std::ostream& err, const char* text) {
    err << "usage: tessara-cli " << text << "\n";
    return 2;
}

int runTables(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) return usage(err, "tables PATH");
    auto db = jet::Database::open(args[0], {.lockWait = cli::lockWait(err)});
    // The readable tables are listed; a table the catalogue names but that
    // cannot be read is reported, never left out in silence.
    int status = 0;
    for (const std::string& n : db->tableNames()) {
        try {
            db->verifyTable(n);
            out << n << "\n";
        } catch (const jet::Error& e) {
            err << "tessara-cli tables: table " << n << " cannot be read: " << e.what() << "\n";
            status = 1;
        }
    }
    return status;
}

std::string typeText(const jet::Column& c) {
    std::string s = jet::columnTypeName(c.type);
    if (c.type == jet::ColumnType::Text) s += "(" + std::to_string(c.displaySize()) + ")";
    if (c.type == jet::ColumnType::Binary) s += "(" + std::to_string(c.length) + ")";
    if (c.type == jet::ColumnType::Numeric)
        s += "(" + std::to_string(c.precision) + "," + std::to_string(c.scale) + ")";
    return s;
}

// One table's lines; throws jet::Error for a definition that cannot be read.
std::string tableSchema(jet::Database& db, const std::string& name) {
    std::ostringstream out;
    const jet::TableDef& d = *db.tableDef(name);
    out << "TABLE " << name << " (" << d.rowCount << " rows)\n";
    for (const jet::Column& c : d.columns) {
        out << "  COLUMN " << c.name << " " << typeText(c) << " size " << c.displaySize();
        if (c.flags & jet::colflag::kAutoLong) out << " AUTOINCREMENT";
        if (c.flags & jet::colflag::kAutoGuid) out << " AUTOGUID";
        if (!c.isNullable()) out << " NOT NULL";
        out << "\n";
    }
    for (const jet::Index& ix : d.indexes) {
        const jet::RealIndex& ri = d.realIndexes[ix.realIndex];
        out << "  INDEX " << ix.name << " (";
        for (std::size_t i = 0; i < ri.columns.size(); ++i) {
            // The reader refuses a definition whose index names a missing column.
            const jet::Column* c = d.columnByNumber(ri.columns[i].columnNumber);
            if (!c)
                throw jet::Error("index " + ix.name + " names a column the table does not have");
            out << (i ? ", " : "") << c->name << (ri.columns[i].ascending ? " ASC" : " DESC");
        }
        out << ")";
        if (ix.isPrimary()) out << " PRIMARY KEY";
        if (ix.isForeignKey()) out << " FOREIGN KEY";
        if (ri.flags & jet::idxflag::kUnique) out << " UNIQUE";
        if (ri.flags & jet::idxflag::kIgnoreNulls) out << " IGNORE NULLS";
        if (ri.flags & jet::idxflag::kRequired) out << " REQUIRED";
        out << "\n";
    }
    return out.str();
}

int runSchema(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) return usage(err, "schema PATH");
    auto db = jet::Database::open(args[0], {.lockWait = cli::lockWait(err)});
    // As with tables: a table whose definition cannot be read is reported,
    // the others are shown.
    int status = 0;
    for (const std::string& name : db->tableNames()) {
        try {
            out << tableSchema(*db, name);
        } catch (const jet::Error& e) {
            err << "tessara-cli schema: table " << name << " cannot be read: " << e.what() << "\n";
            status = 1;
        }
    }
    for (const jet::Relationship& r : db->relationships()) {
        out << "RELATIONSHIP " << r.name << " " << r.table << "(";
        for (std::size_t i = 0; i < r.columns.size(); ++i) out << (i ? ", " : "") << r.columns[i];
        out << ") REFERENCES " << r.relatedTable << "(";
        for (std::size_t i = 0; i < r.relatedColumns.size(); ++i)
            out << (i ? ", " : "") << r.relatedColumns[i];
        out << ")\n";
    }
    return status;
}

int runExport(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 2) return usage(err, "export PATH TABLE");
    auto db = jet::Database::open(args[0], {.lockWait = cli::lockWait(err)});
    db->verifyTable(args[1]);
    jet::writeCsv(db->table(args[1]), out);
    return 0;
}

int runCheck(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    if (args.size() != 1) return usage(err, "check PATH");
    auto db = jet::Database::open(args[0], {.lockWait = cli::lockWait(err)});
    std::vector<std::string> faults = jet::checkDatabase(*db);
    for (const std::string& f : faults) out << f << "\n";
    if (!faults.empty()) {
        err << "tessara-cli check: " << faults.size() << " fault(s) found\n";
        return 1;
    }
    out << "no faults found\n";
    return 0;
}

cli::Subcommand tablesCmd{"tables", "PATH", "list the user tables of a database", &runTables};
cli::Subcommand schemaCmd{"schema", "PATH", "columns, indexes and relationships of every table",
                          &runSchema};
cli::Subcommand exportCmd{"export", "PATH TABLE", "a table's rows as CSV (the shape of mdb-export)",
                          &runExport};
cli::Subcommand checkCmd{"check", "PATH", "verify a database's structure and list each fault",
                         &runCheck};

}  // namespace
