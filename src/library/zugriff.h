#pragma once
// The helpers through which the program opens the library database and
// reads, searches and changes its tables with record sets. They compose SQL
// from table, column and value texts as given: names in square brackets where
// they vary, text values in single quotes, and a quote typed inside a value
// is not escaped, so it breaks the statement; the helper then answers false
// and the error is in the log. None of them throws.
#include <optional>
#include <string>

#include "db/connection.h"
#include "db/recordset.h"
#include "startup/programm_zustand.h"

namespace tessara {

// Deletes every row of the record set.
bool fctAlleEintraegLoeschen(ProgrammZustand& z, db::Recordset& rs);

bool fctRsFind(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
               const std::string& strWert);

bool fctSpalteVorhanden(const db::Recordset& rs, const std::string& strSpalte);
// A number column of the current record as a Long; Null reads as 0.
long fctLongWert(const db::Recordset& rs, const std::string& strSpalte);
bool fctSpalteAnlegenFallsNichtVorhanden(ProgrammZustand& z, db::Connection& con,
                                         const db::Recordset& rs, const std::string& strTabelle,
                                         const std::string& strSpalte, const std::string& strTyp,
                                         const std::optional<std::string>& startWert = {});

}  // namespace tessara
