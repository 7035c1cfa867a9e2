#pragma once
// frmSeitenverwaltung: the Pages of the current Folder, one row each as
// number, tab and name, the current Page selected; New, Rename and Delete
// (disabled while the library is write-protected); OK makes the selected
// Page current. After every change the caller's nachAenderung runs.
#include <QDialog>
#include <functional>
#include <memory>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmSeitenverwaltung;
}

namespace tessara {

class FrmSeitenverwaltung : public QDialog {
    Q_OBJECT
  public:
    FrmSeitenverwaltung(ProgrammZustand& z, NavigationsModell& m, bool booSchreibschutz,
                        std::function<void()> nachAenderung, QWidget* eltern = nullptr);
    ~FrmSeitenverwaltung() override;

    // Refills the list; lngSeitenNr > 0 selects that Page instead of the
    // current one.
    void Anzeigen(long lngSeitenNr = 0);
    // The number of the selected Page, 0 when none.
    long lngAuswahl() const;

  private:
    void frmSeitenverwaltungBeschriften();
    void knoepfeSetzen();
    void geaendert(long lngSeitenNr);
    void cmbNeu_Click();
    void cmbUmbenennen_Click();
    void cmbLoeschen_Click();
    void cmbOk_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    bool booSchreibschutz_;
    std::function<void()> nachAenderung_;
    std::unique_ptr<Ui::FrmSeitenverwaltung> ui_;
};

}  // namespace tessara
