#include "ui/preview_cache.h"

#include <QFileInfo>
#include <QMetaObject>
#include <QMutexLocker>
#include <QtConcurrent/QtConcurrentMap>

#include "authoring/dwg_preview.h"
#include "authoring/slide_library.h"
#include "platform/environment.h"
#include "ui/dwg_preview_image.h"

namespace tessara::ui {

DiaVorschauCache::DiaVorschauCache(int maxBilder, Protokoll protokoll)
    : cache_(maxBilder), protokoll_(std::move(protokoll)) {}

void DiaVorschauCache::protokollSetzen(Protokoll protokoll, QObject* kontext) {
    QMutexLocker lock(&protokollMutex_);
    protokoll_ = std::move(protokoll);
    kontext_ = kontext;
}

DiaVorschauCache::Stand DiaVorschauCache::standErmitteln(const std::string& bildname, QSize groesse,
                                                         DiaHintergrund hintergrund) const {
    auto teile = slide::fctBildnameZerlegen(bildname);
    const QString nativ = QString::fromStdString(platform::nativePath(teile.datei));
    const QString eintrag = QString::fromStdString(teile.eintrag).toUpper();
    // QFileInfo stats once and answers existence, size and time from that.
    const QFileInfo info(nativ);
    Stand s;
    s.vorhanden = info.isFile();
    s.datei = nativ + QLatin1Char('|') + eintrag + QLatin1Char('|');
    if (s.vorhanden)
        s.datei += QString::number(info.lastModified().toMSecsSinceEpoch()) + QLatin1Char('|') +
                   QString::number(info.size());
    else
        s.datei += QLatin1String("fehlt");
    s.schluessel = s.datei + QLatin1Char('|') + QString::number(groesse.width()) +
                   QLatin1Char('x') + QString::number(groesse.height()) + QLatin1Char('|') +
                   QString::number(static_cast<int>(hintergrund));
    return s;
}

DiaVorschauCache::Stand DiaVorschauCache::standMitZeichnung(const std::string& bildname,
                                                            const std::string& zeichnung,
                                                            QSize groesse,
                                                            DiaHintergrund hintergrund) const {
    Stand s = standErmitteln(bildname, groesse, hintergrund);
    if (s.vorhanden || zeichnung.empty()) return s;
    // Kept under the drawing's state, so that a drawing saved anew is read
    // anew; a missing drawing is kept as missing under both names.
    Stand z = standErmitteln(platform::programPath(zeichnung), groesse, hintergrund);
    z.zeichnung = true;
    if (!z.vorhanden) z.schluessel = s.schluessel + QLatin1Char('|') + z.schluessel;
    if (!z.vorhanden) z.datei = s.datei;
    return z;
}

std::optional<QImage> DiaVorschauCache::nachschlagen(const QString& schluessel) {
    QMutexLocker lock(&mutex_);
    if (QImage* vorhanden = cache_.object(schluessel)) {
        ++treffer_;
        return *vorhanden;
    }
    return std::nullopt;
}

void DiaVorschauCache::ablegen(const QString& schluessel, const QImage& bild) {
    QMutexLocker lock(&mutex_);
    cache_.insert(schluessel, new QImage(bild));
}

void DiaVorschauCache::melden(const QString& datei, const std::string& zeile) {
    Protokoll protokoll;
    QPointer<QObject> kontext;
    {
        QMutexLocker lock(&protokollMutex_);
        if (!protokoll_ || gemeldet_.contains(datei)) return;
        gemeldet_.insert(datei);
        protokoll = protokoll_;
        kontext = kontext_;
    }
    // Called outside the lock, so that a receiver may use the cache again.
    if (kontext) {
        QMetaObject::invokeMethod(
            kontext.data(), [protokoll, zeile] { protokoll(zeile); }, Qt::AutoConnection);
    } else {
        QMutexLocker lock(&aufrufMutex_);
        protokoll(zeile);
    }
}

std::optional<QImage> DiaVorschauCache::ohneLesen(const Stand& s, const std::string& bildname,
                                                  QSize groesse, DiaHintergrund hintergrund) {
    if (auto bild = nachschlagen(s.schluessel)) return bild;
    if (s.vorhanden) return std::nullopt;
    // Every missing file looks alike: one picture per size and background.
    melden(s.datei, "Keine Vorschau: " + bildname + ": Datei nicht gefunden");
    QImage bild = fctKeineVorschauBild(groesse, hintergrund);
    ablegen(s.schluessel, bild);
    return bild;
}

std::optional<QImage> DiaVorschauCache::sofort(const std::string& bildname, QSize groesse,
                                               DiaHintergrund hintergrund,
                                               const std::string& zeichnung) {
    return ohneLesen(standMitZeichnung(bildname, zeichnung, groesse, hintergrund), bildname,
                     groesse, hintergrund);
}

QImage DiaVorschauCache::bild(const std::string& bildname, QSize groesse,
                              DiaHintergrund hintergrund, const std::string& zeichnung) {
    const Stand s = standMitZeichnung(bildname, zeichnung, groesse, hintergrund);
    if (auto fertig = ohneLesen(s, bildname, groesse, hintergrund)) return *fertig;
    QImage bild;
    try {
        if (s.zeichnung) {
            auto vorschau = dwg::fctVorschauLesenDatei(zeichnung);
            if (!vorschau) throw dwg::DwgError(zeichnung + ": the drawing carries no preview");
            bild = fctZeichnungVorschauBild(*vorschau, groesse, hintergrund);
        } else {
            bild = fctDiaBild(slide::fctDiaLaden(bildname), groesse, {hintergrund, true});
        }
        ++gemalt_;
    } catch (const std::exception& e) {
        melden(s.datei, std::string("Keine Vorschau: ") + e.what());
        bild = fctKeineVorschauBild(groesse, hintergrund);
    }
    ablegen(s.schluessel, bild);
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
