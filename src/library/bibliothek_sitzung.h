#pragma once
// The open library as the main window shows it: which database is open, the
// list of library directories, whether the library may be changed, where the
// user stood in it, and the navigation model of its Folders, Pages and slots.
//
// Notes on the design:
// - The window asks the session and redraws from what an operation answers
//   (typAenderung), in one place; the session never draws and never asks.
// - A failure is told by a message number (typOeffnenErgebnis), decided from
//   the engine's error number, never from the wording of an error text.
// - The position of a library (Folder code, Page, slot) is saved whenever the
//   session leaves it: on a switch and on closing.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "captions/meldungs_nummern.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"

namespace tessara {

// What an operation changed, for the window to redraw; flags combine.
enum typAenderung : unsigned {
    kNichtsGeaendert = 0,
    kPositionGeaendert = 1,    // the selected slot
    kSeiteGeaendert = 2,       // the slots of the Page (and the selection)
    kBoxenGeaendert = 4,       // the Folder and Page boxes, the picture size
    kBibliothekGeaendert = 8,  // another library, or none: everything, the list too
    kAnsichtenGeaendert = 16,  // the selected Block's Views and Variants (the preview strip)
};
inline typAenderung operator|(typAenderung a, typAenderung b) {
    return static_cast<typAenderung>(static_cast<unsigned>(a) | b);
}

// Why a library did not open: a message (lngMeldung, with strPfad below it)
// and, where the engine said why, a reason line (lngGrund). Zero: it opened.
struct typOeffnenErgebnis {
    long lngMeldung = 0;
    std::string strPfad;
    long lngGrund = 0;
    bool ok() const { return lngMeldung == 0; }
};

// The keys that move the selection in the grid.
enum class RasterTaste { Links, Rechts, Hoch, Runter, Anfang, Ende };

class BibliothekSitzung {
  public:
    BibliothekSitzung(ProgrammZustand& z, db::StorageOpener oeffner);

    NavigationsModell& modell() { return modell_; }
    const NavigationsModell& modell() const { return modell_; }
    // The user's options (registry values); the session keeps the picture
    // size and the position in them.
    typSetupWerte& setup() { return setup_; }

    // --- Libraries ---------------------------------------------------------------
    // Opens the database strDb (a missing one in an existing, writable
    // directory is created), after saving the position in the one open.
    // The Folder and Page saved for the library become current.
    typOeffnenErgebnis fctOeffnen(const std::string& strDb);
    // A path handed over (a database file or its directory): the directory
    // joins the database list when it is new and exists, the library opens
    // and becomes the one the next start opens.
    typOeffnenErgebnis fctWechseln(const std::string& strPfad);
    // A further library directory joins the database list and opens: its
    // dbTessara.mdb, or an older version's database imported into a new one
    // when the user agrees, or else a new catalogue (NeueDatenbankErstellen).
    // A directory listed already just opens. inCombo refills the window's
    // list once the library is in it.
    typOeffnenErgebnis fctAnhaengen(const std::string& strVerzeichnis,
                                    const std::function<void()>& inCombo = {});
    // A new catalogue in a directory without one, by the labelled steps of
    // the main window's command: the list, "Eintrag1", Mk_Datenbank, then the
    // new library opened in place of the old one. On a failure the
    // directory leaves the list again and the library open before returns.
    typOeffnenErgebnis NeueDatenbankErstellen(const std::string& strVerzeichnis,
                                              const std::function<void()>& inCombo = {});
    // Takes a directory out of the database list after asking (its files
    // stay). The only library listed stays; when the open one goes, the one
    // that takes its place in the list opens (the one before it when it was
    // the last).
    typOeffnenErgebnis fctAbhaengen(const std::string& strVerzeichnis);
    // The library directories of the database list worth offering.
    std::vector<std::string> datenbankListe() const;
    // The directory of the open library, without a trailing backslash; empty
    // when none is open.
    const std::string& strDbVerzeichnis() const { return strDbVerzeichnis_; }
    void subSchliessen();

    // A write-protected library directory (its test file cannot be made) or
    // a database file marked read-only; decided when the library opens.
    bool schreibgeschuetzt() const { return booSchreibschutz_; }
    bool fctSchreibschutzPruefen();

    // Saves Folder code, Page and slot of the open library in its
    // "dbTessara.ini", and the Folder and picture size in the options.
    void subPositionSpeichern();

    // --- The window's commands; each answers what it changed ---------------------
    typAenderung fctVor();
    typAenderung fctZurueck();
    typAenderung fctZurueckAnfang();
    // The Folder at this index of the Folder box, then its saved Page.
    typAenderung fctOrdnerWaehlen(int intIndex);
    // The Page at this index of the Page box (the Pages by name).
    typAenderung fctSeiteWaehlen(int intIndex);
    // A picture size 0..7; kept in the options for the next start.
    typAenderung fctBilderanzahl(long longAnzahlDerBilder);
    typAenderung fctPositionSetzen(int intPosition);
    // Marks are rows of the catalogue: refused on a write-protected library.
    typAenderung fctMarkieren(int intPosition, bool booMarkiert);
    typAenderung fctMarkierungenAufheben();
    // After a change to Folders or Pages: the Folders read again, the
    // current Folder, Page and slot kept where they still exist.
    typAenderung fctOrdnerUndSeitenNeuEinlesen();
    // What a double-click on a slot (or on an entry of the name list) asks
    // for by the option longDoppelklick; marking is done here, and nothing
    // happens on a write-protected library.
    DoppelklickAktion fctDoppelklick(int intPosition, bool booAusListe = false);

    // The View marked for insertion in the preview strip. It belongs to the
    // Block it was marked on: selecting a slot sets it back to 0, and so does
    // any change that puts another Block under the selection.
    void setEinzufuegendeAnsicht(int ansicht);
    int intEinzufuegendeAnsicht() const;

    // --- Moving in the grid -----------------------------------------------------------
    // The slot a key moves the selection to on the current Page: left and
    // right by one, up and down by a row of the grid's shape, Home and End
    // to the first and last slot; never off the Page.
    int fctRasterZiel(RasterTaste taste) const;

  private:
    // Opens an existing database: what older versions lack is added first
    // (not on a write-protected library), then absolute slide paths are made
    // relative and the block table is chosen.
    typOeffnenErgebnis verbinden(const std::string& strDb);
    // The Folders read, and the Folder, Page and slot saved for the library.
    void ordnerAktualisieren();

    ProgrammZustand& z_;
    NavigationsModell modell_;
    typSetupWerte setup_;
    std::string strDbVerzeichnis_;
    bool booSchreibschutz_ = false;
    int intAnsicht_ = 0;
    std::string strAnsichtBlock_;  // the block number the View was marked on
};

}  // namespace tessara
