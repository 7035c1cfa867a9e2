#pragma once
// frmSuchergebnis: the hits of a search as a grid (preview, block number,
// Folder, Page, View names, M0), sortable by any column. A double-click or
// Enter shows the hit in the main window (its Folder, its Page, its slot
// selected); the insert button inserts it through the main window.
#include <QDialog>
#include <vector>

#include "search/datenbank_suche.h"
#include "ui/block_aktionen.h"
#include "ui/slide_page_painter.h"

class QTableWidget;
class QTableWidgetItem;
class QLabel;

namespace tessara {

class FrmSuchergebnis : public QDialog {
    Q_OBJECT
  public:
    FrmSuchergebnis(FensterKontext k, std::vector<typSuchTreffer> treffer, QWidget* eltern);
    ~FrmSuchergebnis() override;

    QTableWidget* DataGrid1() const { return grid_; }
    // The hit shown in a row of the grid (after sorting too); null for none.
    const typSuchTreffer* trefferInZeile(int zeile) const;
    // The selected hit: shown in the main window, or inserted.
    bool cmdSpringen_Click();
    bool cmbEinfuegen_Click();

  signals:
    // Every preview of the grid is painted.
    void vorschauFertig();

  protected:
    bool eventFilter(QObject* o, QEvent* e) override;

  private:
    void fuellen();

    FensterKontext k_;
    std::vector<typSuchTreffer> treffer_;
    QTableWidget* grid_ = nullptr;
    QLabel* labTreffer_ = nullptr;
    std::vector<QTableWidgetItem*> vorschau_;  // by hit, whatever row it sorts to
    ui::DiaMaler maler_;
};

}  // namespace tessara
