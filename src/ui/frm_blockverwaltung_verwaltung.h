#pragma once
// The catalogue's management windows, reached from the main window's menus:
// Folders, Pages, definition menus, Block properties, and the sort order of
// the Folder box (chkOrdnerSortieren).
namespace tessara {

class FrmBlockverwaltung;

// Connects the menu entries of the main window to their windows. Called
// once, at the end of the main window's constructor.
void subVerwaltungEinbinden(FrmBlockverwaltung& f);

}  // namespace tessara
