#pragma once
// Previews of a Page: each slot's picture painted at the slot's size, off
// the user-interface thread, and kept by file, entry, modification time,
// size and background, so that paging back and forth paints nothing twice
// while a slide that was taken again is painted anew.
#include <QCache>
#include <QFuture>
#include <QImage>
#include <QMutex>
#include <QSize>
#include <QString>
#include <QStringList>
#include <atomic>
#include <string>

#include "ui/slide_painter.h"

namespace tessara::ui {

class DiaVorschauCache {
  public:
    explicit DiaVorschauCache(int maxBilder = 1024);

    // The preview of one picture name ("...\x.sld" or "...\x.slb(0A)", program
    // form). Thread-safe. An unreadable picture gives fctFehlerBild and is not
    // kept, so that it is read again once it has been repaired.
    QImage bild(const std::string& bildname, QSize groesse, DiaHintergrund hintergrund);

    // Paints the pictures of a Page on the global thread pool; the results
    // come in the order of the names.
    QFuture<QImage> seiteMalen(const QStringList& bildnamen, QSize groesse,
                               DiaHintergrund hintergrund);

    void leeren();
    int treffer() const { return treffer_.load(); }
    int gemalt() const { return gemalt_.load(); }

  private:
    QMutex mutex_;
    QCache<QString, QImage> cache_;
    std::atomic<int> treffer_{0};
    std::atomic<int> gemalt_{0};
};

}  // namespace tessara::ui
