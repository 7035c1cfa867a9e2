#include "ui/qt_benutzer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>

#include "platform/environment.h"
#include "ui/frm_bildausschnitt_anpassen.h"
#include "ui/frm_blockname_eingeben.h"

namespace tessara {

namespace {
QString q(const std::string& s) {
    QString t = QString::fromStdString(s);
    t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    t.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return t;
}
// A dialog's title is often the caption of the menu entry that opened it:
// without its accelerator marks ("&&" stays one "&") and without the
// trailing ellipsis, which on a title promises nothing more.
QString dialogTitel(const std::string& titel) {
    QString t = q(titel);
    QString r;
    for (int i = 0; i < t.size(); ++i) {
        if (t[i] == QLatin1Char('&') && i + 1 < t.size()) ++i;
        r += t[i];
    }
    r = r.trimmed();
    for (const QString& punkte : {QStringLiteral("…"), QStringLiteral("...")})
        if (r.endsWith(punkte)) r = r.left(r.size() - punkte.size()).trimmed();
    return r;
}
}  // namespace

Antwort QtBenutzer::meldung(const std::string& text, const std::string& titel, Symbol symbol,
                            Knoepfe knoepfe) {
    bool angekreuzt = false;
    return zeigen(text, titel, symbol, knoepfe, nullptr, angekreuzt);
}

Antwort QtBenutzer::meldungMitKontrollkaestchen(const std::string& text, const std::string& titel,
                                                Symbol symbol, Knoepfe knoepfe,
                                                const std::string& kaestchen, bool& angekreuzt) {
    return zeigen(text, titel, symbol, knoepfe, &kaestchen, angekreuzt);
}

Antwort QtBenutzer::zeigen(const std::string& text, const std::string& titel, Symbol symbol,
                           Knoepfe knoepfe, const std::string* kaestchen, bool& angekreuzt) {
    angekreuzt = false;
    QMessageBox box(eltern_);
    // The box owns the check box once it is set.
    QCheckBox* haken = kaestchen ? new QCheckBox(q(*kaestchen)) : nullptr;
    if (haken) {
        haken->setObjectName(QStringLiteral("chkNichtMehrAnzeigen"));
        box.setCheckBox(haken);
    }
    box.setWindowTitle(q(titel));
    box.setText(q(text));
    switch (symbol) {
        case Symbol::Information:
            box.setIcon(QMessageBox::Information);
            break;
        case Symbol::Ausrufezeichen:
            box.setIcon(QMessageBox::Warning);
            break;
        case Symbol::Frage:
            box.setIcon(QMessageBox::Question);
            break;
        case Symbol::Kritisch:
            box.setIcon(QMessageBox::Critical);
            break;
        case Symbol::Keins:
            box.setIcon(QMessageBox::NoIcon);
            break;
    }
    switch (knoepfe) {
        case Knoepfe::Ok:
            box.setStandardButtons(QMessageBox::Ok);
            break;
        case Knoepfe::OkAbbrechen:
            box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
            break;
        case Knoepfe::JaNein:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            break;
        case Knoepfe::JaNeinAbbrechen:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            break;
    }
    if (beschriftung_) {
        const std::pair<QMessageBox::StandardButton, const char*> beschriftet[] = {
            {QMessageBox::Ok, "cmbOk"},
            {QMessageBox::Cancel, "cmbAbbrechen"},
            {QMessageBox::Yes, "cmbJa"},
            {QMessageBox::No, "cmbNein"}};
        for (const auto& [knopf, schluessel] : beschriftet) {
            QAbstractButton* b = box.button(knopf);
            const std::string s = b ? beschriftung_(schluessel) : std::string();
            if (!s.empty()) b->setText(q(s));
        }
    }
    // The start window only tells how far the load has come: a box in the
    // middle of the load must not sit half behind it.
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->windowType() == Qt::SplashScreen) w->hide();
    const int ergebnis = box.exec();
    if (haken) angekreuzt = haken->isChecked();
    switch (ergebnis) {
        case QMessageBox::Yes:
            return Antwort::Ja;
        case QMessageBox::No:
            return Antwort::Nein;
        case QMessageBox::Cancel:
            return Antwort::Abbrechen;
        default:
            return Antwort::Ok;
    }
}

std::string QtBenutzer::listeWaehlen(const std::string& titel, const std::string& frage,
                                     const std::vector<std::string>& eintraege) {
    QStringList liste;
    for (const auto& e : eintraege) liste << q(e);
    QInputDialog d(eltern_.data());
    d.setWindowTitle(q(titel));
    d.setLabelText(q(frage));
    d.setComboBoxItems(liste);
    d.setComboBoxEditable(false);
    // The buttons in the user's language, as in the boxes.
    if (beschriftung_) {
        if (const std::string ok = beschriftung_("cmbOk"); !ok.empty()) d.setOkButtonText(q(ok));
        if (const std::string ab = beschriftung_("cmbAbbrechen"); !ab.empty())
            d.setCancelButtonText(q(ab));
    }
    return d.exec() == QDialog::Accepted ? d.textValue().toStdString() : std::string();
}

std::optional<std::string> QtBenutzer::nameEingeben(
    const std::string& fenster, const std::string& vorgabe,
    const std::function<long(const std::string&)>& pruefen) {
    if (!z_) return std::nullopt;
    FrmBlocknameEingeben f(*z_, fenster, vorgabe, pruefen, eltern_);
    if (f.exec() != QDialog::Accepted) return std::nullopt;
    return f.strName();
}

void QtBenutzer::bildausschnittAnpassen(const std::string& strDiaDatei,
                                        const std::function<bool(int)>& anwenden) {
    if (!z_) return;
    FrmBildausschnittAnpassen f(*z_, strDiaDatei, anwenden, eltern_);
    f.exec();
}

std::string QtBenutzer::ordnerWaehlen(const std::string& titel, const std::string& start) {
    QString d = QFileDialog::getExistingDirectory(
        eltern_, dialogTitel(titel), QString::fromStdString(platform::nativePath(start)));
    return d.isEmpty() ? std::string() : platform::programPath(d.toStdString());
}

// The program's filters are written as Windows' common dialogs take them,
// "Name (*.str)|*.str|Alle (*.*)|*.*"; Qt wants "Name (*.str);;Alle (*.*)".
QString fctQtFilter(const std::string& filter) {
    const QStringList teile = q(filter).split(QLatin1Char('|'));
    if (teile.size() < 2) return q(filter);
    QStringList namen;
    for (int i = 0; i + 1 < teile.size(); i += 2) {
        QString name = teile[i];
        if (!name.contains(QLatin1Char('(')))
            name += QStringLiteral(" (") + teile[i + 1] + QLatin1Char(')');
        namen << name;
    }
    return namen.join(QStringLiteral(";;"));
}

std::string QtBenutzer::dateiWaehlen(const std::string& titel, const std::string& start,
                                     const std::string& filter, bool speichern) {
    const QString s = QString::fromStdString(platform::nativePath(start));
    const QString qf = fctQtFilter(filter);
    QString f = speichern ? QFileDialog::getSaveFileName(eltern_, dialogTitel(titel), s, qf)
                          : QFileDialog::getOpenFileName(eltern_, dialogTitel(titel), s, qf);
    return f.isEmpty() ? std::string() : platform::programPath(f.toStdString());
}

void QtBenutzer::fortschritt(long erledigt, long gesamt, const std::string& text) {
    fortschrittZeigen(erledigt, gesamt, text, false);
}

bool QtBenutzer::fortschrittMitAbbruch(long erledigt, long gesamt, const std::string& text) {
    return fortschrittZeigen(erledigt, gesamt, text, true);
}

bool QtBenutzer::fortschrittZeigen(long erledigt, long gesamt, const std::string& text,
                                   bool abbrechbar) {
    if (gesamt <= 0) {
        if (fortschritt_) fortschritt_->deleteLater();
        fortschritt_.clear();
        return true;
    }
    if (!fortschritt_) {
        fortschritt_ = new QProgressDialog(eltern_);
        if (abbrechbar && beschriftung_)
            fortschritt_->setCancelButtonText(q(beschriftung_("cmbAbbrechen")));
        else if (!abbrechbar)
            fortschritt_->setCancelButton(nullptr);
        fortschritt_->setMinimumDuration(500);
        fortschritt_->setWindowModality(Qt::WindowModal);
    }
    fortschritt_->setMaximum(static_cast<int>(gesamt));
    fortschritt_->setValue(static_cast<int>(erledigt));
    fortschritt_->setLabelText(q(text));
    QApplication::processEvents();
    return !fortschritt_->wasCanceled();
}

}  // namespace tessara
