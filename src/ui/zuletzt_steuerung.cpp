#include "ui/zuletzt_steuerung.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>
#include <map>

#include "library/bibliothek_sitzung.h"
#include "search/zuletzt_eingefuegt.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

const QSize kBild(48, 36);

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

ZuletztSteuerung::ZuletztSteuerung(FensterKontext k, QWidget* flaeche)
    : QObject(flaeche), k_(k), maler_(k.vorschau) {
    setObjectName(QStringLiteral("zuletztSteuerung"));
    auto* layout = new QVBoxLayout(flaeche);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* lab = new QLabel(flaeche);
    lab->setObjectName(QStringLiteral("labZuletzt"));
    lis_ = new QListWidget(flaeche);
    lis_->setObjectName(QStringLiteral("lisZuletzt"));
    lis_->setIconSize(kBild);
    lis_->setUniformItemSizes(true);
    lis_->setMinimumHeight(kBild.height() * 2 + 12);
    lis_->setMaximumHeight(kBild.height() * 4 + 12);
    layout->addWidget(lab);
    layout->addWidget(lis_);
    lis_->installEventFilter(this);
    connect(lis_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* it) { einfuegen(lis_->row(it)); });
    connect(&k_.aktionen, &BlockAktionen::einfuegungBeendet, this,
            [this](int n) { nachEinfuegung(n); });
    // A library opened or switched: its own list.
    connect(&k_.aktionen, &BlockAktionen::seiteGemalt, this, [this] { bibliothekPruefen(); });
    connect(&maler_, &ui::DiaMaler::bildFertig, this, [this](int gen, int i, const QImage& b) {
        if (gen == maler_.generation() && lis_->item(i))
            lis_->item(i)->setIcon(QIcon(QPixmap::fromImage(b)));
    });
    connect(&maler_, &ui::DiaMaler::seiteFertig, this, [this](int gen) {
        if (gen == maler_.generation()) emit listeGezeigt();
    });
}

ZuletztSteuerung::~ZuletztSteuerung() { maler_.abbrechen(); }

// Enter inserts the chosen block, as a click does, and goes no further: the
// main window would insert its own selection.
bool ZuletztSteuerung::eventFilter(QObject* o, QEvent* e) {
    if (o == lis_ && e->type() == QEvent::KeyPress) {
        const int taste = static_cast<QKeyEvent*>(e)->key();
        if (taste == Qt::Key_Return || taste == Qt::Key_Enter) {
            einfuegen(lis_->currentRow());
            return true;
        }
    }
    return QObject::eventFilter(o, e);
}

void ZuletztSteuerung::bibliothekPruefen() {
    const auto& m = k_.sitzung.modell();
    const std::string db = m.offen() ? m.strDatenbank() : std::string();
    if (db == strDb_) return;
    strDb_ = db;
    liste_ = db.empty() ? std::vector<std::string>() : fctZuletztLesen(k_.z, fctVerzeichnisVon(db));
    zeigen();
}

void ZuletztSteuerung::nachEinfuegung(int eingefuegt) {
    bibliothekPruefen();
    const auto& neu = k_.aktionen.zuletztEingefuegt();
    if (eingefuegt <= 0 || strDb_.empty() || neu.empty()) return;
    liste_ = fctZuletztErgaenzen(liste_, neu);
    fctZuletztSpeichern(k_.z, fctVerzeichnisVon(strDb_), liste_);
    zeigen();
}

void ZuletztSteuerung::zeigen() {
    Prozedur p(k_.z, "ZuletztAnzeigen", true);
    lis_->clear();
    if (liste_.empty() || !k_.sitzung.modell().offen()) {
        maler_.abbrechen();
        emit listeGezeigt();
        return;
    }
    std::map<std::string, typZuletztBlock> daten;
    p.geschuetztNurLog([&] {
        p.step("Blöcke lesen");
        daten = fctZuletztBloeckeLesen(k_.sitzung.modell().datenbank().con, liste_,
                                       k_.z.strTblBlockInfo);
    });
    QStringList bilder;
    for (const auto& nr : liste_) {
        const auto it = daten.find(nr);
        const std::string name = it == daten.end() ? std::string() : it->second.M0;
        auto* eintrag =
            new QListWidgetItem(q(nr) + (name.empty() ? QString() : "  " + q(name)), lis_);
        eintrag->setData(Qt::UserRole, q(nr));
        eintrag->setToolTip(eintrag->text());
        bilder << (it == daten.end() ? QString()
                                     : ui::fctVorschauName(k_.sitzung, it->second.SlideLib));
    }
    maler_.seiteAnfordern(bilder, kBild, ui::DiaHintergrund::Dunkel);
}

bool ZuletztSteuerung::einfuegen(int zeile) {
    const QListWidgetItem* it = lis_->item(zeile);
    return it && k_.aktionen.blockEinfuegen(it->data(Qt::UserRole).toString().toStdString());
}

}  // namespace tessara
