// tessara-cli search PATH [--folder NR] [--whole] [--views] [--print-sql] FIELD=TEXT...
//
// The database search window's statement, for scripts: FIELD is M0..M9 (the
// attribute fields) or name (the block-name field), --folder NR limits the
// search to the Folder whose Nr is NR, --whole matches whole fields, --views
// searches the block name in all Views and Variants. The statement is the
// one the window composes, quirks included, so a block-name search without
// --views fails in the database as it does in the window. The hits print as
// CSV in the shape of `sql`; --print-sql prints the statement alone.
//
// Unlike the window, a quote in a text is refused before anything runs: a
// script gets a clear line instead of the database's complaint.
#include <cstdio>
#include <filesystem>
#include <ostream>

#include "cli/cli.h"
#include "cli/csv_wert.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "jet/format/value.h"
#include "jet/sql/text_rules.h"
#include "search/datenbank_suche.h"

namespace {

namespace fs = std::filesystem;

const char* kNutzung =
    "usage: tessara-cli search PATH [--folder NR] [--whole] [--views] [--print-sql] "
    "FIELD=TEXT... (FIELD is M0..M9 or name)";

struct Aufruf {
    std::string pfad;
    tessara::typSuchKriterien k;
    long ordnerNr = 0;
    bool nurAnweisung = false;
};

// The field index 0..10 of a FIELD name, or -1.
int feldIndex(const std::string& name) {
    if (sql::textEquals(name, "name")) return tessara::kFeldBlockname;
    if (name.size() == 2 && (name[0] == 'M' || name[0] == 'm') && name[1] >= '0' && name[1] <= '9')
        return name[1] - '0';
    return -1;
}

// Reads the arguments; on bad input answers the one line to print.
std::string lesen(const cli::Args& a, Aufruf& auf) {
    std::vector<bool> gesehen(tessara::kSuchFelder, false);
    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::string& s = a[i];
        if (s == "--whole") {
            auf.k.checkGanzeWoerter = true;
        } else if (s == "--views") {
            auf.k.chkAnsichtenVarianten = true;
        } else if (s == "--print-sql") {
            auf.nurAnweisung = true;
        } else if (s == "--folder") {
            if (i + 1 >= a.size()) return "--folder needs the Folder's Nr";
            const std::string& nr = a[++i];
            if (nr.empty() || nr.size() > 9 || nr.find_first_not_of("0123456789") != nr.npos)
                return "--folder: '" + nr + "' is not a Folder Nr (a number)";
            auf.k.checkAktuellerOrdner = true;
            auf.ordnerNr = std::stol(nr);
        } else if (s.rfind("--", 0) == 0) {
            return "unknown option " + s;
        } else if (auf.pfad.empty()) {
            auf.pfad = s;
        } else {
            const auto gleich = s.find('=');
            const int feld = gleich == s.npos ? -1 : feldIndex(s.substr(0, gleich));
            if (feld < 0) return "'" + s.substr(0, gleich) + "' is not a field (M0..M9 or name)";
            if (gesehen[feld]) return "field " + s.substr(0, gleich) + " given twice";
            gesehen[feld] = true;
            const std::string text = s.substr(gleich + 1);
            if (text.find('\'') != text.npos)
                return "a search text must not hold a quote ('): " + s.substr(0, gleich);
            auf.k.txtBenennung[feld] = text;
        }
    }
    if (auf.pfad.empty()) return "no library given";
    if (tessara::fctSuchKriterienLeer(auf.k)) return "no search text given";
    return {};
}

// The library's block table: tblBlockInfo, or the Inventor table in a
// library that has only that one.
std::string blockTabelle(sql::Storage& st) {
    if (st.table("tblBlockInfo")) return "tblBlockInfo";
    if (st.table("tblBlockInfoInventor")) return "tblBlockInfoInventor";
    throw std::runtime_error("the file holds no block table (tblBlockInfo)");
}

// The database's message on one line.
std::string einzeilig(std::string s) {
    for (auto& c : s)
        if (c == '\r' || c == '\n') c = ' ';
    return s;
}

int runSearch(const cli::Args& args, std::istream&, std::ostream& out, std::ostream& err) {
    Aufruf auf;
    const std::string fehler = lesen(args, auf);
    if (!fehler.empty()) {
        err << (args.empty() ? std::string(kNutzung) : "tessara-cli search: " + fehler) << "\n";
        return 2;
    }
    std::error_code ec;
    if (!fs::is_regular_file(auf.pfad, ec)) {
        err << "tessara-cli search: " << auf.pfad << ": no such file\n";
        return 1;
    }
    std::string anweisung;
    try {
        // Opened on the store itself: a path is no connection string, and a
        // ';' in it must not be taken for one.
        const auto oeffner = db::jetOpener({}, cli::lockWait(err));
        db::Connection con(oeffner);
        con.openStorage(oeffner(auf.pfad, false), auf.pfad);
        anweisung = tessara::fctSuchAnweisung(auf.k, blockTabelle(*con.storage()), auf.ordnerNr);
        if (auf.nurAnweisung) {
            out << anweisung << "\n";
            return 0;
        }
        db::Recordset rs;
        rs.open(anweisung, con);
        const auto& spalten = rs.fieldInfos();
        for (std::size_t i = 0; i < spalten.size(); ++i) out << (i ? "," : "") << spalten[i].name;
        out << "\n";
        if (rs.recordCount() > 0) rs.moveFirst();
        for (; rs.recordCount() > 0 && !rs.eof(); rs.moveNext()) {
            for (std::size_t i = 0; i < spalten.size(); ++i)
                out << (i ? "," : "") << cli::csvValue(rs.value(static_cast<int>(i)), spalten[i]);
            out << "\n";
        }
        return 0;
    } catch (const std::exception& e) {
        err << "tessara-cli search: " << einzeilig(e.what());
        // The window's own statement runs the table into WHERE here.
        if (!auf.k.txtBenennung[tessara::kFeldBlockname].empty() && !auf.k.chkAnsichtenVarianten &&
            !anweisung.empty())
            err << " (the block name is searched with --views only)";
        err << "\n";
        return 1;
    }
}

cli::Subcommand searchCommand{
    "search", "PATH [--folder NR] [--whole] [--views] [--print-sql] FIELD=TEXT...",
    "the search window's statement (FIELD is M0..M9 or name): hits as CSV, or the statement",
    &runSearch};

}  // namespace
