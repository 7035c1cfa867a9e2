#include "ui/preview_cache.h"

#include <QMutexLocker>
#include <QtConcurrent/QtConcurrentMap>
#include <filesystem>

#include "authoring/slide_library.h"
#include "platform/environment.h"

namespace tessara::ui {

DiaVorschauCache::DiaVorschauCache(int maxBilder) : cache_(maxBilder) {}

QImage DiaVorschauCache::bild(const std::string& bildname, QSize groesse,
                              DiaHintergrund hintergrund) {
    auto teile = slide::fctBildnameZerlegen(bildname);
    std::string nativ = platform::nativePath(teile.datei);
    std::error_code ec;
    auto zeit = std::filesystem::last_write_time(nativ, ec);
    if (ec) return fctFehlerBild(groesse, hintergrund);
    QString eintrag = QString::fromStdString(teile.eintrag).toUpper();
    QString schluessel = QString::fromStdString(nativ) + QLatin1Char('|') + eintrag +
                         QLatin1Char('|') +
                         QString::number(static_cast<qlonglong>(zeit.time_since_epoch().count())) +
                         QLatin1Char('|') + QString::number(groesse.width()) + QLatin1Char('x') +
                         QString::number(groesse.height()) + QLatin1Char('|') +
                         QString::number(static_cast<int>(hintergrund));
    {
        QMutexLocker lock(&mutex_);
        if (QImage* vorhanden = cache_.object(schluessel)) {
            ++treffer_;
            return *vorhanden;
        }
    }
    QImage bild;
    try {
        bild = fctDiaBild(slide::fctDiaLaden(bildname), groesse, {hintergrund, true});
    } catch (const std::exception&) {
        return fctFehlerBild(groesse, hintergrund);
    }
    ++gemalt_;
    QMutexLocker lock(&mutex_);
    cache_.insert(schluessel, new QImage(bild));
    return bild;
}

QFuture<QImage> DiaVorschauCache::seiteMalen(const QStringList& bildnamen, QSize groesse,
                                             DiaHintergrund hintergrund) {
    return QtConcurrent::mapped(bildnamen, [this, groesse, hintergrund](const QString& name) {
        return bild(name.toStdString(), groesse, hintergrund);
    });
}

void DiaVorschauCache::leeren() {
    QMutexLocker lock(&mutex_);
    cache_.clear();
}

}  // namespace tessara::ui
