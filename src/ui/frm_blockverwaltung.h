#pragma once
// frmBlockverwaltung, the main window: the library as a Folder box, a Page
// box and a grid of slide previews, one slot per Block. The window is an
// adapter over the navigation model: its handlers call the model (or the
// insertion of the CAD bridge) and redraw from the model's state.
#include <QCheckBox>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <vector>

#include "cad/block_daten.h"
#include "cad/cad_verbindung.h"
#include "entry/start_ablauf.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"
#include "startup/schritt_ablauf.h"
#include "ui/preview_cache.h"
#include "ui/slide_page_painter.h"

namespace Ui {
class frmBlockverwaltung;
}

namespace tessara {

class SlotFeld;
class FrmStartfenster;

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
    platform::WindowHandle fensterHandle() override;
    void blockAnfrageAusfuehren() override;
    void datenbankWechseln(const std::string& strPfad) override;
    void timerIntervall(int millisekunden) override;

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

    // Redraws the selection frame, the Page number, the boxes and the slots.
    void Anzeigen();
    // After every change to Folders or Pages: the navigation model is read
    // again, the Folder and Page boxes are refilled and the Page redrawn.
    void subOrdnerUndSeitenNeuAnzeigen();
    ProgrammZustand& zustand() { return z_; }
    // Disables every command that changes the catalogue when the library
    // directory is write-protected; answers whether it is.
    bool fctSperrenCmdBeiSchreibschutz();

    // The Variant choice before an insertion; unset inserts the Block itself.
    std::function<std::optional<typVariante>(const typEinfuegeAuftrag&)> variantenAuswahl;

    NavigationsModell& modell() { return modell_; }
    const typSetupWerte& setup() const { return setup_; }
    ui::DiaVorschauCache& vorschau() { return cache_; }
    ui::DiaMaler& maler() { return *maler_; }
    bool schreibgeschuetzt() const { return booSchreibschutz_; }
    // The block numbers the last insertion took in, in the order inserted
    // (read when einfuegungBeendet comes).
    const std::vector<std::string>& zuletztEingefuegt() const { return zuletztEingefuegt_; }
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
    void ladeSchritteSetzen();
    void entladeSchritteSetzen();
    void rasterAufbauen();
    void bilderAnfordern();
    void boxenFuellen();
    void verzeichnisBoxFuellen();
    void positionZeigen();
    bool bibliothekOeffnen(const std::string& strDb);
    void positionSpeichern();
    void einfuegeOptionenZeigen();
    void einfuegeOptionenUebernehmen();
    std::vector<std::int32_t*> einfuegeSchalter();
    void meldenMitPfad(long lngNummer, const std::string& strPfad);
    void statusZeigen(const QString& text);
    void ausgabe(const std::string& zeile);
    bool einfuegen(std::vector<typEinfuegeAuftrag> auftraege, bool booMarkiert);
    std::vector<typEinfuegeAuftrag> markierteAuftraege();
    bool tasteImRaster(QKeyEvent* e);
    void doppelklickAusfuehren(DoppelklickAktion aktion);
    void rasterAnordnen();
    void slotsAnlegen(int anzahl);
    std::vector<QCheckBox*> fraEinfuegenBoxen() const;

    ProgrammZustand& z_;
    CadVerbindung& v_;
    std::unique_ptr<Ui::frmBlockverwaltung> ui_;
    NavigationsModell modell_;
    ui::DiaVorschauCache cache_;
    std::unique_ptr<ui::DiaMaler> maler_;
    typSetupWerte setup_;
    SchrittAblauf laden_;
    SchrittAblauf entladen_;
    std::vector<SlotFeld*> slots_;  // made as needed, the unused hidden
    int angeordnet_ = 0;            // slots laid out in the grid
    int angeordnetSpalten_ = 0;     // and its columns
    QPointer<FrmStartfenster> start_;
    QTimer timer_;
    QTimer bildTimer_;              // repaints the previews once a resize has settled
    std::string strDbVerzeichnis_;  // library directory, no trailing backslash
    bool booSchreibschutz_ = false;
    bool booStartAbbrechen_ = false;
    bool booGeladen_ = false;
    bool booEntladen_ = false;
    bool booEinfuegenLaeuft_ = false;
    bool booBoxenFuellen_ = false;  // the boxes are being refilled: no click handlers
    std::vector<std::string> zuletztEingefuegt_;
};

}  // namespace tessara
