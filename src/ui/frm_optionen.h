#pragma once
// The options window: every setup value that steers insertion and display,
// grouped as Einfügen, Anzeige and Erzeugen. Each control is named after the
// setup value it shows, so the window needs no list of its own: the values
// are matched to the controls by name.
#include <QDialog>
#include <memory>

#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"

namespace Ui {
class FrmOptionen;
}

namespace tessara {

class FrmOptionen : public QDialog {
    Q_OBJECT
  public:
    // Shows the values of werte (a value no control can show appears as its
    // default). OK writes the fields back into werte, saves every setup
    // value with SetupInRegistrierdatenbankSpeichern and accepts; Cancel
    // leaves werte and the registry alone. werte must outlive the window.
    FrmOptionen(ProgrammZustand& z, typSetupWerte& werte, QWidget* eltern = nullptr);
    ~FrmOptionen() override;

  private:
    void anzeigen(const typSetupWerte& w);
    void einsammeln(typSetupWerte& w) const;
    void cmbOk_Click();

    ProgrammZustand& z_;
    typSetupWerte& werte_;
    std::unique_ptr<Ui::FrmOptionen> ui_;
};

}  // namespace tessara
