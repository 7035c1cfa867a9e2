#pragma once
// The start window: shown while the main window loads a library, with the
// program's name, its version and the progress of the load.
#include <QString>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace tessara {

class FrmStartfenster : public QWidget {
    Q_OBJECT
  public:
    // Frameless, centred on the screen of eltern (else the primary screen)
    // each time it is shown.
    explicit FrmStartfenster(QWidget* eltern = nullptr);

    // Step erledigt of gesamt is done (gesamt <= 0: a running bar without
    // end); a non-empty text replaces the line above the bar. The load runs
    // on the user-interface thread, so the window is painted here and now
    // (input events stay queued: no click reaches a half-loaded window).
    void schritt(int erledigt, int gesamt, const QString& text);
    // The load is over: the window closes.
    void fertig();

  protected:
    void showEvent(QShowEvent* e) override;

  private:
    void zentrieren();

    QLabel* labProgName_;
    QLabel* labVersion_;
    QLabel* labLaden_;
    QProgressBar* fortschritt_;
    bool erschienen_ = false;  // exposed on the screen, so it can be drawn at once
};

}  // namespace tessara
