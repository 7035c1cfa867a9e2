#pragma once
// Folder rights: tblOrdner.OrdnerRechte names who may use a Folder, "Alle"
// (or nothing) for everybody, else login names separated by ";". With the
// setup value longRechteverwaltung at 1, a Folder is shown and changed only
// for the names it lists, compared without regard to case.
//
// On a library file that several workstations share this is an agreement,
// not a lock: anybody who can write the file can change the list.
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr const char* kRechteAlle = "Alle";
inline constexpr long kMsgRechteAussperren = 440;

// Whether strAnmeldeName may use a Folder with these rights.
bool fctOrdnerErlaubt(const std::string& strOrdnerRechte, const std::string& strAnmeldeName);

// Writes the rights of Folder lngNr: blanks around the names are dropped, an
// empty list becomes "Alle". A list that leaves out strAnmeldeName (the user
// would lock himself out) and one longer than 100 characters are refused
// with a message.
bool fctOrdnerRechteSpeichern(ProgrammZustand& z, NavigationsModell& m, long lngNr,
                              const std::string& strRechte, const std::string& strAnmeldeName);

}  // namespace tessara
