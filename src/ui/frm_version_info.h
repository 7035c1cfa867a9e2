#pragma once
// frmVersionInfo: the program's change history from "\InfoVersion.lis",
// newest first, the running version in bold and selected. A missing or
// unreadable file is told in a message before the window shows what it can.
#include <QDialog>
#include <memory>

#include "startup/programm_zustand.h"

namespace Ui {
class FrmVersionInfo;
}

namespace tessara {

class FrmVersionInfo : public QDialog {
    Q_OBJECT
  public:
    FrmVersionInfo(ProgrammZustand& z, QWidget* eltern = nullptr);
    ~FrmVersionInfo() override;

  private:
    ProgrammZustand& z_;
    std::unique_ptr<Ui::FrmVersionInfo> ui_;
};

}  // namespace tessara
