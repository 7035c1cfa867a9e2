#pragma once
// frmBlocknameEingeben and frmBlocknameAendern: the name of a new View or
// Variant, or the new name of one. Both windows are this one; the form name
// decides title and label. OK hands the name to the caller's rule: a refused
// name shows the rule's message and the window stays open to correct it.
#include <QDialog>
#include <functional>
#include <memory>
#include <string>

#include "startup/programm_zustand.h"

namespace Ui {
class FrmBlocknameEingeben;
}

namespace tessara {

class FrmBlocknameEingeben : public QDialog {
    Q_OBJECT
  public:
    FrmBlocknameEingeben(ProgrammZustand& z, const std::string& strFormular,
                         const std::string& strVorgabe,
                         std::function<long(const std::string&)> pruefen,
                         QWidget* eltern = nullptr);
    ~FrmBlocknameEingeben() override;
    // The accepted name (after OK).
    std::string strName() const;

  private:
    void cmbOk_Click();

    ProgrammZustand& z_;
    std::function<long(const std::string&)> pruefen_;
    std::unique_ptr<Ui::FrmBlocknameEingeben> ui_;
};

}  // namespace tessara
