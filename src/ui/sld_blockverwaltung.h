#pragma once
// One slot of the main window's grid: the slide control sldBlockverwaltung_i,
// its caption labBlock_i and its mark box chkMarkieren_i. The slot paints
// what it is handed and reports presses, double-clicks and drags by index;
// what they mean is the navigation model's business.
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QPoint>
#include <QWidget>

namespace tessara {

class SldBlockverwaltung : public QWidget {
    Q_OBJECT
  public:
    SldBlockverwaltung(int index, QWidget* eltern);

    int index() const { return index_; }
    void setBild(const QImage& bild);
    const QImage& bild() const { return bild_; }
    void setAusgewaehlt(bool ausgewaehlt);
    bool ausgewaehlt() const { return ausgewaehlt_; }
    // What a drag carries: the path text and the drawing as a file URL.
    // Empty: the slot cannot be dragged (free slot).
    void setZiehDaten(const QString& text, const QString& datei);
    // Whether another slot may be dropped here (a Block moves onto it).
    void setAblageErlaubt(bool erlaubt) { setAcceptDrops(erlaubt); }
    // The format by which a slot's drag names the slot it came from.
    static const QString kPlatzFormat;

  signals:
    void gedrueckt(int index);
    void doppelklick(int index);
    void groesseGeaendert();
    // Slot `von` was dropped on this one.
    void abgelegt(int von, int nach);

  protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void resizeEvent(QResizeEvent*) override;
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dropEvent(QDropEvent* e) override;

  private:
    int index_;
    QImage bild_;
    bool ausgewaehlt_ = false;
    QString ziehText_, ziehDatei_;
    QPoint druckPunkt_;
};

// The slot as the grid lays it out: picture above, caption and mark box below.
class SlotFeld : public QWidget {
  public:
    SlotFeld(int index, QWidget* eltern);
    SldBlockverwaltung* dia;
    QLabel* beschriftung;
    QCheckBox* markieren;
};

}  // namespace tessara
