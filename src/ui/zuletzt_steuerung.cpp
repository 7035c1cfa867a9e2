#include "ui/zuletzt_steuerung.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>
#include <map>

#include "search/zuletzt_eingefuegt.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "ui/such_aktionen.h"

namespace tessara {

namespace {

const QSize kBild(48, 36);

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

ZuletztSteuerung::ZuletztSteuerung(FrmBlockverwaltung& haupt, QWidget* flaeche)
    : QObject(&haupt), haupt_(haupt), maler_(haupt.vorschau()) {
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
    connect(&haupt_, &FrmBlockverwaltung::einfuegungBeendet, this,
            [this](int n) { nachEinfuegung(n); });
    // A library opened or switched: its own list.
    connect(&haupt_, &FrmBlockverwaltung::seiteGemalt, this, [this] { bibliothekPruefen(); });
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
    const std::string db = haupt_.modell().offen() ? haupt_.modell().strDatenbank() : std::string();
    if (db == strDb_) return;
    strDb_ = db;
    liste_ = db.empty() ? std::vector<std::string>()
                        : fctZuletztLesen(haupt_.zustand(), fctVerzeichnisVon(db));
    zeigen();
}

void ZuletztSteuerung::nachEinfuegung(int eingefuegt) {
    bibliothekPruefen();
    if (eingefuegt <= 0 || strDb_.empty() || haupt_.zuletztEingefuegt().empty()) return;
    liste_ = fctZuletztErgaenzen(liste_, haupt_.zuletztEingefuegt());
    fctZuletztSpeichern(haupt_.zustand(), fctVerzeichnisVon(strDb_), liste_);
    zeigen();
}

void ZuletztSteuerung::zeigen() {
    ProgrammZustand& z = haupt_.zustand();
    Prozedur p(z, "ZuletztAnzeigen", true);
    lis_->clear();
    if (liste_.empty() || !haupt_.modell().offen()) {
        maler_.abbrechen();
        emit listeGezeigt();
        return;
    }
    // Slide and name of every block of the list, in one statement.
    std::map<std::string, std::pair<std::string, std::string>> daten;
    std::string bedingung;
    for (const auto& nr : liste_)
        if (nr.find('\'') == std::string::npos)
            bedingung += (bedingung.empty() ? "" : " OR ") + std::string("Block = '") + nr + "'";
    p.geschuetztNurLog([&] {
        p.step("Blöcke lesen");
        db::Recordset rs;
        if (!bedingung.empty())
            rs.open("SELECT Block, SlideLib, M0 FROM tblBlockInfo WHERE " + bedingung,
                    haupt_.modell().datenbank().con);
        if (rs.state() == db::adStateOpen && rs.recordCount() > 0)
            for (rs.moveFirst(); !rs.eof(); rs.moveNext())
                daten[rs.text("Block")] = {rs.text("SlideLib"), rs.text("M0")};
    });
    QStringList bilder;
    for (const auto& nr : liste_) {
        const auto it = daten.find(nr);
        const std::string name = it == daten.end() ? std::string() : it->second.second;
        auto* eintrag =
            new QListWidgetItem(q(nr) + (name.empty() ? QString() : "  " + q(name)), lis_);
        eintrag->setData(Qt::UserRole, q(nr));
        eintrag->setToolTip(eintrag->text());
        bilder << (it == daten.end() ? QString() : ui::fctVorschauName(haupt_, it->second.first));
    }
    maler_.seiteAnfordern(bilder, kBild, ui::DiaHintergrund::Dunkel);
}

bool ZuletztSteuerung::einfuegen(int zeile) {
    const QListWidgetItem* it = lis_->item(zeile);
    return it && ui::fctBlockEinfuegen(haupt_, it->data(Qt::UserRole).toString().toStdString());
}

}  // namespace tessara
