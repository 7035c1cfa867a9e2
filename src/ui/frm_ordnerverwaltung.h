#pragma once
// frmOrdnerverwaltung: the Folders of the library in their order, with New,
// Rename, Delete, the up/down pair imgAufAb and the buttons of the Folder
// exchange. The window holds no rules: each button calls an operation of
// organisation/ and redraws the list; after every change the caller's
// nachAenderung (the main window's refresh) runs. While the library is
// write-protected every button that would change it is disabled.
//
// The window also edits the selected Folder's rights (OrdnerRechte); with
// rights management on, it lists only the Folders the user may use.
#include <QDialog>
#include <functional>
#include <map>
#include <memory>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmOrdnerverwaltung;
}

namespace tessara {

class FrmOrdnerverwaltung : public QDialog {
    Q_OBJECT
  public:
    FrmOrdnerverwaltung(ProgrammZustand& z, NavigationsModell& m, bool booSchreibschutz,
                        std::function<void()> nachAenderung, QWidget* eltern = nullptr);
    ~FrmOrdnerverwaltung() override;

    // Refills the list from the Folder record set and selects the Folder
    // with key lngNr (the first row when it is not there).
    void Anzeigen(long lngNr);
    // The key of the selected Folder, 0 when none.
    long lngAuswahl() const;
    // Rights management (longRechteverwaltung = 1) for the user logged in
    // as strAnmeldeName; redraws the list.
    void setRechte(bool booRechteverwaltung, std::string strAnmeldeName);

  private:
    void frmOrdnerverwaltungBeschriften();
    void knoepfeSetzen();
    void geaendert(long lngNr);
    void cmbNeu_Click();
    void cmbUmbenennen_Click();
    void cmdOrdnerExport_Click();
    void cmdOrdnerImport_Click();
    void cmbLoeschen_Click();
    void imgAufAb_Click(int intIndex);
    void cmbOk_Click();
    void cmdRechteSpeichern_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    bool booSchreibschutz_;
    std::function<void()> nachAenderung_;
    bool booRechteverwaltung_ = false;
    std::string strAnmeldeName_;
    std::map<long, std::string> rechte_;  // OrdnerRechte of the listed Folders
    std::unique_ptr<Ui::FrmOrdnerverwaltung> ui_;
};

}  // namespace tessara
