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

// Opens the connection. Mode 1 is the Jet provider on the file at strPfad;
// a server name selects the server provider (logged; no server driver yet).
bool fctConnectionOeffnen(ProgrammZustand& z, db::Connection& con, const std::string& strPfad,
                          const std::string& strServer = {}, const std::string& strUser = {},
                          const std::string& strPasswort = {}, int intModus = 1);

bool fctAlleEintraegLoeschen(ProgrammZustand& z, db::Recordset& rs);

bool fctRsFind(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
               const std::string& strWert);
bool fctRsFindStringEnthalten(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
                              const std::string& strWert);
bool fctRsFindMitZuruecksetzen(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
                               const std::string& strWert);

// Reads the whole table, sorted when a sort column is given; answers the
// number of rows (0 on an error).
long fctRsEinlesenAllgemein(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                            const std::string& strTabelle, const std::string& strSortSpalte);
bool fctRsEinlesenMitEinemKriterium(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                                    const std::string& strTabelle, const std::string& strSpalte,
                                    const std::string& strWert, bool booNumerisch);
bool fctRsEinlesenMitKriterium(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                               const std::string& strSql);

bool fctSpalteVorhanden(const db::Recordset& rs, const std::string& strSpalte);
bool fctSpalteAnlegenFallsNichtVorhanden(ProgrammZustand& z, db::Connection& con,
                                         const db::Recordset& rs, const std::string& strTabelle,
                                         const std::string& strSpalte, const std::string& strTyp,
                                         const std::optional<std::string>& startWert = {});
bool fctSpalteNichtVorhandenOhneEintrag0(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                         const std::string& strPfad, const std::string& strTabelle,
                                         const std::string& strSpalte);
bool fctWerteVonSpalteUebertragen(ProgrammZustand& z, db::Connection& con,
                                  const std::string& strTabelle, const std::string& strZiel,
                                  const std::string& strQuelle);
std::string fctWertInSpalteAuslesen(ProgrammZustand& z, db::Recordset& rs,
                                    const std::string& strSpalte);
bool fctWertInSpalteSpeichern(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                              const std::string& strTabelle, const std::string& strSchluessel,
                              const std::string& strSchluesselWert, const std::string& strSpalte,
                              const std::string& strWert);

bool fctPruefenWertVorhandenTrue(ProgrammZustand& z, db::Connection& con,
                                 const std::string& strTabelle, const std::string& strSpalte,
                                 const std::string& strWert);
bool fctPruefenWertVorhandenGroesser1True(ProgrammZustand& z, db::Connection& con,
                                          const std::string& strTabelle,
                                          const std::string& strSpalte, const std::string& strWert);
// The value found, "0" when none, "Fehler" on a failure.
std::string fctPruefenWertVorhandenMitRueckgabeWert(ProgrammZustand& z, db::Connection& con,
                                                    const std::string& strTabelle,
                                                    const std::string& strSpalte,
                                                    const std::string& strWert);

// Rows whose column begins with the value, sorted; answers their number.
long fctRsSuchenMitMuster(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                          const std::string& strSpalten, const std::string& strTabelle,
                          const std::string& strSpalte, const std::string& strWert,
                          const std::string& strSortSpalte);

}  // namespace tessara
