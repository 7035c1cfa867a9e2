#pragma once
// The search in the main window: the menu entry that opens the search
// window, the quick filter and the list of blocks inserted last, both in
// the side bar above the Page's block list.
namespace tessara {

class FrmBlockverwaltung;

void subSucheEinrichten(FrmBlockverwaltung& f);

}  // namespace tessara
