#pragma once
// Previews of a Page: each slot's picture painted at the slot's size, off
// the user-interface thread, and kept by file, entry, modification time,
// file size, picture size and background, so that paging back and forth
// paints nothing twice while a slide that was taken again is painted anew.
#include <QCache>
#include <QFuture>
#include <QImage>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QSize>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "ui/slide_painter.h"

namespace tessara::ui {

class DiaVorschauCache {
  public:
    // Receives one line per picture that cannot be shown.
    using Protokoll = std::function<void(const std::string&)>;

    explicit DiaVorschauCache(int maxBilder = 1024, Protokoll protokoll = {});

    // Where the lines about missing and unreadable pictures go. Each file is
    // reported once for as long as it stays as it is (a file that changes
    // and is still unreadable is reported again). Without kontext the line
    // is handed over on the thread that found the fault, never two at once;
    // with kontext it is handed over on kontext's thread (the error log
    // belongs to the user-interface thread). kontext must outlive the cache's
    // painting.
    void protokollSetzen(Protokoll protokoll, QObject* kontext = nullptr);

    // The answer that needs no reading: the picture kept in the cache, or
    // the no-preview picture when the file does not exist. Touches the file
    // system with one stat (two when the slide is missing and a drawing is
    // given) and nothing else; empty when the picture has to be painted
    // (bild). Thread-safe.
    std::optional<QImage> sofort(const std::string& bildname, QSize groesse,
                                 DiaHintergrund hintergrund, const std::string& zeichnung = {});

    // The preview of one picture name ("...\x.sld" or "...\x.slb(0A)",
    // program form), painted unless kept. A missing or unreadable picture
    // gives fctKeineVorschauBild; an unreadable one is kept under the file's
    // state like any other, so it is read again only once it has changed.
    // When the slide file is missing and zeichnung names the Block's drawing
    // (native path), the preview picture the drawing carries stands in; a
    // drawing without one, or a damaged one, gives fctKeineVorschauBild and
    // is reported like an unreadable slide. Thread-safe.
    QImage bild(const std::string& bildname, QSize groesse, DiaHintergrund hintergrund,
                const std::string& zeichnung = {});

    // Paints the pictures of a Page on the global thread pool; the results
    // come in the order of the names.
    QFuture<QImage> seiteMalen(const QStringList& bildnamen, QSize groesse,
                               DiaHintergrund hintergrund);

    void leeren();
    int treffer() const { return treffer_.load(); }
    // Slides read and painted (unreadable ones do not count).
    int gemalt() const { return gemalt_.load(); }

  private:
    struct Stand {
        bool vorhanden = false;
        bool zeichnung = false;  // the slide is missing, the drawing stands in
        QString datei;           // file, entry and the file's state: what is reported once
        QString schluessel;      // datei, picture size and background: what is kept
    };
    Stand standErmitteln(const std::string& bildname, QSize groesse,
                         DiaHintergrund hintergrund) const;
    // The slide's state, or the drawing's when the slide is missing.
    Stand standMitZeichnung(const std::string& bildname, const std::string& zeichnung,
                            QSize groesse, DiaHintergrund hintergrund) const;
    std::optional<QImage> ohneLesen(const Stand& s, const std::string& bildname, QSize groesse,
                                    DiaHintergrund hintergrund);
    std::optional<QImage> nachschlagen(const QString& schluessel);
    void ablegen(const QString& schluessel, const QImage& bild);
    void melden(const QString& datei, const std::string& zeile);

    QMutex mutex_;
    QCache<QString, QImage> cache_;
    QMutex protokollMutex_;
    QMutex aufrufMutex_;  // one direct call of the receiver at a time
    Protokoll protokoll_;
    QPointer<QObject> kontext_;
    QSet<QString> gemeldet_;
    std::atomic<int> treffer_{0};
    std::atomic<int> gemalt_{0};
};

}  // namespace tessara::ui
