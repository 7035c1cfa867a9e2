#pragma once
// The navigation model behind the main window: the Folders of the open
// library, the Pages of the current Folder, and the slots of the current
// Page, each slot either a Block record or free.
//
// Invariants the window relies on:
// - A slot's block number depends on its absolute index (Page index × slots
//   per Page + slot on the Page), never on the Page alone: changing the slot
//   count moves Blocks to other Pages and positions.
// - aryBlocknummern and aryCodes always hold (intSeite + 1) × slots entries;
//   only the last `slots` of them (the current Page) have been looked up in
//   the database, and only they have an entry in `seitenSlots()`.
// - rsOrdner stands on the current Folder after every Folder operation.
// - Nothing here throws: every operation runs under the common error handler
//   and answers false (or leaves the state as it was) on a failure.
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "authoring/code_tabelle.h"
#include "library/datenbank.h"
#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"

namespace tessara {

// One entry of the Folder array, in rsOrdner's order.
struct typOrdnerEintrag {
    std::string OrdnerName;
    std::string OrdnerNr;  // exactly three characters, left-aligned, blank-padded
    long Nr = 0;           // tblOrdner.Nr, the key the Block records refer to
};

// One slot of the current Page as the grid shows it.
struct typSlot {
    std::string strBlockNr;       // the block number that belongs to the slot
    bool booBelegt = false;       // a Block record with that number exists
    std::string strBeschriftung;  // M0, or "*****Frei*****"
    std::string strBlkName0;
    std::string strSlideLib;
    std::string strBildname;   // picture handed to the slide control (program path)
    bool booMarkiert = false;  // chkMarkieren
    bool booDiaFehlt = false;  // looked for ("check slides" on) and not there
    long lngNr = 0;            // tblBlockInfo.Nr when belegt
};

// An entry of the Page box: rsSeiten's rows in their order (by SeitenName).
struct typSeiteEintrag {
    long SeitenNr = 0;
    std::string SeitenName;
};

// The message that lists the Blocks of a Page whose slide is missing.
inline constexpr long kMsgDiaFehlt = 623;

// What a double-click on a slot asks of the window (longDoppelklick).
enum class DoppelklickAktion { Nichts, Einfuegen, Markieren, Vollbild };

// Slots per Page for the picture-size index 0..7 (3/4 and 5/6 give the same
// count on purpose); indices out of range give the count of index 2.
int fctSlotsProSeite(long longAnzahlDerBilder);
// Columns of the grid for the index: the pairs differ in their shape.
int fctRasterSpalten(long longAnzahlDerBilder);
// Whether the index is one of 0..7.
bool fctBilderanzahlGueltig(long longAnzahlDerBilder);

// The statement rsOrdner is read with: by name with the sort-by-name
// setting, else by the sort column NrTblOrdnen when the library has it
// (older libraries get it on first reordering), else in key order.
std::string fctOrdnerSql(bool booNachName, bool booMitSortSpalte);

// The Block-record statement of rsBlockInfo0 (the narrow column list, up to
// "FROM tblBlockInfo"; a WHERE follows) and the criterion by which the
// insert command finds a Block in it. The model, the insertion and their
// tests all take them from here. Another block table (an Inventor library's,
// whose columns differ) is read whole.
std::string fctSqlBlockInfo(const std::string& strTabelle = "tblBlockInfo");
std::string fctKriteriumBlockSuche(const std::string& strBlockNr);

class NavigationsModell {
  public:
    explicit NavigationsModell(ProgrammZustand& z, db::StorageOpener oeffner);

    // --- Opening -----------------------------------------------------------
    // The code table "\txtPrefix.txt" of the program directory; false (and
    // the reason in fehlerText) when it is missing or holds too few codes.
    bool fctCodeTabelleLesen(const std::string& strDatei);
    // Opens the database at strPfad (ConnectionUndRecordsetOeffnen): the
    // connection, rsOrdner and rsMarkierteBloecke. Closes what was open.
    bool fctDatenbankOeffnen(const std::string& strPfad);
    void subSchliessen();
    bool offen() const;
    // Folders sorted by name (the setting lonOrdnerSortieren); takes effect
    // when the database is opened next.
    void setOrdnerSortieren(bool booSortieren) { booOrdnerSortieren_ = booSortieren; }
    // Which Folders the user may see, by their OrdnerRechte; unset: all.
    // Takes effect with the next OrdnerInArrayEinlesen.
    void setOrdnerFilter(std::function<bool(const std::string& strOrdnerRechte)> filter) {
        ordnerFilter_ = std::move(filter);
    }

    // --- The operations of the main window ------------------------------------
    bool OrdnerInArrayEinlesen();
    bool subRsSeitenNeuEinlesen();
    bool SeitenInArrayEinlesen();
    bool RecordsetRsBlockInfo0NeuEinlesen();
    bool RecordsetRsBlockInfo0EinzelEinlesen(const std::string& strBlockNr);
    // The next Folder shown reads rsBlockInfo0 for its Page alone (the rows
    // between the Page's lowest and highest block number) and the rest of
    // the Folder only when it is asked for: a slot off that Page looked up, or
    // fctOrdnerVollstaendigEinlesen. So a library's first Page is painted
    // without reading the 10 000 rows of a large Folder first.
    void setSeiteZuerst(bool booSeiteZuerst) { booSeiteZuerst_ = booSeiteZuerst; }
    // The user's options the model follows as they change: whether paging
    // keeps the selected slot ("lonPosSeitenWechsel"; off: the first slot of
    // the new Page) and whether the slides of a Page are looked for on disk
    // when it is filled ("longSlideUeberpruefen"; the check costs a file
    // lookup per slot, which a library on a slow share feels). Null: neither.
    void setSetupWerte(const typSetupWerte* w) { setup_ = w; }
    // Reads the whole Folder into rsBlockInfo0 when it holds one Page only.
    bool fctOrdnerVollstaendigEinlesen();
    bool booNurSeiteGelesen() const { return nurSeite_.has_value(); }
    bool ArrayTBloeckeNeuEinlesenBeiOrdnerwechsel();
    bool BilderAnzeigenBeiGeaenderterBilderanzahl(long longAnzahlDerBilder);
    // The picture-size index alone, before a Folder is shown (an index out
    // of range becomes 2).
    void setAnzahlDerBilder(long longAnzahlDerBilder);
    bool subSeiteNeuAnzeigen();
    void BlocknummernEinlesen(long k);
    // The name list entries of the visible Page (block number or free marker).
    std::vector<std::string> lisBlockBenennungAktualisieren() const;

    // Folder change by the index of the Folder box (comboxOrdner_Click).
    bool comboxOrdner_Click(int intIndex);
    // Makes the Folder with this code current, then its Page; false when
    // there is no such Folder.
    bool fctOrdnerWaehlen(const std::string& strOrdnerNr, long lngSeite = 0);

    bool combutVor();
    bool combutZurueck();
    bool combutZurueckAnfang();
    bool GeheZuSeite(long lngSeite);
    // Jumps to the Folder of the code and the Page and slot of the block
    // number, and selects the slot.
    bool fctAufOrdnerUndSeiteSpringen(const std::string& strOrdnerNr,
                                      const std::string& strBlockNr);
    // The Page index of a block number under the current slot count; -1 when
    // its code is not in the table.
    long fctSeiteNrErmitteln(const std::string& strBlockNr) const;
    // Whether Page lngSeite of the current Folder holds at least one Block.
    bool fctBlockAufSeiteVorhanden(long lngSeite);

    // --- Slots and selection ----------------------------------------------------
    // A left-button press on slot i (sldBlockverwaltung_LButtonDown).
    void subPositionSetzen(int intPosition);
    DoppelklickAktion fctDoppelklick(int intPosition, long longDoppelklick);
    // Double-click on an entry of lisBlockBenennung; Nichts for a free entry.
    DoppelklickAktion fctListeDoppelklick(int intEintrag, long longDoppelklick);
    // Sets or clears the mark of a slot (a row of tblMarkierteBloecke).
    bool fctMarkierungSetzen(int intPosition, bool booMarkiert);
    bool fctMarkierungenAlleLoeschen();
    // Puts rsBlockInfo0 on the Block record of a slot, found as the insert
    // command finds it ("Block = '…'"); false when the slot is free.
    bool fctBlockSuchen(int intPosition);

    // --- State the window draws from ---------------------------------------
    const std::vector<typOrdnerEintrag>& aryOrdner() const { return aryOrdner_; }
    const std::vector<std::string>& arySeiten() const { return arySeiten_; }
    const std::vector<typSeiteEintrag>& seitenListe() const { return seitenListe_; }
    const std::vector<std::string>& aryBlocknummern() const { return aryBlocknummern_; }
    const std::vector<typSlot>& seitenSlots() const { return slots_; }
    // tblBlockInfo.Nr of the Page's occupied slot with that block number; 0
    // when the Page shows no such Block.
    long fctSlotNr(const std::string& strBlockNr) const;
    int intOrdnerIndex() const { return intOrdnerIndex_; }
    const typOrdnerEintrag* aktuellerOrdner() const;
    // The index of the Folder of that name in the Folder array; -1 when the
    // array does not hold it.
    int fctOrdnerIndex(const std::string& strOrdnerName) const;
    long intSeite() const { return intSeite_; }
    int intPosition() const { return intPosition_; }
    long longAnzahlDerBilder() const { return longAnzahlDerBilder_; }
    int slotsProSeite() const { return fctSlotsProSeite(longAnzahlDerBilder_); }
    // The code table read by fctCodeTabelleLesen: entry k ends the block
    // number of absolute slot k.
    const std::vector<std::string>& codeTabelle() const { return codeTabelle_; }
    // The highest Page index the code table allows.
    long letzteSeite() const;
    // The library directory with a trailing backslash.
    const std::string& strBasisVerzeichnis() const { return strBasis_; }
    const std::string& strDatenbank() const { return db_.strPfad; }
    const std::string& fehlerText() const { return fehlerText_; }
    // Jet's error number of the last failed opening (jet::errnum), 0 when
    // the failure had none.
    long lngFehlerNr() const { return lngFehlerNr_; }
    // The message that says why a catalogue server could not be opened
    // (kMsgServerAntwortetNicht …), 0 when the last failure was no such.
    long lngServerMeldung() const { return lngServerMeldung_; }
    typDatenbank& datenbank() { return db_; }
    // Finds done in rsBlockInfo0 since the model was made (for the tests of
    // "only the current Page is looked up").
    long lngFinds() const { return lngFinds_; }

  private:
    bool seitenFuellen();  // steps 3 to 6 of a rebuild for the current Page
    bool blockFinden(const std::string& strBlockNr);
    // rsBlockInfo0 of the Page alone, when the Folder is to be read that way.
    bool seitenBereichEinlesen(long lngErsterSlot, long lngEnde);
    bool ordnerAktivieren(int intIndex, long lngSeite);
    long absoluterSlot(const std::string& strBlockNr) const;

    ProgrammZustand& z_;
    typDatenbank db_;
    std::string strBasis_;
    std::string fehlerText_;
    long lngFehlerNr_ = 0;
    long lngServerMeldung_ = 0;
    std::vector<std::string> codeTabelle_;  // the whole file, read once
    std::vector<std::string> aryCodes_;     // the slot-code table, sized for the Page
    std::vector<typOrdnerEintrag> aryOrdner_;
    std::vector<std::string> arySeiten_;
    std::vector<typSeiteEintrag> seitenListe_;
    std::vector<std::string> aryBlocknummern_;
    std::vector<typSlot> slots_;
    int intOrdnerIndex_ = -1;
    long intSeite_ = 0;
    int intPosition_ = 0;
    long longAnzahlDerBilder_ = 2;
    long lngFinds_ = 0;
    bool booOrdnerSortieren_ = false;
    bool booSeiteZuerst_ = false;
    // While rsBlockInfo0 holds one Page only: its lowest and highest block
    // number (both empty until the Page is read).
    std::optional<std::pair<std::string, std::string>> nurSeite_;
    std::function<bool(const std::string&)> ordnerFilter_;
    const typSetupWerte* setup_ = nullptr;
    std::vector<std::string> gemeldeteDias_;  // missing slides told once a session

    void nachSeitenwechsel();
    void fehlendeDiasMelden();
};

}  // namespace tessara
