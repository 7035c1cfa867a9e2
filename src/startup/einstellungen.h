#pragma once
// The Settings file "Tessara9.0.ini" and the per-database "dbTessara.ini":
// the readers and writers the program uses, its named operations, the list
// of library databases, the first start and the conversion of the previous
// major version's file. Paths are program (backslash) paths. Nothing here
// throws: a missing file, section or key reads as empty (numbers as 0), a
// failed write is ignored.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr const char* kAllgemeineDaten = "AllgemeineDaten";
inline constexpr const char* kMsgboxAnzeigen = "MsgboxAnzeigen";
inline constexpr const char* kLayerStates = "LayerStates";

// --- Primitives (file, section, key[, value]) ------------------------------

// The value as text, empty when missing, at most 120 characters. A file that
// is there but cannot be read goes to the error log (log only) with the line
// "IniGetValue: " file "; " section "; " key.
std::string IniGetValue(ProgrammZustand& z, const std::string& strDatei,
                        const std::string& strSektion, const std::string& strSchluessel);
// The integer reader: the value as a 16-bit integer when it is numeric and
// fits, else 0.
std::int16_t fctIniIntLesen(ProgrammZustand& z, const std::string& strDatei,
                            const std::string& strSektion, const std::string& strSchluessel);
// The same for 32-bit values (the scroll position of "dbTessara.ini").
std::int32_t fctIniLongLesen(ProgrammZustand& z, const std::string& strDatei,
                             const std::string& strSektion, const std::string& strSchluessel);
// The byte reader: 0 to 255 when numeric, not below "0" and not above 255,
// else 0 ("300", "abc", "-1" all read as 0).
std::uint8_t fctIniByteLesen(ProgrammZustand& z, const std::string& strDatei,
                             const std::string& strSektion, const std::string& strSchluessel);
// Writes key=value, creating file and section as needed.
bool IniSetValue(ProgrammZustand& z, const std::string& strDatei, const std::string& strSektion,
                 const std::string& strSchluessel, const std::string& strWert);

// VB's IsNumeric and the value it sees: blanks around, a sign, digits with a
// decimal point, an exponent, or "&H"/"&O" numbers. Empty when not numeric.
std::optional<double> fctZahlWert(std::string_view strText);

// The byte reader's rule on a text already read (for readers that must not
// report, such as the error handler itself).
std::uint8_t fctByteWert(const std::string& strWert);

// CBool of a Settings value: a number is true when not 0, "True"/"Wahr" are
// true; anything else is false.
bool fctBoolWert(const std::string& strWert);

// --- Named operations on the Settings file (z.strIniDatei) -----------------

// Writes into "AllgemeineDaten"; true.
bool fctWertAllgInIniSpeichern(ProgrammZustand& z, const std::string& strSchluessel,
                               const std::string& strWert);
// Reads "MsgboxAnzeigen"/message key. Mode 1: true when the value is not
// "1" (the message is to be shown); other modes: true when it is "1".
bool fctIniDateiNeuAnlegen(ProgrammZustand& z, const std::string& strMsgSchluessel, int intModus);
// Writes "1" under the message key in "MsgboxAnzeigen"; true.
bool fctMsgboxNichtMehrAnzeigenSpeichern(ProgrammZustand& z, const std::string& strMsgSchluessel);
// Mode 1: a directory that differs from the default becomes the default
// (with a trailing "\") and is written as "VerzeichnisVorgabe". Other modes:
// the default becomes the drive and directory of the given path, written
// when it changed.
void subVerzeichnisVorgabeAktualisieren(ProgrammZustand& z, const std::string& strVerzeichnis,
                                        int intModus);

// --- The database list ("DbVerzeichnis" 0, 1, 2, ...) ----------------------

// Reads z.aryDbVerzeichnis: the first empty or "0" value ends the list (a
// gap ends it too); a list ending at 0 holds one entry with that value.
void subLesenTessaraIniDatei(ProgrammZustand& z);
// Writes every entry; keys beyond the list are left as they are.
void subSpeichernTessaraIniDatei(ProgrammZustand& z);
// Whether a database list entry names a database (neither empty nor "0").
bool fctDbEintragGueltig(const std::string& strEintrag);

// First start: when z.strIniDatei does not exist, the previous major
// version's "\TessaraV8.ini" in the application directory is converted, or
// a new file is begun with "DbVerzeichnis0" = "0". Answers whether a
// database is known ("DbVerzeichnis0" neither empty nor "0").
bool fctIniDateiErsterStart(ProgrammZustand& z);
// Converts the previous major version's settings file; see the .cpp for the
// layout it understands. True when the new file was written.
bool subAlteTessaraIniDateiUmschreiben(ProgrammZustand& z, const std::string& strAlteDatei,
                                       const std::string& strNeueDatei);

// --- Per-database "dbTessara.ini", section "Position" -----------------------

struct typDbPosition {
    std::string strAktuelleOrdnerNr;  // Folder shown last
    std::int16_t s1 = 0;              // page position shown last
    std::int32_t Pos = 0;             // scroll position shown last
};

// The library directory (with or without trailing "\") followed by
// "\dbTessara.ini".
std::string fctDbIniDatei(const std::string& strDbVerzeichnis);
typDbPosition fctDbPositionLesen(ProgrammZustand& z, const std::string& strDbVerzeichnis);
// Writes "strAktuelleOrdnerNr", "s1" and "Pos", in this order.
bool subDbPositionSpeichern(ProgrammZustand& z, const std::string& strDbVerzeichnis,
                            const typDbPosition& pos);

}  // namespace tessara
