#pragma once
// frmDatenbankSuche: the search window. It collects the fields and hands
// them to the search; a single hit with direct insertion goes to the main
// window's insert command, several hits to the result window.
#include <QDialog>
#include <QPointer>
#include <memory>

#include "search/datenbank_suche.h"
#include "ui/block_aktionen.h"
#include "ui/frm_suchergebnis.h"

namespace Ui {
class frmDatenbankSuche;
}

class QComboBox;
class QLabel;
class QLineEdit;

namespace tessara {

class FrmDatenbankSuche : public QDialog {
    Q_OBJECT
  public:
    FrmDatenbankSuche(FensterKontext k, QWidget* eltern);
    ~FrmDatenbankSuche() override;

    // Captions from the caption files, then the field labels from the
    // current Folder's definition menu (frmDatenbankSucheBeschriften).
    void frmDatenbankSucheBeschriften();

    void cmbSuchen_Click();
    void cmbLeeren_Click();
    void cmbLaden_Click();
    void combutDatei_Click();

    typSuchKriterien kriterien() const;
    void setKriterien(const typSuchKriterien& k);
    // The result window of the last search with several hits.
    FrmSuchergebnis* ergebnisFenster() const { return ergebnis_; }

  signals:
    // A search has ended (with whatever outcome).
    void sucheBeendet(tessara::SuchErgebnis ergebnis);

  private:
    QLineEdit* txt(int i) const;
    QComboBox* op(int i) const;
    QLabel* lab(int i) const;

    FensterKontext k_;
    std::unique_ptr<Ui::frmDatenbankSuche> ui_;
    QPointer<FrmSuchergebnis> ergebnis_;
};

}  // namespace tessara
