#pragma once
// The catalogue's management windows, reached from the main window's menus:
// Folders, Pages, definition menus, Block properties, and the sort order of
// the Folder box (chkOrdnerSortieren).
#include <QDialog>
#include <QPointer>

#include "ui/block_aktionen.h"

namespace tessara {

class Verwaltungsfenster : public QObject {
    Q_OBJECT
  public:
    // The windows are made as children of eltern (the main window).
    Verwaltungsfenster(FensterKontext k, QWidget* eltern);

    // Each opens its window, or brings back the one already open. The
    // windows open on a read-only library too, for looking; their commands
    // that change it are disabled there.
    void mnuOrdnerverwaltung_Click();
    void mnuSeitenverwaltung_Click();
    void mnuDefMenue_Click();
    void mnuBlockEigenschaften_Click();
    // The drawings of a directory into a Folder the user picks (the
    // directory's name for a new one), and the current Folder's drawings out
    // to a directory.
    void mnuZeichnungenEinlesen_Click();
    void mnuZeichnungenAusgeben_Click();
    // The Folder box by name (or by sort number), saved in the Settings file.
    void chkOrdnerSortieren_Click(bool booNachName);

  private:
    FensterKontext k_;
    QWidget* eltern_;
    QPointer<QDialog> ordner_, seiten_, menue_, block_;
};

// How the Folder box lists the Folders: by name or by their sort number
// (the Settings value "nOrdnerSortieren"; until the Settings file holds one,
// the options' switch), and with rights management on, only the Folders the
// login name may use. Takes effect when the Folders are read next; answers
// whether they are listed by name.
bool fctOrdnerAnsichtSetzen(ProgrammZustand& z, BibliothekSitzung& s);

}  // namespace tessara
