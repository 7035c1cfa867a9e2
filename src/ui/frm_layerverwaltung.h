#pragma once
// frmLayerverwaltung: the named layer configurations of the Settings file
// beside the layers of one of them or of the drawing. The drawing's layers
// are read from the connected host and saved under a name; a configuration
// is applied to the drawing, renamed or deleted. The rules are the layer
// manager's (cad/layer_verwaltung.h); the window asks and shows.
#include <QDialog>
#include <memory>
#include <optional>

#include "cad/cad_verbindung.h"
#include "cad/layer_verwaltung.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmLayerverwaltung;
}

namespace tessara {

class FrmLayerverwaltung : public QDialog {
    Q_OBJECT
  public:
    FrmLayerverwaltung(ProgrammZustand& z, CadVerbindung& v, QWidget* eltern = nullptr);
    ~FrmLayerverwaltung() override;

    void cmbLesen_Click();
    void cmbSpeichern_Click();
    void cmbAnwenden_Click();
    void cmbUmbenennen_Click();
    void cmbLoeschen_Click();

  private:
    void lisKonfigurationenFuellen(const std::string& strWahl);
    void konfigurationZeigen();
    void layerZeigen(const std::vector<typLayer>& layer, bool booZeichnung);
    std::string gewaehlt() const;
    // The name of a new configuration, asked; nothing when cancelled.
    std::optional<std::string> nameFragen(const std::string& strVorgabe, const std::string& strAlt);

    ProgrammZustand& z_;
    CadVerbindung& v_;
    std::optional<std::vector<typLayer>> zeichnung_;  // the drawing's layers, once read
    std::unique_ptr<Ui::FrmLayerverwaltung> ui_;
};

}  // namespace tessara
