#pragma once
// Where the files of a Block record lie, relative to the library base
// directory, and the picture names the navigation model hands to a slot.
// Everything here is string composition in the program's backslash form,
// exactly as the catalogue stores it; conversion to native paths happens
// only where a file is opened.
#include <string>

namespace tessara {

// The View's slide code, "0A" .. "4A": the working file name without ".sld"
// and the entry name inside the block's slide library.
std::string fctDiaCode(int ansicht);

// OrdnerNr & "\"
std::string fctOrdnerVerzeichnis(const std::string& ordnerNr);
// Folder directory & block number & v & ".sld"
std::string fctDiaDatei(const std::string& ordnerNr, const std::string& blockNr, int ansicht);
// Folder directory & block number & v & ".slb"
std::string fctDiaBibliothek(const std::string& ordnerNr, const std::string& blockNr, int ansicht);
// Folder directory & "Block\"
std::string fctBlockVerzeichnis(const std::string& ordnerNr);
// Folder directory & "Block\" & block number & v & ".dwg"
std::string fctZeichnungDatei(const std::string& ordnerNr, const std::string& blockNr, int ansicht);
// Folder directory & "Block\Varia\"
std::string fctVariantenVerzeichnis(const std::string& ordnerNr);
// Variant directory & Variant file name & v & ".dwg"
std::string fctVarianteZeichnung(const std::string& ordnerNr, const std::string& variantenDatei,
                                 int ansicht);

// Program directory & "\frei2.sld" and & "\txtPrefix.txt" (the program
// directory is held without a trailing backslash).
std::string fctLeerfeldBild(const std::string& programmVerzeichnis);
std::string fctCodeTabelleDatei(const std::string& programmVerzeichnis);

// The value of column SlideLib for View 0: the block's library (or single
// slide file) relative to the base directory, beginning with OrdnerNr.
std::string fctSlideLibEintrag(const std::string& ordnerNr, const std::string& blockNr,
                               bool bibliothek);
// Whether SlideLib names a single slide file (its last three characters are
// "sld"; compared without regard to case, as file names on the host are).
bool fctSlideLibIstEinzeldia(const std::string& slideLib);

// Picture of View 0: base & SlideLib & "(0A)" for a library, base & SlideLib
// for a single slide. The base directory ends in "\".
std::string fctBildnameAnsicht0(const std::string& basisVerzeichnis, const std::string& slideLib);

}  // namespace tessara
