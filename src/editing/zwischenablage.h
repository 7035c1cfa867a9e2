#pragma once
// The clipboard of Blocks: one Block, the marked Blocks or the Blocks of a
// whole Page are cut or copied, and pasted into another slot, another Folder
// or another library (the one open when the paste runs).
//
// Taking changes nothing: the clipboard holds the source library and the
// Blocks' numbers. A paste copies each Block whole (every file, the record
// with all its columns, the Variant rows) under the block number of its
// target slot, and a cut Block leaves its old place only after its copy
// stands, so a paste that fails loses nothing. Each Block is pasted as one
// step: its files and rows are all there, or none of them.
#include <string>
#include <vector>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

enum class AblageUmfang { Block, Markierte, Seite };

// One Block on the clipboard.
struct typAblageEintrag {
    std::string strBlockNr;
    long lngNr = 0;       // its tblBlockInfo.Nr when it was taken
    long lngVersatz = 0;  // its target slot, counted from the selected slot
};

class Zwischenablage {
  public:
    // Takes from the open library: the selected Block, the marked Blocks (in
    // the order they were marked; they paste into consecutive slots) or the
    // Blocks of the current Page (they keep their places relative to each
    // other). A cut from a write-protected library is refused, since its
    // Blocks could not leave. False, with a message, when there is nothing
    // to take; the clipboard then keeps what it held.
    bool fctNehmen(ProgrammZustand& z, NavigationsModell& m, AblageUmfang umfang,
                   bool booAusschneiden, bool booSchreibgeschuetzt);

    // Pastes into the current Folder of the open library from the selected
    // slot on (the slots may run on into the following Pages). Refused when
    // a target slot holds one of the clipboard's own Blocks. Occupied target
    // slots are asked about once; on Yes their Blocks go as a delete does.
    // Long pastes report progress. A Block that fails ends the paste: the
    // ones before it stand, it and the rest stay where they were (and, after
    // a cut, on the clipboard). A copy can be pasted again; a cut once.
    bool fctEinfuegen(ProgrammZustand& z, NavigationsModell& m, bool booSchreibgeschuetzt);

    // On closing: a cut not yet pasted is asked about. False keeps the
    // program open so that it can still be pasted.
    bool fctZwischenspeicherAbfragen(ProgrammZustand& z) const;

    bool leer() const { return eintraege_.empty(); }
    bool booAusgeschnitten() const { return booAusschneiden_; }
    const std::vector<typAblageEintrag>& eintraege() const { return eintraege_; }
    const std::string& strQuelleDb() const { return strQuelleDb_; }
    void leeren();

  private:
    std::string strQuelleDb_;     // the source library's database
    std::string strQuelleBasis_;  // and its directory, with a trailing backslash
    bool booAusschneiden_ = false;
    std::vector<typAblageEintrag> eintraege_;
};

}  // namespace tessara
