#pragma once
// The window's commands on Blocks, Views and Variants over the open library:
// each is refused on a write-protected library (with a message), runs its
// operation, and answers what changed for the window to redraw.
#include <string>

#include "cad/cad_verbindung.h"
#include "editing/block_neu.h"
#include "library/bibliothek_sitzung.h"
#include "startup/programm_zustand.h"

namespace tessara {

class BlockBefehle {
  public:
    BlockBefehle(ProgrammZustand& z, BibliothekSitzung& s) : z_(z), s_(s) {}

    // A new Block in the selected slot, or a new View or Variant of its
    // Block, from objects the user selects in the host.
    typAenderung fctNeu(NeuArt art, CadVerbindung& v);
    // The selected Block to the slot intZiel of the current Page.
    typAenderung fctVerschieben(int intZiel);
    // The selected Block to another Folder: its code, its key and the
    // target's block number.
    typAenderung fctVerschieben(const std::string& strOrdnerNr, long lngOrdnerID,
                                const std::string& strZielBlockNr);
    typAenderung fctMarkierteVerschieben();
    typAenderung fctLoeschen();
    typAenderung fctNameAendern(int ansicht, const std::string& strName);
    typAenderung fctAnsichtLoeschen(int ansicht);
    typAenderung fctVarianteUmbenennen(const std::string& strDateiName, const std::string& strNeu);
    typAenderung fctVarianteLoeschen(const std::string& strDateiName);

  private:
    // The selected slot's block number; empty for a free slot.
    std::string ausgewaehlt() const;
    template <class Op>
    typAenderung ausfuehren(typAenderung was, Op op);

    ProgrammZustand& z_;
    BibliothekSitzung& s_;
};

}  // namespace tessara
