#pragma once
// The two operations that keep the catalogue's file references and the
// files beside it in step: SlideLib entries made relative, and the files of
// a block moved with it to another slot.
#include <string>

#include "db/connection.h"
#include "db/recordset.h"
#include "startup/programm_zustand.h"

namespace tessara {

// Rewrites every SlideLib entry of tblBlockInfo that does not yet begin with
// its Folder's OrdnerNr to the form relative to the library base directory
// (strBasis, ending in "\"). rsOrdner is the open Folder record set; it is
// left on the row it was on. Answers the number of entries changed, -1 on an
// error.
long fctPfadEintragAendern(ProgrammZustand& z, db::Connection& con, db::Recordset& rsOrdner,
                           const std::string& strBasis);

// The SlideLib value relative to the base directory, or empty when the
// stored path names neither the base directory nor a directory of the
// Folder's number.
std::string fctSlideLibRelativ(const std::string& strGespeichert, const std::string& strBasis,
                               const std::string& strOrdnerNr);

// Moves the slides, drawings and Variant files of block strAlt of Folder
// strOrdnerNr to the names of block strNeu, then rewrites the SlideLib
// entry of the record rsBlock stands on. Missing files are no error: a View
// without a drawing simply has none.
bool DateienUmEinePositionVerschieben(ProgrammZustand& z, db::Recordset& rsBlock,
                                      const std::string& strBasis, const std::string& strOrdnerNr,
                                      const std::string& strAlt, const std::string& strNeu);

}  // namespace tessara
