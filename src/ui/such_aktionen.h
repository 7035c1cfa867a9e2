#pragma once
// What every way of finding a Block (the search, its result window, the
// quick filter, the list of blocks inserted last) does with the Block it
// found: show it in the main window, or insert it through the main window's
// insert command.
#include <QString>
#include <string>

#include "ui/frm_blockverwaltung.h"

namespace tessara::ui {

// Makes the Block current in the main window: its Folder (the first three
// characters of the block number), its Page and its slot, then redraws the
// window. A block number the library has no slot for is reported (message
// 407 with the number); false then.
bool fctZumBlockSpringen(FrmBlockverwaltung& f, const std::string& strBlock);

// Jumps to the Block and runs the insert command on it.
bool fctBlockEinfuegen(FrmBlockverwaltung& f, const std::string& strBlock);

// The picture of View 0 of a Block for the preview cache (program form).
QString fctVorschauName(FrmBlockverwaltung& f, const std::string& strSlideLib);

}  // namespace tessara::ui
