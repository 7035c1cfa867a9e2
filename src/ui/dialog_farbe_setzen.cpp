#include "ui/dialog_farbe_setzen.h"

#include <QApplication>
#include <QDialog>
#include <QPalette>

#include "startup/dialog_farbe.h"
#include "startup/einstellungen.h"

namespace tessara::ui {

bool subDialogFarbeSetzen(ProgrammZustand& z) {
    const auto farbe = fctDialogFarbe(IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "sBkColor"));
    if (!farbe) return false;
    // A palette set for the class reaches every dialog created afterwards,
    // Qt's own message boxes and file choosers among them.
    QPalette p = QApplication::palette("QDialog");
    p.setColor(QPalette::Window, QColor(static_cast<QRgb>(*farbe)));
    QApplication::setPalette(p, "QDialog");
    return true;
}

}  // namespace tessara::ui
