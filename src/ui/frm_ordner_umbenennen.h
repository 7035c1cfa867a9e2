#pragma once
// frmOrdnerUmbenennen: a new name for the selected Folder; the window
// keeps the old name, by which the operation finds the Folder.
#include <QDialog>
#include <memory>
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmOrdnerUmbenennen;
}

namespace tessara {

class FrmOrdnerUmbenennen : public QDialog {
    Q_OBJECT
  public:
    FrmOrdnerUmbenennen(ProgrammZustand& z, NavigationsModell& m, std::string strAlt,
                        QWidget* eltern = nullptr);
    ~FrmOrdnerUmbenennen() override;

  private:
    void frmOrdnerUmbenennenBeschriften();
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    std::string strAlt_;
    std::unique_ptr<Ui::FrmOrdnerUmbenennen> ui_;
};

}  // namespace tessara
