#pragma once
// frmOrdnerExport and frmOrdnerImport, opened from the Folder window: the
// Folder and the file to write, or the file to read and the new Folder's
// name. OK runs the exchange operation; a refusal leaves the window open to
// be corrected.
#include <QDialog>
#include <memory>
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmOrdnerExport;
class FrmOrdnerImport;
}  // namespace Ui

namespace tessara {

class FrmOrdnerExport : public QDialog {
    Q_OBJECT
  public:
    // lngNr: the Folder selected at first.
    FrmOrdnerExport(ProgrammZustand& z, NavigationsModell& m, long lngNr,
                    QWidget* eltern = nullptr);
    ~FrmOrdnerExport() override;

  private:
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    std::unique_ptr<Ui::FrmOrdnerExport> ui_;
};

class FrmOrdnerImport : public QDialog {
    Q_OBJECT
  public:
    FrmOrdnerImport(ProgrammZustand& z, NavigationsModell& m, QWidget* eltern = nullptr);
    ~FrmOrdnerImport() override;
    // The new Folder's name (after OK).
    std::string strName() const;

  private:
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    std::unique_ptr<Ui::FrmOrdnerImport> ui_;
};

}  // namespace tessara
