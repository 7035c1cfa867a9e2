#pragma once
// frmVariantenAuswahl: before a Block with Variants is inserted, the user
// chooses what goes into the drawing: the Block itself (first line, the name
// of the View) or one of its Variants.
#include <QDialog>
#include <memory>
#include <optional>

#include "cad/block_daten.h"
#include "startup/programm_zustand.h"

namespace Ui {
class FrmVariantenAuswahl;
}

namespace tessara {

class FrmVariantenAuswahl : public QDialog {
    Q_OBJECT
  public:
    FrmVariantenAuswahl(ProgrammZustand& z, const typEinfuegeAuftrag& auftrag,
                        QWidget* eltern = nullptr);
    ~FrmVariantenAuswahl() override;

    // The chosen Variant, one without file name for the Block itself;
    // nothing when the user cancelled.
    static std::optional<typVariante> waehlen(ProgrammZustand& z, const typEinfuegeAuftrag& auftrag,
                                              QWidget* eltern = nullptr);
    // The width the Settings file gives the Variant windows, else a default.
    static int fctBreite(ProgrammZustand& z);

  private:
    ProgrammZustand& z_;
    std::unique_ptr<Ui::FrmVariantenAuswahl> ui_;
};

}  // namespace tessara
