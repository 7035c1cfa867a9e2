#pragma once
// The quick filter of the main window: a text box (txtSchnellfilter) and
// the list of its hits (lisSchnellfilter). Each keystroke drops the scan in
// hand and starts a new one on a worker over the library's snapshot; hits
// come into the list batch by batch while the user goes on typing. The
// snapshot is read once per library, on a worker with a connection of its
// own, so the window never waits for the database either.
#include <QFutureWatcher>
#include <QObject>
#include <QPointer>
#include <QThreadPool>
#include <atomic>
#include <memory>
#include <string>

#include "search/schnellfilter.h"
#include "ui/block_aktionen.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QWidget;

namespace tessara {

class SchnellfilterSteuerung : public QObject {
    Q_OBJECT
  public:
    // Builds the widgets into `flaeche` (the side bar's part for them).
    SchnellfilterSteuerung(FensterKontext k, QWidget* flaeche);
    ~SchnellfilterSteuerung() override;

    // The list shows at most this many hits; the count says how many there are.
    static constexpr int kAngezeigt = 1000;

    // The snapshot to scan for the library at strDb (normally read by the
    // control itself when the first text is typed).
    void setSchnappschuss(std::shared_ptr<const SchnellSchnappschuss> zeilen,
                          const std::string& strDb);
    long trefferGesamt() const { return gesamt_; }
    bool scanLaeuft() const { return laeuft_; }

    // The hit of a list row: shown in the main window, or inserted.
    bool springen(int zeile);
    bool einfuegen(int zeile);

  protected:
    bool eventFilter(QObject* o, QEvent* e) override;

  signals:
    // A batch of hits came into the list.
    void trefferGeliefert();
    // The scan of the text typed last has ended.
    void scanFertig(long anzahl);

  private:
    void textGeaendert();
    void scanStarten();
    void schnappschussLesen();
    void anzahlZeigen();
    const typSchnellZeile* zeile(int listenZeile) const;

    FensterKontext k_;
    QLineEdit* txt_ = nullptr;
    QListWidget* lis_ = nullptr;
    QLabel* anzahl_ = nullptr;
    QPushButton* einfuegen_ = nullptr;

    std::shared_ptr<const SchnellSchnappschuss> zeilen_;
    std::string strDb_;       // the library the snapshot belongs to
    std::string strGelesen_;  // the library being read
    struct Gelesen {
        std::shared_ptr<const SchnellSchnappschuss> zeilen;
        std::string fehler;
    };
    QFutureWatcher<Gelesen> lesen_;
    std::shared_ptr<const SchnellSchnappschuss> listenZeilen_;  // the rows the list shows

    QThreadPool pool_;
    std::shared_ptr<std::atomic<bool>> abbruch_;
    int generation_ = 0;
    long gesamt_ = 0;
    bool laeuft_ = false;
};

}  // namespace tessara
