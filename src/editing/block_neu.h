#pragma once
// A new Block, a new View of a Block, or a new Variant, made from objects
// the user selects in the CAD host ("Neu" of the main window).
//
// Nothing lost: the host writes the drawing and the slide into a working
// directory of their own; the slide library is built there; only when all
// of it is there do the files move to their place in the library, and only
// then is the record written. A failure at any step (Escape, the host gone,
// the time-out, a full disk, a locked file) leaves the catalogue and the
// library directory as they were, and the working directory is removed.
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "cad/cad_verbindung.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"

namespace tessara {

enum class NeuArt { Block, Ansicht, Variante };

// What the main window hands the flow.
struct BlockNeuUmgebung {
    ProgrammZustand& z;
    NavigationsModell& modell;
    CadVerbindung& v;
    const typSetupWerte& werte;
    typCadEinstellungen e;             // "AllgemeineDaten" of the Settings file
    bool booSlidelibShell = false;     // "SlidelibUeberShell" = "1": the host runs slidelib.exe
    bool booNameNichtAendern = false;  // "bytBlockNameNoEdit" non-zero: no name question
};

struct BlockNeuErgebnis {
    bool booAngelegt = false;
    bool booAbgebrochen = false;  // by the user: Escape, no object, the name question
    std::string strBlockNr;
    int ansicht = 0;
    std::string strVariantenDatei;  // NeuArt::Variante: the Variant's file name
};

// combutNeu_Click: a new Block in the selected (free) slot.
BlockNeuErgebnis combutNeu_Click(BlockNeuUmgebung& u);
// A new View of the Block in the selected slot, into its first free
// BlkName1 .. BlkName4.
BlockNeuErgebnis fctAnsichtNeu(BlockNeuUmgebung& u);
// A new Variant of the Block in the selected slot (its drawing of View 0).
BlockNeuErgebnis fctVarianteNeu(BlockNeuUmgebung& u);
BlockNeuErgebnis fctNeuAusZeichnung(BlockNeuUmgebung& u, NeuArt art);

// The working directory of the flow: the temporary directory & "TessaraNeu"
// (no trailing backslash, as the slide commands append "\" & name).
std::string fctArbeitsverzeichnis(const ProgrammZustand& z);

struct typDateiZug {
    std::string von, nach;  // program paths
};
// Moves the new files from the working directory to their place. A file
// already there belongs to no record (the slot or View is free) and goes
// first. On a failure the files already moved go back; false.
bool DateienAusTempVerschieben(ProgrammZustand& z, const std::vector<typDateiZug>& zuege);

// The -WBLOCK text of full AutoCAD: the objects of the previous selection
// into the drawing, with the base point.
std::string fctBefehlWblock(const std::string& strZeichnung, const std::string& strBasispunkt);

}  // namespace tessara
