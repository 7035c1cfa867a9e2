#pragma once
// frmSeiteNeu: number and name of a new Page of the current Folder; the
// number starts as the next one after the highest.
#include <QDialog>
#include <memory>
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmSeiteNeu;
}

namespace tessara {

class FrmSeiteNeu : public QDialog {
    Q_OBJECT
  public:
    FrmSeiteNeu(ProgrammZustand& z, NavigationsModell& m, QWidget* eltern = nullptr);
    ~FrmSeiteNeu() override;
    // The number of the Page written (after OK).
    long lngSeitenNr() const { return lngSeitenNr_; }

  private:
    void frmSeiteNeuBeschriften();
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    long lngSeitenNr_ = 0;
    std::unique_ptr<Ui::FrmSeiteNeu> ui_;
};

}  // namespace tessara
