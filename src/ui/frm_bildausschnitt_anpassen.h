#pragma once
// frmBildausschnittAnpassen: the slide just taken, large enough to judge,
// and the buttons that change the host's view before the slide is taken
// again. The window holds no host commands: each button goes to the
// caller's anwenden, and the picture is then read again from the file.
#include <QDialog>
#include <functional>
#include <memory>
#include <string>

#include "startup/programm_zustand.h"

namespace Ui {
class FrmBildausschnittAnpassen;
}

namespace tessara {

class FrmBildausschnittAnpassen : public QDialog {
    Q_OBJECT
  public:
    FrmBildausschnittAnpassen(ProgrammZustand& z, const std::string& strDiaDatei,
                              std::function<bool(int knopf)> anwenden, QWidget* eltern = nullptr);
    ~FrmBildausschnittAnpassen() override;

  signals:
    // The picture was read from the file and drawn.
    void diaGezeigt();

  private:
    void knopf_Click(int knopf);
    void diaZeigen();

    ProgrammZustand& z_;
    std::string strDiaDatei_;
    std::function<bool(int)> anwenden_;
    std::unique_ptr<Ui::FrmBildausschnittAnpassen> ui_;
};

}  // namespace tessara
