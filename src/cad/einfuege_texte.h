#pragma once
// The texts that insertion hands to full AutoCAD: the
// AutoLISP routine "insert.lsp" and its call, the insert commands and the
// follow-up commands. Kept free of side effects so each text is checked as
// it stands.
#include <string>
#include <vector>

#include "cad/block_daten.h"

namespace tessara {

// Library drawing of a View: base & OrdnerNr & "\Block\" & block number & View & ".dwg".
std::string fctZeichnungsPfad(const std::string& strBibliothek, const std::string& strOrdnerNr,
                              const std::string& strBlockNr, int ansicht);
// Variant drawing: base & OrdnerNr & "\Block\Varia\" & Variant name & View & ".dwg".
std::string fctVariantenZeichnungsPfad(const std::string& strBibliothek,
                                       const std::string& strOrdnerNr,
                                       const std::string& strVariante, int ansicht);
// Single slide of a View: base & OrdnerNr & "\" & block number & View & ".sld".
std::string fctSlidePfad(const std::string& strBibliothek, const std::string& strOrdnerNr,
                         const std::string& strBlockNr, int ansicht);

// "," "/" ":" each become "_" in a block name.
std::string fctBlockNameBereinigen(const std::string& strName);
// AutoLISP wants "/" where the program writes "\".
std::string fctLispPfad(const std::string& strPfad);
// Characters that the keystroke notation reads as commands are put in braces.
std::string fctTastenSchuetzen(const std::string& strText);

// The block as the host takes it: name "=" path when the definition comes
// from the library, else the path alone.
std::string fctBlockAngabe(const std::string& strName, const std::string& strPfad,
                           bool booAusBibliothek);

// The lines of "insert.lsp", in order, without line ends.
std::vector<std::string> fctInsertLspZeilen();
// Keystrokes that load "insert.lsp" from the given path (program form).
std::string fctInsertLspLadenTasten(const std::string& strLspDatei);
// Keystrokes of the tessara_einfuege call with its eight arguments.
std::string fctTessaraEinfuegeTasten(const std::string& strBlockAngabe,
                                     const typEinfuegeOptionen& o);
// The eight arguments alone, in parameter order.
std::vector<std::string> fctTessaraEinfuegeArgumente(const std::string& strBlockAngabe,
                                                     const typEinfuegeOptionen& o);

// "(command "._-insert" ...)" for Insertion point 1; empty for flag values
// other than 0 and 1.
std::string fctInsertAusdruck(const std::string& strBlockAngabe, const typEinfuegeOptionen& o);

// Insertion point above 1: insert at the origin, then move and rotate.
std::string fctInsertNullpunktBefehl(const std::string& strBlockAngabe);
std::string fctVerschiebeBefehl(const typPunkt& versatz);
std::string fctRotationsBefehl();

// Follow-up commands on the last inserted object.
std::string fctBreakLadenBefehl(const std::string& strProgrammVerzeichnis);
std::string fctLayerBefehl(const std::string& strLayer);  // before the "{ESC}"
std::string fctLayer0Befehl();
std::string fctAtteditBefehl();
std::string fctExplodeBefehl();
std::string fctArrayBefehl();

// One "(setq tessara_<column> "<value>")" per value of the Block record
// (Block, M0 .. M9, LAYER, LYCOLOR, LYLINE), as AutoLISP string literals.
std::vector<std::string> fctLispVariablenBefehle(const typBlockDaten& b);

}  // namespace tessara
