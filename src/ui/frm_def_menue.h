#pragma once
// frmDefMenue: the definition menus of the library, the ten attribute names
// and default values of the selected one, and the commands to create, copy,
// delete, save and assign a menu to the current Folder. A global menu is
// shown for reading unless the setting longUeberschreibenDefMenueGlobal
// allows changing it; a write-protected library shows every menu so.
#include <QDialog>
#include <functional>
#include <memory>
#include <vector>

#include "library/navigation_model.h"
#include "organisation/def_menue.h"
#include "startup/programm_zustand.h"

class QLineEdit;

namespace Ui {
class FrmDefMenue;
}

namespace tessara {

class FrmDefMenue : public QDialog {
    Q_OBJECT
  public:
    FrmDefMenue(ProgrammZustand& z, NavigationsModell& m, bool booSchreibschutz,
                bool booGlobalUeberschreiben, std::function<void()> nachAenderung,
                QWidget* eltern = nullptr);
    ~FrmDefMenue() override;

    // Refills the list and shows menu lngNr (the current Folder's when 0).
    void Anzeigen(long lngNr = 0);
    long lngAuswahl() const;

  private:
    void frmDefMenueBeschriften();
    void menueZeigen(int intZeile);
    typDefMenue ausFeldern() const;
    bool geaendert() const;
    // Asks whether to keep unsaved changes; false when saving them failed.
    bool aenderungenSichern();
    void cmbNeu_Click();
    void cmdKopieren_Click();
    void cmbLoeschen_Click();
    void cmdSpeichern_Click();
    void cmdZuordnen_Click();

    ProgrammZustand& z_;
    NavigationsModell& m_;
    bool booSchreibschutz_;
    bool booGlobalUeberschreiben_;
    std::function<void()> nachAenderung_;
    std::unique_ptr<Ui::FrmDefMenue> ui_;
    std::vector<typDefMenue> menues_;
    int intGezeigt_ = -1;  // the row of menues_ in the fields
    std::vector<QLineEdit*> benennung_, standardwert_;
};

}  // namespace tessara
