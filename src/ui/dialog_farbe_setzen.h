#pragma once
// The dialogs' background from "sBkColor" of the Settings file.
#include "startup/programm_zustand.h"

namespace tessara::ui {

// Every dialog shown from now on (message boxes, file choosers of Qt's own,
// the program's windows that are dialogs) takes the colour as its window
// background; the main window and the controls keep theirs. A value that is
// no colour leaves the desktop's palette alone. True when a colour was set.
bool subDialogFarbeSetzen(ProgrammZustand& z);

}  // namespace tessara::ui
