#pragma once
// The insert command: one or several pending insertions (the selected slot,
// or the marked blocks) into the drawing open in the CAD host. Full AutoCAD
// gets commands and AutoLISP through its command line; AutoCAD LT goes
// through the script channel.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "cad/cad_verbindung.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct EinfuegeAnfrage {
    std::string strBibliothek;        // library base directory, ends in "\"
    std::string strLspVerzeichnis;    // where "insert.lsp" is written, ends in "\"
    std::string strKopieVerzeichnis;  // explicit-name copies of the LT route
    std::vector<typEinfuegeAuftrag> auftraege;
    typEinfuegeOptionen optionen;
    bool booMarkiert = false;  // the pending insertions are the marked blocks
    bool booDragDrop = false;  // started by dragging the slot into the host
    // The Variant choice (its window belongs to the Variant management): the
    // chosen Variant, a Variant without file name for the Block itself, or
    // nothing when the user cancelled. Unset: the Block itself.
    std::function<std::optional<typVariante>(const typEinfuegeAuftrag&)> variantenAuswahl;
};

struct EinfuegeErgebnis {
    int eingefuegt = 0;
    bool booAbgebrochen = false;   // Escape during a pause
    bool booProgrammEnde = false;  // LT route: host window lost
    bool booFehler = false;
    bool booMarkierenAus = false;               // the marking check box goes back to 0
    std::vector<std::string> erledigteBloecke;  // marked rows to delete, by block number
};

// Writes the AutoLISP routine "insert.lsp", line by line.
bool WriteInsertLsp(ProgrammZustand& z, const std::string& strDatei);

EinfuegeErgebnis fctBlockEinfuegen(ProgrammZustand& z, CadVerbindung& v,
                                   const typCadEinstellungen& e, const EinfuegeAnfrage& a);
// The same, reading "AllgemeineDaten" of the Settings file first.
EinfuegeErgebnis fctBlockEinfuegen(ProgrammZustand& z, CadVerbindung& v, const EinfuegeAnfrage& a);

// Hands the Block record's values to AutoLISP variables of the host.
void fctLispVariablenZuordnen(AcadDokument& dok, const typBlockDaten& b);

}  // namespace tessara
