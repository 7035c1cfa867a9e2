#pragma once
// frmBlockverwaltung, the main window: the library as a Folder box, a Page
// box and a grid of slide previews, one slot per Block. The window is an
// adapter over the library session: its handlers call the session, its
// model or the insertion of the CAD bridge, and redraw from what they say
// changed, in one place (neuZeichnen). Its panels (search, quick filter,
// recent blocks, management windows) get the session and BlockAktionen,
// never the window.
#include <QCheckBox>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <vector>

#include "cad/block_daten.h"
#include "cad/cad_verbindung.h"
#include "entry/start_ablauf.h"
#include "library/bibliothek_sitzung.h"
#include "startup/programm_zustand.h"
#include "startup/schritt_ablauf.h"
#include "ui/block_aktionen.h"
#include "ui/preview_cache.h"
#include "ui/slide_page_painter.h"

namespace Ui {
class frmBlockverwaltung;
}

namespace tessara {

class SlotFeld;
class FrmStartfenster;
class Verwaltungsfenster;
class BlockBearbeitung;
class clsHostEreignisse;
struct typAktiveZeichnung;

class FrmBlockverwaltung : public QMainWindow, public Hauptfenster {
    Q_OBJECT
  public:
    FrmBlockverwaltung(ProgrammZustand& z, CadVerbindung& v, QWidget* eltern = nullptr);
    ~FrmBlockverwaltung() override;

    // --- What start-up needs of the main window --------------------------------
    void laden() override;
    bool startAbbrechen() override { return booStartAbbrechen_; }
    bool nurNachVorneHolen() override;
    void zeigen() override;
    // The stored size and place, or on a first start the designed size within the screen.
    void groesseAngleichen();
    platform::WindowHandle fensterHandle() override;
    void blockAnfrageAusfuehren() override;
    void datenbankWechseln(const std::string& strPfad) override;
    void timerIntervall(int millisekunden) override;
    // Follows the drawing active in the host (frm_blockverwaltung_ereignisse.cpp).
    void ereignisseAbonnieren() override;
    bool beschaeftigt() override { return booEinfuegenLaeuft_; }

    // --- Commands (also reached by menu entries and keys) ------------------------
    void cmbEinfuegen_Click();
    void combutVor_Click();
    void combutZurueck_Click();
    void combutZurueckAnfang_Click();
    void comboxOrdner_Click(int intIndex);
    void comboxSeite_Click(int intIndex);
    void comboxVerzeichnis_Click(int intIndex);
    void comboxBilderanzahl_Click(int intIndex);
    void sldBlockverwaltung_LButtonDown(int intPosition);
    void sldBlockverwaltung_DblClick(int intPosition);
    void lisBlockBenennung_DblClick(int intEintrag);
    void chkMarkieren_Click(int intPosition, bool booMarkiert);
    void mnuOptionen_Click();
    void mnuVollbild_Click();
    void mnuBibliothekOeffnen_Click();
    // Another library directory joins the list and opens; one leaves it.
    void mnuBibliothekAnhaengen_Click();
    void mnuBibliothekAbhaengen_Click();

    // Redraws the slots, the selection and the Page number.
    void Anzeigen() { neuZeichnen(kSeiteGeaendert); }
    // After every change to Folders or Pages: the navigation model is read
    // again, the Folder and Page boxes are refilled and the Page redrawn.
    void subOrdnerUndSeitenNeuAnzeigen();

    // The Variant choice before an insertion (frmVariantenAuswahl); unset
    // inserts the Block itself.
    std::function<std::optional<typVariante>(const typEinfuegeAuftrag&)> variantenAuswahl;

    NavigationsModell& modell() { return sitzung_.modell(); }
    const typSetupWerte& setup() { return sitzung_.setup(); }
    bool schreibgeschuetzt() const { return sitzung_.schreibgeschuetzt(); }
    ui::DiaVorschauCache& vorschau() { return cache_; }
    // Runs the closing sequence (what closing the window does, without the
    // question whether Tessara should close).
    void entladen();

  signals:
    // A Page has been drawn and all its pictures are in.
    void seiteGemalt();
    // An insertion has ended (eingefuegt: how many blocks went in).
    void einfuegungBeendet(int eingefuegt);

  protected:
    void closeEvent(QCloseEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    bool eventFilter(QObject* o, QEvent* e) override;

  private:
    class Aktionen;
    // The one place the window redraws: each part of the window that the
    // change touches, from the session's state.
    void neuZeichnen(typAenderung was);
    void ladeSchritteSetzen();
    void entladeSchritteSetzen();
    void rasterAufbauen();
    void panelsEinbauen();
    void bilderAnfordern();
    void boxenFuellen();
    void verzeichnisBoxFuellen();
    void positionZeigen();
    void schreibschutzZeigen();
    void ordnerAnsichtSetzen();
    bool bibliothekOeffnen(const std::string& strDb);
    void oeffnenFehlerMelden(const typOeffnenErgebnis& r);
    bool neueDbMoeglich();
    bool zumBlockSpringen(const std::string& strBlock);
    void einfuegeOptionenZeigen();
    void einfuegeOptionenUebernehmen();
    std::vector<std::int32_t*> einfuegeSchalter();
    void meldenMitPfad(long lngNummer, const std::string& strPfad);
    void statusZeigen(const QString& text);
    void ausgabe(const std::string& zeile);
    bool einfuegen(std::vector<typEinfuegeAuftrag> auftraege, bool booMarkiert);
    bool tasteImRaster(QKeyEvent* e);
    void doppelklickAusfuehren(DoppelklickAktion aktion);
    void rasterAnordnen();
    void slotsAnlegen(int anzahl);
    std::vector<QCheckBox*> fraEinfuegenBoxen() const;
    void aktiveZeichnungZeigen(const typAktiveZeichnung& a);

    ProgrammZustand& z_;
    CadVerbindung& v_;
    std::unique_ptr<Ui::frmBlockverwaltung> ui_;
    BibliothekSitzung sitzung_;
    ui::DiaVorschauCache cache_;
    std::unique_ptr<ui::DiaMaler> maler_;
    std::unique_ptr<Aktionen> aktionen_;
    Verwaltungsfenster* verwaltung_ = nullptr;
    BlockBearbeitung* bearbeitung_ = nullptr;
    SchrittAblauf laden_;
    SchrittAblauf entladen_;
    std::vector<SlotFeld*> slots_;  // made as needed, the unused hidden
    int angeordnet_ = 0;            // slots laid out in the grid
    int angeordnetSpalten_ = 0;     // and its columns
    QPointer<FrmStartfenster> start_;
    QTimer timer_;
    QTimer bildTimer_;  // repaints the previews once a resize has settled
    bool booStartAbbrechen_ = false;
    bool booGeladen_ = false;
    bool booEntladen_ = false;
    bool booEinfuegenLaeuft_ = false;
    std::vector<std::string> zuletztEingefuegt_;
    std::unique_ptr<clsHostEreignisse> ereignisse_;
};

}  // namespace tessara
