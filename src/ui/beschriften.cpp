#include "ui/beschriften.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QSignalBlocker>
#include <QWidget>
#include <exception>
#include <optional>
#include <string>

#include "captions/beschriftung.h"
#include "entry/start_ablauf.h"
#include "startup/fehler_log.h"

namespace tessara::ui {

namespace {

// Prefixes of the program's control names and of the setup values the
// options window is built from; Qt's own children ("qt_…") and Designer's
// helpers ("verticalLayout", "label_2") do not match.
constexpr const char* kPraefixe[] = {"combut", "combox", "cmb",  "cmd", "chk", "check", "cbo",
                                     "dlis",   "lis",    "lab",  "txt", "mnu", "sld",   "fra",
                                     "opt",    "img",    "long", "lon", "str"};

bool istSteuerelement(const QString& name) {
    for (const char* p : kPraefixe) {
        const QLatin1String praefix(p);
        if (name.size() > praefix.size() && name.startsWith(praefix) &&
            name.at(praefix.size()).isUpper())
            return true;
    }
    return false;
}

// Labels the program writes itself: the slot captions and the page counter,
// whose file text is the format the program fills in. Only a window's own
// entry ("Speziell") captions such a label, for a window that uses the name
// for a plain label.
bool vomProgrammGesetzt(const std::string& name) {
    const std::string ohne = fctOhneIndex(name);
    return ohne == "labBlock" || ohne == "labSeitenNr";
}

QString qs(const std::string& s) { return QString::fromStdString(s); }

class Beschrifter {
  public:
    Beschrifter(ProgrammZustand& z, std::string form) : z_(z), f_(std::move(form)) {}

    void objekt(QObject* o) {
        const QString name = o->objectName();
        if (istSteuerelement(name)) steuerelement(o, name.toStdString());
        // A copy: captioning a control may add or remove children of it.
        const QObjectList kinder = o->children();
        for (QObject* kind : kinder) {
            if (!kind) continue;
            // Another window beside this one is captioned by its own window;
            // a menu is a window of its own in Qt but part of this one here.
            if (auto* w = qobject_cast<QWidget*>(kind);
                w && w->isWindow() && !qobject_cast<QMenu*>(w))
                continue;
            objekt(kind);
        }
    }

  private:
    void steuerelement(QObject* o, const std::string& c) {
        if (auto* a = qobject_cast<QAction*>(o)) {
            a->setText(qs(text(c)));
            tooltip(c, [a](const QString& t) { a->setToolTip(t); });
            return;
        }
        auto* w = qobject_cast<QWidget*>(o);
        if (!w) return;
        if (auto* b = qobject_cast<QAbstractButton*>(w)) {
            b->setText(qs(text(c)));
        } else if (auto* l = qobject_cast<QLabel*>(w)) {
            if (!vomProgrammGesetzt(c))
                l->setText(qs(fctFensterTitel(z_, text(c))));
            else if (auto s = eigenerText(c))
                l->setText(qs(fctFensterTitel(z_, *s)));
        } else if (auto* g = qobject_cast<QGroupBox*>(w)) {
            g->setTitle(qs(text(c)));
        } else if (auto* m = qobject_cast<QMenu*>(w)) {
            m->setTitle(qs(text(c)));
        } else if (auto* cb = qobject_cast<QComboBox*>(w)) {
            eintraege(cb, c);
        }
        tooltip(c, [w](const QString& t) { w->setToolTip(t); });
    }

    std::string text(const std::string& c) { return fctSteuerelementText(z_, f_, c); }

    std::optional<std::string> eigenerText(const std::string& c) {
        if (auto s = fctBeschriftungWert(z_, BeschriftungsArt::Frm, "Speziell", f_ + "." + c))
            return s;
        return fctBeschriftungWert(z_, BeschriftungsArt::Frm, "Speziell",
                                   f_ + "." + fctOhneIndex(c));
    }

    template <typename Setzen>
    void tooltip(const std::string& c, Setzen setzen) {
        if (auto t = fctBeschriftungSuchen(z_, BeschriftungsArt::Tooltip, f_, c)) setzen(qs(*t));
    }

    // Items from "C_0" on while the files hold them; items the files do not
    // name stay as the program put them.
    void eintraege(QComboBox* cb, const std::string& c) {
        const QSignalBlocker still(cb);
        for (int i = 0; i < 1000; ++i) {
            auto t = fctBeschriftungSuchen(z_, BeschriftungsArt::Frm, f_, c, i);
            if (!t) break;
            if (i < cb->count())
                cb->setItemText(i, qs(*t));
            else
                cb->addItem(qs(*t));
        }
    }

    ProgrammZustand& z_;
    std::string f_;
};

}  // namespace

void subFormularBeschriften(ProgrammZustand& z, QWidget* form) {
    Prozedur p(z, "subFormularBeschriften");
    p.geschuetztNurLog([&] {
        if (!form) return;
        const std::string f = form->objectName().toStdString();
        p.step("Fenstertitel");
        // The running main window is found again by this very title (a
        // second start activates it), so it is "ProgName", nothing else.
        if (f == "frmBlockverwaltung")
            form->setWindowTitle(qs(fctFensterTitel(z, fctSteuerelementText(z, "", "ProgName"))));
        else if (!f.empty())
            form->setWindowTitle(qs(fctFensterTitel(z, fctSteuerelementText(z, f, ""))));
        p.step("Steuerelemente beschriften");
        Beschrifter(z, f).objekt(form);
    });
}

QString fctText(ProgrammZustand& z, const QString& form, const QString& control) {
    return qs(fctSteuerelementText(z, form.toStdString(), control.toStdString()));
}

}  // namespace tessara::ui
