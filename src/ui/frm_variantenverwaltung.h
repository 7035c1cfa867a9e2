#pragma once
// frmVariantenverwaltung: the Variants of one Block, to rename and to
// delete. The operations ask and refuse; the list is read again after
// every change, and the caller's nachAenderung redraws what shows them.
// A write-protected library shows the list only.
#include <QDialog>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmVariantenverwaltung;
}

namespace tessara {

class FrmVariantenverwaltung : public QDialog {
    Q_OBJECT
  public:
    FrmVariantenverwaltung(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                           bool booSchreibschutz, std::function<void()> nachAenderung = {},
                           QWidget* eltern = nullptr);
    ~FrmVariantenverwaltung() override;

  private:
    void lisVariantenFuellen();
    void cmbUmbenennen_Click();
    void cmbLoeschen_Click();
    const typVariante* gewaehlt() const;
    void geaendert();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    std::string strBlockNr_;
    bool booSchreibschutz_;
    std::function<void()> nachAenderung_;
    std::vector<typVariante> varianten_;
    std::unique_ptr<Ui::FrmVariantenverwaltung> ui_;
};

}  // namespace tessara
