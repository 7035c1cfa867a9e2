#pragma once
// The blocks inserted last from the open library (lisZuletzt), each with its
// slide; a click inserts the block again. The list follows every insertion
// of the main window and is kept in the library's "dbTessara.ini".
#include <QObject>
#include <string>
#include <vector>

#include "ui/block_aktionen.h"
#include "ui/slide_page_painter.h"

class QListWidget;
class QWidget;

namespace tessara {

class ZuletztSteuerung : public QObject {
    Q_OBJECT
  public:
    ZuletztSteuerung(FensterKontext k, QWidget* flaeche);
    ~ZuletztSteuerung() override;

    const std::vector<std::string>& liste() const { return liste_; }
    // Reads the list of the open library again when the library changed.
    void bibliothekPruefen();
    bool einfuegen(int zeile);

  protected:
    bool eventFilter(QObject* o, QEvent* e) override;

  signals:
    // The list is on screen with all its slides.
    void listeGezeigt();

  private:
    void nachEinfuegung(int eingefuegt);
    void zeigen();

    FensterKontext k_;
    QListWidget* lis_ = nullptr;
    ui::DiaMaler maler_;
    std::string strDb_;
    std::vector<std::string> liste_;
};

}  // namespace tessara
