// simhost: a stand-in for the CAD host in end-to-end tests. One window with
// the title given on the command line, a drawing, and a command line that
// takes typed keys and mouse picks (see sim_interpreter.h). Qt Widgets, so
// that the same host runs on X11 and on Windows (under wine in the tests).
//
//   simhost --title "AutoCAD LT 2015 - [Zeichnung1.dwg]" --log /tmp/host.log
//
// Program paths such as "c:\temp\bv8LT.scr" are mapped to files exactly as
// the program maps them (TESSARA_DRIVE_C and friends).
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <csignal>
#include <fstream>
#include <iostream>
#include <string>

#include "authoring/aci_farben.h"
#include "sim_interpreter.h"

namespace {

volatile std::sig_atomic_t beenden = 0;
void signalBeenden(int) { beenden = 1; }

constexpr int kZeile = 24;  // height of the command line below the drawing

class HostFenster : public QWidget {
  public:
    explicit HostFenster(simhost::SimInterpreter& host) : host_(host) {
        setFixedSize(simhost::kBreite, simhost::kHoehe + kZeile);
        setFocusPolicy(Qt::StrongFocus);
        QPalette weiss = palette();
        weiss.setColor(QPalette::Window, Qt::white);
        setPalette(weiss);
        setAutoFillBackground(true);
    }

  protected:
    void changeEvent(QEvent* e) override {
        if (e->type() == QEvent::ActivationChange) host_.aktiviert(isActiveWindow());
        QWidget::changeEvent(e);
    }

    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const int h = simhost::kHoehe;
        // The lines a slide would take, in their colours on the white ground.
        for (const auto& l : host_.bildschirm()) {
            const auto c = tessara::slide::aciZeichenfarbe(l.farbe, false);
            p.setPen(QColor(c.r, c.g, c.b));
            p.drawLine(l.x1, h - 1 - l.y1, l.x2, h - 1 - l.y2);
        }
        p.setPen(Qt::black);
        p.drawLine(0, h, simhost::kBreite, h);
        p.drawText(4, h + kZeile - 8, QString::fromStdString(host_.prompt() + " " + puffer_));
    }

    void mousePressEvent(QMouseEvent* e) override {
        // Picks are in screen pixels, origin lower left; the host maps them
        // through its view.
        const QPoint pos = e->position().toPoint();
        if (e->button() == Qt::LeftButton) {
            host_.linksklick(pos.x(), simhost::kHoehe - 1 - pos.y());
        } else if (e->button() == Qt::RightButton) {
            host_.rechtsklick();
        }
        update();
    }

    void keyPressEvent(QKeyEvent* e) override {
        switch (e->key()) {
            case Qt::Key_Escape:
                puffer_.clear();
                inAnfuehrung_ = false;
                host_.escape();
                break;
            case Qt::Key_Return:
            case Qt::Key_Enter:
                abschliessen();
                break;
            case Qt::Key_Backspace:
                if (!puffer_.empty()) puffer_.pop_back();
                break;
            default:
                for (const char c : e->text().toStdString()) zeichen(c);
                break;
        }
        update();
    }

  private:
    void zeichen(char c) {
        if (c == '"') inAnfuehrung_ = !inAnfuehrung_;
        // The blank ends an input as Enter does, except in quotes.
        if (c == '\r' || c == '\n') {
            abschliessen();
        } else if (c == ' ' && !inAnfuehrung_) {
            const std::string eingabe = puffer_;
            puffer_.clear();
            host_.eingabe(eingabe);
        } else if (static_cast<unsigned char>(c) >= ' ') {
            puffer_ += c;
        }
    }
    void abschliessen() {
        const std::string eingabe = puffer_;
        puffer_.clear();
        inAnfuehrung_ = false;
        host_.eingabe(eingabe);
    }

    simhost::SimInterpreter& host_;
    std::string puffer_;
    bool inAnfuehrung_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    // Read before Qt sees them: Qt takes "--title" as its own option.
    std::string titel = "AutoCAD LT 2015 - [Zeichnung1.dwg]";
    std::string logDatei;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string a = argv[i];
        if (a == "--title") {
            titel = argv[i + 1];
        } else if (a == "--log") {
            logDatei = argv[i + 1];
        } else {
            std::cerr << "simhost: unbekannte Option " << a << "\n";
            return 2;
        }
    }
    if (logDatei.empty()) {
        std::cerr << "usage: simhost --title TITLE --log FILE\n";
        return 2;
    }
    int qtArgc = 1;
    QApplication app(qtArgc, argv);
    // Binary: the same "\n" lines on every system, for the same tests.
    std::ofstream log(logDatei, std::ios::app | std::ios::binary);
    if (!log) {
        std::cerr << "simhost: cannot write " << logDatei << "\n";
        return 1;
    }
    std::signal(SIGTERM, signalBeenden);
    std::signal(SIGINT, signalBeenden);

    simhost::SimInterpreter host(log);
    HostFenster fenster(host);
    fenster.setWindowTitle(QString::fromLocal8Bit(titel));
    // The top left corner of the screen: the tests' hands click there.
    fenster.move(0, 0);
    fenster.show();
    fenster.raise();
    log << "START " << titel << "\n";
    log.flush();

    // A signal only sets the flag; the loop is left from the event loop.
    QTimer wache;
    QObject::connect(&wache, &QTimer::timeout, [] {
        if (beenden) QApplication::quit();
    });
    wache.start(200);
    const int status = app.exec();
    log << "ENDE\n";
    log.flush();
    return status;
}
