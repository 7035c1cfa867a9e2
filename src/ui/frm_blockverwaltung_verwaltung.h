#pragma once
// The catalogue's management windows, reached from the main window's menus:
// Folders, Pages, definition menus, Block properties, and the sort order of
// the Folder box (chkOrdnerSortieren).
namespace tessara {

class FrmBlockverwaltung;

// Connects the menu entries of the main window to their windows. Called
// once, at the end of the main window's constructor.
void subVerwaltungEinbinden(FrmBlockverwaltung& f);

// How the Folder box lists the Folders: by name or by their sort number
// (the Settings value "nOrdnerSortieren"; until the Settings file holds one,
// the options' switch), and with rights management on, only the Folders the
// login name may use. Takes effect when the Folders are read next.
void subOrdnerAnsichtSetzen(FrmBlockverwaltung& f);

}  // namespace tessara
