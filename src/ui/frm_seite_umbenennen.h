#pragma once
// frmSeiteUmbenennen: a new name for the selected Page; its number stays.
#include <QDialog>
#include <memory>
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmSeiteUmbenennen;
}

namespace tessara {

class FrmSeiteUmbenennen : public QDialog {
    Q_OBJECT
  public:
    FrmSeiteUmbenennen(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                       const std::string& strAlt, QWidget* eltern = nullptr);
    ~FrmSeiteUmbenennen() override;

  private:
    void frmSeiteUmbenennenBeschriften();
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    long lngSeitenNr_;
    std::unique_ptr<Ui::FrmSeiteUmbenennen> ui_;
};

}  // namespace tessara
