#pragma once
// frmBlockEigenschaften: the attribute values M0 .. M9 of one Block under the
// names of its Folder's definition menu (an empty value shows the menu's
// default as a hint), and the layer, colour and linetype it is inserted
// with. OK writes them to the record; the caller's nachAenderung redraws the
// slot, whose caption is M0. A write-protected library shows them for reading.
#include <QDialog>
#include <functional>
#include <memory>
#include <vector>

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

    ProgrammZustand& z_;
    NavigationsModell& m_;
    typBlockEigenschaften block_;
    bool booSchreibschutz_;
    std::function<void()> nachAenderung_;
    std::unique_ptr<Ui::FrmBlockEigenschaften> ui_;
    std::vector<QLineEdit*> werte_;
};

}  // namespace tessara
