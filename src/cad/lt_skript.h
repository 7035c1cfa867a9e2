#pragma once
// The script channel for AutoCAD LT and the hosts that only take scripts:
// the script "bv8LT.scr", the keystrokes that run it, and the waits on the
// user and the file system.
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "cad/cad_verbindung.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr const char* kLtSkriptName = "bv8LT.scr";

// Script contents, one entry a line, without line ends.
std::vector<std::string> fctSkriptSlide(const std::string& strSlideDatei);
std::string fctBlockDateiZeile(std::uint8_t checkBlock, const std::string& strBlockName,
                               int ansicht, const std::string& strExpliziterName,
                               const std::string& strZeichnung);
std::vector<std::string> fctSkriptOeffnen(const std::string& strDwgDatei);
std::vector<std::string> fctSkriptEinfuegen(const std::string& strLayer,
                                            const std::string& sOhneLayersteuerung, long longXRef,
                                            std::uint8_t checkBlock,
                                            const std::string& strBlockName, int ansicht,
                                            const std::string& strExpliziterName,
                                            const std::string& strZeichnung);
std::vector<std::string> fctSkriptWblockVariante(const std::string& strDwgDatei);
std::vector<std::string> fctSkriptWblockNeu(const std::string& strSlideDatei,
                                            const std::string& strDwgDatei);

// The script path as typed: every "\" replaced by sReplaceBackslash (empty: kept).
std::string fctSkriptPfadGetippt(const std::string& strSkript,
                                 const std::string& sReplaceBackslash);
// A typed command sequence: every item followed by a carriage return.
std::string fctTastenfolge(const std::vector<std::string>& befehle);
// "_undo" "_m" "filedia 0" "script" path, or without the UNDO mark.
std::vector<std::string> fctSkriptStartBefehle(bool booUndoMarke,
                                               const std::string& strPfadGetippt);

// Writes the lines with CR LF, Windows-1252, truncating the file. Creates
// "c:\temp" first, as every use of the channel does.
bool fctSkriptSchreiben(ProgrammZustand& z, const std::string& strDatei,
                        const std::vector<std::string>& zeilen);
// The explicit block name as a file name: trailing blanks trimmed, "," to "_".
std::string fctExplizitenNamenBereinigen(const std::string& strName);

// The four uses.
bool fctSlideMitLTErstellen(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                            const std::string& strSlideDatei);
bool fctOpenFileMitLT(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                      const std::string& strDwgDatei);

struct LtEinfuegung {
    std::string strBibliothek;        // library base directory, ends in "\"
    std::string strKopieVerzeichnis;  // where the explicit-name copy goes, ends in "\"
    typEinfuegeAuftrag auftrag;
    typEinfuegeOptionen optionen;
};
enum class LtErgebnis { Eingefuegt, Abgebrochen, ProgrammEnde, Fehler };

// Writes the insertion script; answers the drawing path it used.
bool subScriptSchreibenFuerLT(ProgrammZustand& z, const typCadEinstellungen& e,
                              const LtEinfuegung& ein, const std::string& strZeichnung);
LtErgebnis ACadLtBlockEinfuegen(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                                const LtEinfuegung& ein);

struct LtBlockNeu {
    std::string strBibliothek;
    std::string strOrdnerNr;
    std::string strBlockNr;  // block number (new block) or Variant file name
    int ansicht = 0;
    bool booVariante = false;
    // Where the host writes, when not the library itself: the new-block flow
    // has the drawing and the slide written into its working directory and
    // moves them to their place only once everything else has worked.
    std::string strZielZeichnung, strZielSlide;
    // The drawing alone, as for a Variant: the user chose no preview slide.
    bool booOhneDia = false;
};
struct LtBlockNeuErgebnis {
    std::string strZeichnung, strSlide;
    bool booDateiBesteht = false;
    bool booAbgebrochen = false;     // Escape
    bool booZeitAbgelaufen = false;  // the 40-second bound
};
LtBlockNeuErgebnis ACadLtBlockNeu(ProgrammZustand& z, CadVerbindung& v,
                                  const typCadEinstellungen& e, const LtBlockNeu& neu);

}  // namespace tessara
