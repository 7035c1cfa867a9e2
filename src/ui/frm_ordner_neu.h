#pragma once
// frmOrdnerNeu: the name of a new Folder. OK creates it (the
// operation checks the name and takes the code); the window closes only then.
#include <QDialog>
#include <memory>
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmOrdnerNeu;
}

namespace tessara {

class FrmOrdnerNeu : public QDialog {
    Q_OBJECT
  public:
    FrmOrdnerNeu(ProgrammZustand& z, NavigationsModell& m, QWidget* eltern = nullptr);
    ~FrmOrdnerNeu() override;
    // The code the new Folder got (after OK).
    const std::string& strCode() const { return strCode_; }

  private:
    void frmOrdnerNeuBeschriften();
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    std::string strCode_;
    std::unique_ptr<Ui::FrmOrdnerNeu> ui_;
};

}  // namespace tessara
