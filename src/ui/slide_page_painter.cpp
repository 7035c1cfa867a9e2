#include "ui/slide_page_painter.h"

#include <QMetaObject>
#include <QThread>
#include <algorithm>

namespace tessara::ui {

DiaMaler::DiaMaler(DiaVorschauCache& cache, QObject* parent) : QObject(parent), cache_(cache) {
    // Reading a slide from a network share waits more than it computes: a
    // few more threads than cores keep the cores busy.
    pool_.setMaxThreadCount(std::max(4, QThread::idealThreadCount()));
}

DiaMaler::~DiaMaler() {
    abbrechen();
    pool_.waitForDone();
}

int DiaMaler::seiteAnfordern(const QStringList& bildnamen, QSize groesse,
                             DiaHintergrund hintergrund, const QStringList& zeichnungen) {
    abbrechen();
    const int gen = generation_;
    offen_ = static_cast<int>(bildnamen.size());
    for (int slot = 0; slot < bildnamen.size(); ++slot) {
        const std::string name = bildnamen[slot].toStdString();
        const std::string dwg = slot < zeichnungen.size() ? zeichnungen[slot].toStdString() : "";
        if (auto bild = cache_.sofort(name, groesse, hintergrund, dwg)) {
            abliefern(gen, slot, *bild);
            if (generation_ != gen) return gen;  // a receiver asked for another Page
            continue;
        }
        pool_.start([this, gen, slot, name, dwg, groesse, hintergrund] {
            if (gueltig_.load() != gen) return;
            QImage bild = cache_.bild(name, groesse, hintergrund, dwg);
            QMetaObject::invokeMethod(
                this, [this, gen, slot, bild] { abliefern(gen, slot, bild); },
                Qt::QueuedConnection);
        });
    }
    if (bildnamen.isEmpty()) emit seiteFertig(gen);
    return gen;
}

void DiaMaler::abbrechen() {
    ++generation_;
    gueltig_.store(generation_);
    offen_ = 0;
    pool_.clear();  // what has not begun is never painted
}

void DiaMaler::abliefern(int gen, int slot, const QImage& bild) {
    if (gen != generation_) return;
    --offen_;
    emit bildFertig(gen, slot, bild);
    if (gen == generation_ && offen_ == 0) emit seiteFertig(gen);
}

}  // namespace tessara::ui
