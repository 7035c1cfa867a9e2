#pragma once
// The authoring commands of the main window: "Neu" (a new Block, View or
// Variant from the drawing), renaming, deleting and moving Blocks, the marked
// Blocks' move, and the strip of the selected Block's Views, whose click
// marks the View an insertion takes. The panel only wires: each command is
// an operation of editing/ that answers what changed, and the window redraws
// from that through BlockAktionen.
#include <QGroupBox>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <array>

#include "cad/cad_verbindung.h"
#include "editing/block_befehle.h"
#include "editing/zwischenablage.h"
#include "ui/block_aktionen.h"

namespace tessara {

class SldBlockverwaltung;

class BlockBearbeitung : public QObject {
    Q_OBJECT
  public:
    // The strip is built into fraAnsichten (a group box of the side bar).
    BlockBearbeitung(FensterKontext k, CadVerbindung& v, QGroupBox* fraAnsichten, QObject* eltern);

    void combutNeu_Click();
    void mnuAnsichtNeu_Click();
    void mnuVarianteNeu_Click();
    void mnuBlockUmbenennen_Click();
    void mnuBlockLoeschen_Click();
    void mnuMarkierteVerschieben_Click();
    // The Variants of the selected Block: renamed and deleted in their window.
    void mnuVariantenverwaltung_Click();
    // A slot dragged onto another: the Block moves there.
    void platzAbgelegt(int von, int nach);
    // View v of the strip: marked for insertion, renamed, deleted.
    void ansichtWaehlen(int ansicht);
    void ansichtUmbenennen(int ansicht);
    void ansichtLoeschen(int ansicht);

    // Draws the strip anew from the selected slot.
    void ansichtenZeigen();

    // The clipboard: cut or copy the selected Block, the marked Blocks or the
    // Page; paste from the selected slot on. It outlives a library switch,
    // so Blocks can be pasted into another library.
    void ablageNehmen(AblageUmfang umfang, bool booAusschneiden);
    void mnuAblageEinfuegen_Click();
    // On closing: false when a cut not yet pasted should keep Tessara open.
    bool fctZwischenspeicherAbfragen();
    const Zwischenablage& ablage() const { return ablage_; }

  private:
    void ausfuehren(unsigned was);
    void neu(NeuArt art);

    FensterKontext k_;
    CadVerbindung& v_;
    BlockBefehle befehle_;
    Zwischenablage ablage_;
    QGroupBox* fra_;
    std::array<SldBlockverwaltung*, 5> dias_{};
    std::array<int, 5> ansichten_{};  // the View each tile shows; -1: hidden
    bool laeuft_ = false;             // a flow with the host is under way
    QWidget* fenster_;                // parent of the windows the panel opens
};

}  // namespace tessara
