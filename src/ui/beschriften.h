#pragma once
// Captions and tool tips of a window from the caption files, addressed by the
// object names of the window and its controls (see captions/beschriftung.h
// for the order of the sections).
#include <QString>

#include "startup/programm_zustand.h"

class QWidget;

namespace tessara::ui {

// Sets every caption and tool tip of the window `form`:
//  - the window title from key "F" of "Speziell" (the main window,
//    frmBlockverwaltung, takes "ProgName" of "Allg" instead, the title by
//    which a second start finds it); a "$" becomes the version text;
//  - the text of every button and check box, of every label (but not the
//    labels the program fills: labBlock_* slot captions and the page
//    counter labSeitenNr, whose text is a format; "$" in a label becomes the
//    version text), the title of every group box and menu, the text of every
//    menu entry (QAction named mnu...);
//  - the items of a combo box from "C_0", "C_1" ... when the files hold them;
//  - the tool tip of every control and menu entry that has one in the
//    Tooltip file.
// Only objects named like the program's controls take part: a control
// prefix (cmd, chk, lab, mnu, long ...) followed by a capital letter. A
// caption missing from the files shows its key and is logged once.
void subFormularBeschriften(ProgrammZustand& z, QWidget* form);

// The caption of control `control` of window `form` (a missing one shows
// "form.control" and is logged once); an empty control asks for the
// window's title.
QString fctText(ProgrammZustand& z, const QString& form, const QString& control);

}  // namespace tessara::ui
