#pragma once
// The open library database: the shared connection and the main window's
// record sets, open while the database is current.
#include <string>

#include "db/connection.h"
#include "db/recordset.h"

namespace tessara {

struct ProgrammZustand;

struct typDatenbank {
    explicit typDatenbank(db::StorageOpener opener) : oeffner(opener), con(opener) {}

    db::StorageOpener oeffner;  // reaches .mdb files (or in-memory stores in tests)
    db::Connection con;
    db::Recordset rsOrdner;
    db::Recordset rsSeiten;
    db::Recordset rsBlockInfo0;
    db::Recordset rsMarkierteBloecke;
    std::string strPfad;  // full path of the open database
};

// "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" followed by the path.
std::string fctJetVerbindung(const std::string& strPfad);

// The opener of the program's catalogues (native paths): while it waits for
// a catalogue another process has locked, the user sees it as progress
// (Benutzer::fortschritt) once the wait passes a second; the display closes
// when the wait ends. For the catalogue's own thread only: a worker opens
// with db::jetOpener, whose waits tell no one.
db::StorageOpener fctKatalogOeffner(ProgrammZustand& z);

}  // namespace tessara
