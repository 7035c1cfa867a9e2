#pragma once
// The catalogue's tables as every library file holds them. Names, order,
// types and sizes are part of the file format: libraries made by earlier
// versions must open, and what we make must open in them.
#include <string>
#include <vector>

#include "db/catalog.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct typSpalte {
    std::string name;
    db::DataType typ;
    int groesse;  // characters for text, 0 otherwise
};

struct typTabelle {
    std::string name;
    std::vector<typSpalte> spalten;  // after Nr, in order
};

struct typBeziehung {
    std::string name;
    std::string tabelle;  // the referring table
    std::string spalte;
    std::string bezugsTabelle;
};

// The six tables in the order they are created.
const std::vector<typTabelle>& fctKatalogTabellen();
// The four relations in the order they are created.
const std::vector<typBeziehung>& fctKatalogBeziehungen();
// The column name of Insertion point `punkt` (0 = A .. 5 = F), coordinate
// `achse` (0 = X .. 2 = Z) of View `ansicht`: the X of point C in View 2 is "CX2".
std::string fctEinfuegepunktSpalte(int punkt, int achse, int ansicht);

constexpr const char* kFreiEintrag = "*****Frei*****";
constexpr const char* kIndexAnweisung = "CREATE INDEX OrdnerID ON tblBlockInfo(OrdnerID DESC)";

// Creates a new, empty library database at the path with its tables,
// relations, index and default rows. Each failing step is logged under
// "Mk_Datenbank " and creation goes on; answers whether every step worked.
bool Mk_Datenbank(ProgrammZustand& z, const db::StorageOpener& oeffner, const std::string& strPfad);

// Creates tblMarkierteBloecke alone in an existing database, in its
// ten-column form (the seven columns and Layer, LyLine, LyColor).
bool subMk_TblMarkierteBloecke(ProgrammZustand& z, const db::StorageOpener& oeffner,
                               const std::string& strPfad);

}  // namespace tessara
