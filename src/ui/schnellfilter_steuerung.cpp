#include "ui/schnellfilter_steuerung.h"

#include <QAction>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include "library/bibliothek_sitzung.h"
#include "startup/fehler_log.h"
#include "ui/beschriften.h"

namespace tessara {

namespace {
QString q(const std::string& s) { return QString::fromStdString(s); }
QIcon loeschSymbol(const QWidget* w) {
    const qreal dpr = w->devicePixelRatioF();
    QPixmap bild(QSize(16, 16) * dpr);
    bild.setDevicePixelRatio(dpr);
    bild.fill(Qt::transparent);
    QPainter p(&bild);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(w->palette().color(QPalette::PlaceholderText), 1.6));
    p.drawLine(QPointF(4.5, 4.5), QPointF(11.5, 11.5));
    p.drawLine(QPointF(11.5, 4.5), QPointF(4.5, 11.5));
    return QIcon(bild);
}

}  // namespace

SchnellfilterSteuerung::SchnellfilterSteuerung(FensterKontext k, QWidget* flaeche)
    : QObject(flaeche), k_(k), abbruch_(std::make_shared<std::atomic<bool>>(false)) {
    setObjectName(QStringLiteral("schnellfilterSteuerung"));
    // One scan at a time: a cancelled scan stops within a few hundred rows,
    // and the next one waits for that only.
    pool_.setMaxThreadCount(1);
    auto* layout = new QVBoxLayout(flaeche);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* lab = new QLabel(flaeche);
    lab->setObjectName(QStringLiteral("labSchnellfilter"));
    txt_ = new QLineEdit(flaeche);
    txt_->setObjectName(QStringLiteral("txtSchnellfilter"));
    // The clear button drawn here: Qt's own looks its icon up in the icon
    // theme, on disk, and that was half the main window's construction.
    auto* leeren = txt_->addAction(loeschSymbol(txt_), QLineEdit::TrailingPosition);
    leeren->setObjectName(QStringLiteral("txtSchnellfilterLeeren"));
    leeren->setVisible(false);
    connect(leeren, &QAction::triggered, txt_, &QLineEdit::clear);
    connect(txt_, &QLineEdit::textChanged, leeren,
            [leeren](const QString& t) { leeren->setVisible(!t.isEmpty()); });
    lab->setBuddy(txt_);
    lis_ = new QListWidget(flaeche);
    lis_->setObjectName(QStringLiteral("lisSchnellfilter"));
    lis_->setUniformItemSizes(true);
    lis_->setMinimumHeight(90);
    auto* zeile = new QHBoxLayout;
    anzahl_ = new QLabel(flaeche);
    // Not a captioned control: its caption is the count's format, filled in here.
    anzahl_->setObjectName(QStringLiteral("schnellfilterTreffer"));
    einfuegen_ = new QPushButton(flaeche);
    einfuegen_->setObjectName(QStringLiteral("cmdSchnellfilterEinfuegen"));
    zeile->addWidget(anzahl_, 1);
    zeile->addWidget(einfuegen_);
    layout->addWidget(lab);
    layout->addWidget(txt_);
    layout->addWidget(lis_, 1);
    layout->addLayout(zeile);
    anzahl_->clear();

    connect(txt_, &QLineEdit::textChanged, this, [this] { textGeaendert(); });
    txt_->installEventFilter(this);
    lis_->installEventFilter(this);
    connect(lis_, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* it) { springen(lis_->row(it)); });
    connect(einfuegen_, &QPushButton::clicked, this,
            [this] { einfuegen(lis_->currentRow() < 0 ? 0 : lis_->currentRow()); });
    connect(&lesen_, &QFutureWatcher<Gelesen>::finished, this, [this] {
        Gelesen g = lesen_.result();
        const std::string db = strGelesen_;
        strGelesen_.clear();
        if (!g.zeilen) {
            subErrorAllgemein(k_.z, true, "Schnellsuche: " + db + ": " + g.fehler, 0);
            return;
        }
        setSchnappschuss(std::move(g.zeilen), db);
    });
}

SchnellfilterSteuerung::~SchnellfilterSteuerung() {
    abbruch_->store(true);
    pool_.waitForDone();
    lesen_.waitForFinished();
}

// Enter shows the hit (the first one from the box) and goes no further: the
// main window would take it for its insert command. Down in the box moves
// into the list.
bool SchnellfilterSteuerung::eventFilter(QObject* o, QEvent* e) {
    if (e->type() != QEvent::KeyPress) return QObject::eventFilter(o, e);
    const int taste = static_cast<QKeyEvent*>(e)->key();
    if (taste == Qt::Key_Return || taste == Qt::Key_Enter) {
        if (lis_->count() > 0) springen(lis_->currentRow() < 0 ? 0 : lis_->currentRow());
        return true;
    }
    if (o == txt_ && taste == Qt::Key_Down && lis_->count() > 0) {
        lis_->setFocus();
        if (lis_->currentRow() < 0) lis_->setCurrentRow(0);
        return true;
    }
    return QObject::eventFilter(o, e);
}

void SchnellfilterSteuerung::setSchnappschuss(std::shared_ptr<const SchnellSchnappschuss> zeilen,
                                              const std::string& strDb) {
    zeilen_ = std::move(zeilen);
    strDb_ = strDb;
    if (!txt_->text().isEmpty()) scanStarten();
}

void SchnellfilterSteuerung::textGeaendert() {
    if (txt_->text().isEmpty()) {
        abbruch_->store(true);
        ++generation_;
        lis_->clear();
        gesamt_ = 0;
        laeuft_ = false;
        anzahl_->clear();
        return;
    }
    const std::string db = k_.sitzung.modell().strDatenbank();
    if (!zeilen_ || strDb_ != db) {
        // The scan follows once the library's rows are read.
        abbruch_->store(true);
        ++generation_;
        lis_->clear();
        if (strGelesen_ != db) schnappschussLesen();
        return;
    }
    scanStarten();
}

void SchnellfilterSteuerung::schnappschussLesen() {
    const std::string db = k_.sitzung.modell().strDatenbank();
    if (db.empty() || lesen_.isRunning()) return;
    strGelesen_ = db;
    const std::string tabelle = k_.z.strTblBlockInfo;
    lesen_.setFuture(QtConcurrent::run([db, tabelle]() -> Gelesen {
        try {
            return {fctSchnellSchnappschussLesen(db, tabelle), {}};
        } catch (const std::exception& e) {
            return {nullptr, e.what()};
        }
    }));
}

void SchnellfilterSteuerung::scanStarten() {
    abbruch_->store(true);
    abbruch_ = std::make_shared<std::atomic<bool>>(false);
    const int gen = ++generation_;
    lis_->clear();
    gesamt_ = 0;
    laeuft_ = true;
    listenZeilen_ = zeilen_;
    anzahlZeigen();
    auto zeilen = zeilen_;
    auto abbruch = abbruch_;
    const std::string nadel = fctSchnellfilterFalten(txt_->text().toStdString());
    pool_.start([this, zeilen, abbruch, nadel, gen] {
        const bool ganz = fctSchnellfilterScannen(
            *zeilen, nadel, *abbruch, [this, gen](std::vector<std::size_t> treffer) {
                QMetaObject::invokeMethod(
                    this,
                    [this, gen, treffer = std::move(treffer)] {
                        if (gen != generation_) return;
                        gesamt_ += static_cast<long>(treffer.size());
                        for (std::size_t i : treffer) {
                            if (lis_->count() >= kAngezeigt) break;
                            const auto& z = (*listenZeilen_)[i];
                            auto* it = new QListWidgetItem(
                                q(z.Block) + (z.M0.empty() ? QString() : "  " + q(z.M0)), lis_);
                            it->setData(Qt::UserRole, static_cast<qulonglong>(i));
                            it->setToolTip(it->text());
                        }
                        anzahlZeigen();
                        emit trefferGeliefert();
                    },
                    Qt::QueuedConnection);
            });
        if (!ganz) return;
        QMetaObject::invokeMethod(
            this,
            [this, gen] {
                if (gen != generation_) return;
                laeuft_ = false;
                anzahlZeigen();
                emit scanFertig(gesamt_);
            },
            Qt::QueuedConnection);
    });
}

void SchnellfilterSteuerung::anzahlZeigen() {
    QString format = ui::fctText(k_.z, QStringLiteral("frmBlockverwaltung"),
                                 QStringLiteral("labSchnellfilterTreffer"));
    if (!format.contains(QLatin1String("%1"))) format = QStringLiteral("%1");
    anzahl_->setText(format.arg(gesamt_) + (laeuft_ ? QStringLiteral(" …") : QString()));
}

const typSchnellZeile* SchnellfilterSteuerung::zeile(int listenZeile) const {
    const QListWidgetItem* it = lis_->item(listenZeile);
    if (!it || !listenZeilen_) return nullptr;
    const auto i = static_cast<std::size_t>(it->data(Qt::UserRole).toULongLong());
    return i < listenZeilen_->size() ? &(*listenZeilen_)[i] : nullptr;
}

bool SchnellfilterSteuerung::springen(int listenZeile) {
    const auto* z = zeile(listenZeile);
    return z && k_.aktionen.zumBlockSpringen(z->Block);
}

bool SchnellfilterSteuerung::einfuegen(int listenZeile) {
    const auto* z = zeile(listenZeile);
    return z && k_.aktionen.blockEinfuegen(z->Block);
}

}  // namespace tessara
