#pragma once
// frmBlockEigenschaften: the attribute values M0 .. M9 of one Block under the
// names of its Folder's definition menu (an empty value shows the menu's
// default as a hint), and the layer, colour and linetype it is inserted
// with. OK writes them to the record; the caller's nachAenderung redraws the
// slot, whose caption is M0. Beside them the Insertion points A to F of the
// View chosen in the box; OK writes those of every View that was changed. A
// write-protected library shows them all for reading.
#include <QDialog>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "editing/ansichten.h"
#include "editing/einfuegepunkte.h"
#include "library/navigation_model.h"
#include "organisation/block_eigenschaften.h"
#include "startup/programm_zustand.h"

class QLineEdit;

namespace Ui {
class FrmBlockEigenschaften;
}

namespace tessara {

class FrmBlockEigenschaften : public QDialog {
    Q_OBJECT
  public:
    FrmBlockEigenschaften(ProgrammZustand& z, NavigationsModell& m,
                          const typBlockEigenschaften& block, bool booSchreibschutz,
                          std::function<void()> nachAenderung, QWidget* eltern = nullptr);
    ~FrmBlockEigenschaften() override;

  private:
    void frmBlockEigenschaftenBeschriften();
    void cmbOk_Click();
    void cboAnsicht_Change(int index);
    void punkteUebernehmen();
    bool punkteSchreiben();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    typBlockEigenschaften block_;
    bool booSchreibschutz_;
    std::function<void()> nachAenderung_;
    std::unique_ptr<Ui::FrmBlockEigenschaften> ui_;
    std::vector<QLineEdit*> werte_;
    // The Insertion point fields, point by point X, Y, Z.
    std::array<std::array<QLineEdit*, 3>, 6> punktFelder_{};
    std::vector<typAnsichtBild> ansichten_;
    int ansicht_ = -1;  // the View the fields show
    // Per View: as read (nothing when it could not be read) and as edited.
    std::map<int, std::optional<typEinfuegepunkte>> gelesen_;
    std::map<int, typEinfuegepunkte> bearbeitet_;
};

}  // namespace tessara
