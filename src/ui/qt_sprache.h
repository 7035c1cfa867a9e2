#pragma once
// Qt's own dialogs and buttons (file dialogs, Yes and No) in the user's language.
#include "startup/programm_zustand.h"

namespace tessara::ui {

// Installs Qt's translations for the language of the caption files
// ("Sprache"); English needs none. Once per process; later calls change
// nothing. Where the translations are not installed Qt stays English.
void subQtUebersetzungLaden(const ProgrammZustand& z);

}  // namespace tessara::ui
