#include "ui/frm_suchergebnis.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <map>

#include "authoring/datei_layout.h"
#include "library/bibliothek_sitzung.h"
#include "platform/environment.h"
#include "startup/fehler_log.h"
#include "ui/beschriften.h"

namespace tessara {

namespace {

constexpr const char* kForm = "frmSuchergebnis";
const QSize kVorschau(96, 72);
enum Spalte { Vorschau, Blocknummer, Ordner, Seite, Ansichten, Benennung, Spalten };
constexpr int kSortierSchluessel = Qt::UserRole + 1;

// Sorts by its key where it has one (the Page by Folder and number, not by
// the name shown), else by its text.
class Eintrag : public QTableWidgetItem {
  public:
    using QTableWidgetItem::QTableWidgetItem;
    bool operator<(const QTableWidgetItem& o) const override {
        const QVariant a = data(kSortierSchluessel), b = o.data(kSortierSchluessel);
        if (a.isValid() && b.isValid()) return a.toLongLong() < b.toLongLong();
        return QString::localeAwareCompare(text(), o.text()) < 0;
    }
};

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

FrmSuchergebnis::FrmSuchergebnis(FensterKontext k, std::vector<typSuchTreffer> treffer,
                                 QWidget* eltern)
    : QDialog(eltern), k_(k), treffer_(std::move(treffer)), maler_(k.vorschau) {
    setObjectName(QString::fromLatin1(kForm));
    auto* layout = new QVBoxLayout(this);
    labTreffer_ = new QLabel(this);
    labTreffer_->setObjectName(QStringLiteral("labTreffer"));
    layout->addWidget(labTreffer_);
    grid_ = new QTableWidget(this);
    grid_->setObjectName(QStringLiteral("DataGrid1"));
    grid_->setColumnCount(Spalten);
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->setIconSize(kVorschau);
    grid_->verticalHeader()->hide();
    grid_->verticalHeader()->setDefaultSectionSize(kVorschau.height() + 6);
    grid_->horizontalHeader()->setStretchLastSection(true);
    grid_->installEventFilter(this);
    layout->addWidget(grid_, 1);
    auto* knoepfe = new QHBoxLayout;
    auto* springen = new QPushButton(this);
    springen->setObjectName(QStringLiteral("cmdSpringen"));
    auto* einfuegen = new QPushButton(this);
    einfuegen->setObjectName(QStringLiteral("cmbEinfuegen"));
    auto* schliessen = new QPushButton(this);
    schliessen->setObjectName(QStringLiteral("cmbSchliessen"));
    for (auto* b : {springen, einfuegen, schliessen}) b->setAutoDefault(false);
    knoepfe->addWidget(springen);
    knoepfe->addWidget(einfuegen);
    knoepfe->addStretch(1);
    knoepfe->addWidget(schliessen);
    layout->addLayout(knoepfe);

    ProgrammZustand& z = k_.z;
    ui::subFormularBeschriften(z, this);
    const QString form = QString::fromLatin1(kForm);
    QStringList koepfe;
    for (const char* c :
         {"colVorschau", "colBlock", "colOrdner", "colSeite", "colAnsichten", "colBenennung"})
        koepfe << ui::fctText(z, form, QString::fromLatin1(c));
    grid_->setHorizontalHeaderLabels(koepfe);
    QString format = ui::fctText(z, form, QStringLiteral("labTreffer"));
    if (!format.contains(QLatin1String("%1"))) format = QStringLiteral("%1");
    labTreffer_->setText(format.arg(treffer_.size()));

    connect(grid_, &QTableWidget::cellDoubleClicked, this, [this] { cmdSpringen_Click(); });
    connect(springen, &QPushButton::clicked, this, [this] { cmdSpringen_Click(); });
    connect(einfuegen, &QPushButton::clicked, this, [this] { cmbEinfuegen_Click(); });
    connect(schliessen, &QPushButton::clicked, this, [this] { close(); });
    connect(&maler_, &ui::DiaMaler::bildFertig, this, [this](int gen, int i, const QImage& bild) {
        if (gen == maler_.generation() && i >= 0 && i < static_cast<int>(vorschau_.size()))
            vorschau_[i]->setIcon(QIcon(QPixmap::fromImage(bild)));
    });
    connect(&maler_, &ui::DiaMaler::seiteFertig, this, [this](int gen) {
        if (gen == maler_.generation()) emit vorschauFertig();
    });
    fuellen();
    resize(820, 520);
}

FrmSuchergebnis::~FrmSuchergebnis() { maler_.abbrechen(); }

void FrmSuchergebnis::fuellen() {
    Prozedur p(k_.z, "SuchergebnisAnzeigen", true);
    auto& m = k_.sitzung.modell();
    // Page names by Folder and Page number, read once for all hits.
    std::map<std::pair<long, long>, std::string> seitenNamen;
    p.geschuetztNurLog([&] {
        p.step("Seiten lesen");
        seitenNamen = fctSeitenNamenLesen(m.datenbank().con);
    });
    grid_->setSortingEnabled(false);
    grid_->setRowCount(static_cast<int>(treffer_.size()));
    vorschau_.clear();
    QStringList bilder, zeichnungen;
    for (int i = 0; i < static_cast<int>(treffer_.size()); ++i) {
        const typSuchTreffer& t = treffer_[i];
        std::string ordner;
        int ordnerIndex = -1;
        for (int k = 0; k < static_cast<int>(m.aryOrdner().size()); ++k) {
            const auto& o = m.aryOrdner()[k];
            if (o.Nr == t.OrdnerID || (ordnerIndex < 0 && o.OrdnerNr.substr(0, 3) == t.OrdnerNr)) {
                ordner = o.OrdnerName;
                ordnerIndex = k;
                if (o.Nr == t.OrdnerID) break;
            }
        }
        const long seite = m.fctSeiteNrErmitteln(t.Block);
        QString seitenText;
        if (seite >= 0) {
            auto it = seitenNamen.find({t.OrdnerID, seite + 1});
            seitenText = it != seitenNamen.end() && !it->second.empty()
                             ? q(it->second)
                             : QString::number(seite + 1);
        }
        QStringList ansichten;
        for (const auto& n : t.BlkName)
            if (!n.empty()) ansichten << q(n);

        auto* vorschau = new Eintrag;
        vorschau->setData(kSortierSchluessel, i);
        auto* block = new Eintrag(q(t.Block));
        block->setData(Qt::UserRole, i);
        auto* seitenEintrag = new Eintrag(seitenText);
        seitenEintrag->setData(kSortierSchluessel,
                               static_cast<qlonglong>(ordnerIndex + 1) * 1000000 + seite + 1);
        grid_->setItem(i, Vorschau, vorschau);
        grid_->setItem(i, Blocknummer, block);
        grid_->setItem(i, Ordner, new Eintrag(q(ordner)));
        grid_->setItem(i, Seite, seitenEintrag);
        grid_->setItem(i, Ansichten, new Eintrag(ansichten.join(QStringLiteral(", "))));
        grid_->setItem(i, Benennung, new Eintrag(q(t.M0)));
        vorschau_.push_back(vorschau);
        bilder << ui::fctVorschauName(k_.sitzung, t.SlideLib);
        // A Block whose slide is missing shows the preview its drawing carries.
        zeichnungen << (ordnerIndex >= 0
                            ? q(platform::nativePath(
                                  m.strBasisVerzeichnis() +
                                  fctZeichnungDatei(m.aryOrdner()[ordnerIndex].OrdnerNr, t.Block,
                                                    0)))
                            : QString());
    }
    grid_->setSortingEnabled(true);
    grid_->sortByColumn(Blocknummer, Qt::AscendingOrder);
    grid_->resizeColumnsToContents();
    grid_->setColumnWidth(Vorschau, kVorschau.width() + 8);
    if (grid_->rowCount() > 0) grid_->selectRow(0);
    maler_.seiteAnfordern(bilder, kVorschau, ui::DiaHintergrund::Dunkel, zeichnungen);
}

const typSuchTreffer* FrmSuchergebnis::trefferInZeile(int zeile) const {
    const QTableWidgetItem* it = grid_->item(zeile, Blocknummer);
    if (!it) return nullptr;
    const int i = it->data(Qt::UserRole).toInt();
    return i >= 0 && i < static_cast<int>(treffer_.size()) ? &treffer_[i] : nullptr;
}

bool FrmSuchergebnis::cmdSpringen_Click() {
    const auto* t = trefferInZeile(grid_->currentRow());
    return t && k_.aktionen.zumBlockSpringen(t->Block);
}

bool FrmSuchergebnis::cmbEinfuegen_Click() {
    const auto* t = trefferInZeile(grid_->currentRow());
    return t && k_.aktionen.blockEinfuegen(t->Block);
}

bool FrmSuchergebnis::eventFilter(QObject* o, QEvent* e) {
    if (o == grid_ && e->type() == QEvent::KeyPress) {
        const int taste = static_cast<QKeyEvent*>(e)->key();
        if (taste == Qt::Key_Return || taste == Qt::Key_Enter) {
            cmdSpringen_Click();
            return true;
        }
    }
    return QDialog::eventFilter(o, e);
}

}  // namespace tessara
