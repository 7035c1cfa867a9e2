#pragma once
// One picture full size: the slide of a slot painted at the size of the
// window, painted anew whenever the window's size settles.
#include <QDialog>
#include <QImage>
#include <QTimer>
#include <QWidget>
#include <string>

#include "startup/programm_zustand.h"
#include "ui/preview_cache.h"
#include "ui/slide_painter.h"

class QLabel;
class QPushButton;

namespace tessara {

// The picture area (sldVollbild). While a picture of the new size is not yet
// there, the last one is shown scaled, so that dragging the window's edge
// stays smooth.
class DiaFlaeche : public QWidget {
    Q_OBJECT
  public:
    explicit DiaFlaeche(QWidget* eltern = nullptr);
    void setBild(const QImage& bild);
    void setHintergrund(ui::DiaHintergrund h);
    const QImage& bild() const { return bild_; }
    // The size in device pixels a picture for this area should have.
    QSize bildGroesse() const;

  signals:
    void groesseGeaendert();

  protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;

  private:
    QImage bild_;
    ui::DiaHintergrund hintergrund_ = ui::DiaHintergrund::Dunkel;
};

class FrmVollbild : public QDialog {
    Q_OBJECT
  public:
    // strBildname: the picture in program form ("...\x.sld" or
    // "...\x.slb(0A)"); strBeschriftung: the caption under it (labBlock);
    // strAufrufer: the window that opened this one.
    FrmVollbild(ProgrammZustand& z, ui::DiaVorschauCache& cache, const std::string& strBildname,
                const std::string& strBeschriftung, const std::string& strAufrufer,
                QWidget* eltern = nullptr);

    const std::string& aufrufer() const { return strAufrufer_; }
    const std::string& bildname() const { return strBildname_; }
    // The background the caller shows its slots on (dark by default).
    void setHintergrund(ui::DiaHintergrund h);

  protected:
    void showEvent(QShowEvent* e) override;

  private:
    void bildMalen();

    ProgrammZustand& z_;
    ui::DiaVorschauCache& cache_;
    std::string strBildname_;
    std::string strAufrufer_;
    ui::DiaHintergrund hintergrund_ = ui::DiaHintergrund::Dunkel;
    DiaFlaeche* sldVollbild_;
    QLabel* labBlock_;
    QPushButton* cmbSchliessen_;
    // Resizing sends a burst of size changes; the picture is painted once
    // the size has held still for a moment.
    QTimer malTakt_;
};

}  // namespace tessara
