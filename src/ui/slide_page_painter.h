#pragma once
// Paints the previews of a Page for a window without holding it up: what the
// cache already has is handed back at once, the rest is painted on worker
// threads and handed back picture by picture on the window's thread. Each
// request carries a generation number; when the user flips on, the older
// request is dropped: pictures not yet begun are never painted, pictures
// finished late are never handed back.
#include <QImage>
#include <QObject>
#include <QSize>
#include <QStringList>
#include <QThreadPool>
#include <atomic>

#include "ui/preview_cache.h"
#include "ui/slide_painter.h"

namespace tessara::ui {

class DiaMaler : public QObject {
    Q_OBJECT
  public:
    // The cache must outlive the painter.
    explicit DiaMaler(DiaVorschauCache& cache, QObject* parent = nullptr);
    // Drops the current request and waits for the pictures in hand.
    ~DiaMaler() override;

    // Asks for the pictures of a Page, slot i showing bildnamen[i], and
    // answers the new generation. Slots the cache can answer (one stat each)
    // are handed back through bildFertig before this returns, in slot order;
    // the others follow from the worker threads as each is painted. When all
    // slots are in, seiteFertig follows (also before this returns when every
    // slot was in the cache). zeichnungen, when given, holds each slot's
    // drawing, whose preview stands in for a missing slide.
    int seiteAnfordern(const QStringList& bildnamen, QSize groesse, DiaHintergrund hintergrund,
                       const QStringList& zeichnungen = {});
    // Drops the current request (the window shows no Page any more).
    void abbrechen();

    int generation() const { return generation_; }
    // Slots of the current request not yet handed back.
    int offen() const { return offen_; }

  signals:
    void bildFertig(int generation, int slot, const QImage& bild);
    void seiteFertig(int generation);

  private:
    void abliefern(int generation, int slot, const QImage& bild);

    DiaVorschauCache& cache_;
    QThreadPool pool_;
    std::atomic<int> gueltig_{0};  // the generation the workers still paint for
    int generation_ = 0;
    int offen_ = 0;
};

}  // namespace tessara::ui
