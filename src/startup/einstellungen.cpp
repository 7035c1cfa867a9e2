#include "startup/einstellungen.h"

#include <charconv>
#include <cmath>
#include <vector>

#include "platform/case_fold.h"
#include "startup/fehler_log.h"
#include "startup/ini_datei.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

// VB's run-time error "Path/File access error": what the program's own
// error log has always shown for a file it could not read.
constexpr long kDateizugriffsfehler = 75;

std::optional<double> ganzzahlig(std::optional<double> v, double min, double max) {
    if (!v) return std::nullopt;
    // CInt and CLng round half to even; std::nearbyint does so in the
    // default rounding mode.
    const double r = std::nearbyint(*v);
    if (!(r >= min && r <= max)) return std::nullopt;
    return r;
}

std::optional<double> basisZahl(std::string_view ziffern, int basis) {
    if (ziffern.empty() || ziffern.size() > 11) return std::nullopt;
    unsigned long long wert = 0;
    const auto [p, ec] =
        std::from_chars(ziffern.data(), ziffern.data() + ziffern.size(), wert, basis);
    if (ec != std::errc() || p != ziffern.data() + ziffern.size() || wert > 0xFFFFFFFFull)
        return std::nullopt;
    // "&HFFFF" is the Integer -1 and "&HFFFFFFFF" the Long -1, as VB reads
    // hexadecimal and octal literals.
    if (wert <= 0xFFFF) {
        return static_cast<double>(wert > 0x7FFF ? static_cast<long long>(wert) - 0x10000
                                                 : static_cast<long long>(wert));
    }
    return static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(wert)));
}

}  // namespace

// ---------------------------------------------------------------------------
// Numbers.

std::optional<double> fctZahlWert(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    if (s.empty()) return std::nullopt;
    if (s.front() == '&' && s.size() > 2) {
        const char art = s[1];
        if (art == 'H' || art == 'h') return basisZahl(s.substr(2), 16);
        if (art == 'O' || art == 'o') return basisZahl(s.substr(2), 8);
        return std::nullopt;
    }
    // Checked by hand, then handed to from_chars, which reads the C locale's
    // form whatever locale the user interface has set.
    std::string normal;
    std::size_t i = 0;
    if (s[i] == '+' || s[i] == '-') {
        if (s[i] == '-') normal.push_back('-');
        ++i;
    }
    std::size_t ziffern = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') normal.push_back(s[i++]), ++ziffern;
    if (i < s.size() && s[i] == '.') {
        normal.push_back(s[i++]);
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') normal.push_back(s[i++]), ++ziffern;
    }
    if (ziffern == 0) return std::nullopt;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
        normal.push_back('e');
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) normal.push_back(s[i++]);
        std::size_t exp = 0;
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') normal.push_back(s[i++]), ++exp;
        if (exp == 0) return std::nullopt;
    }
    if (i != s.size()) return std::nullopt;
    double wert = 0;
    const auto [p, ec] = std::from_chars(normal.data(), normal.data() + normal.size(), wert);
    if (ec != std::errc() || p != normal.data() + normal.size() || !std::isfinite(wert))
        return std::nullopt;
    return wert;
}

// ---------------------------------------------------------------------------
// Primitives.

std::string IniGetValue(ProgrammZustand& z, const std::string& strDatei,
                        const std::string& strSektion, const std::string& strSchluessel) {
    IniStatus status = IniStatus::Ok;
    std::string strFehler;
    std::string wert = fctIniWertLesen(strDatei, strSektion, strSchluessel, &status, &strFehler);
    if (status == IniStatus::Fehler) {
        subErrorAllgemein(z, true, strFehler, kDateizugriffsfehler,
                          {"IniGetValue: " + strDatei + "; " + strSektion + "; " + strSchluessel});
    }
    return wert;
}

std::int16_t fctIniIntLesen(ProgrammZustand& z, const std::string& strDatei,
                            const std::string& strSektion, const std::string& strSchluessel) {
    (void)z;  // the integer reader reports nothing: 0 says it all
    const auto v = ganzzahlig(fctZahlWert(fctIniWertLesen(strDatei, strSektion, strSchluessel)),
                              -32768.0, 32767.0);
    return v ? static_cast<std::int16_t>(*v) : 0;
}

std::int32_t fctIniLongLesen(ProgrammZustand& z, const std::string& strDatei,
                             const std::string& strSektion, const std::string& strSchluessel) {
    (void)z;
    const auto v = ganzzahlig(fctZahlWert(fctIniWertLesen(strDatei, strSektion, strSchluessel)),
                              -2147483648.0, 2147483647.0);
    return v ? static_cast<std::int32_t>(*v) : 0;
}

std::uint8_t fctIniByteLesen(ProgrammZustand& z, const std::string& strDatei,
                             const std::string& strSektion, const std::string& strSchluessel) {
    return fctByteWert(IniGetValue(z, strDatei, strSektion, strSchluessel));
}

std::uint8_t fctByteWert(const std::string& s) {
    // "not below "0"" is the program's text comparison: it turns away "-1"
    // as well as "+5" and ".5", which sort in front of "0".
    if (s < "0") return 0;
    const auto v = ganzzahlig(fctZahlWert(s), 0.0, 255.0);
    return v ? static_cast<std::uint8_t>(*v) : 0;
}

bool fctBoolWert(const std::string& s) {
    if (const auto v = fctZahlWert(s)) return *v != 0;
    std::string_view t = s;
    while (!t.empty() && t.front() == ' ') t.remove_prefix(1);
    while (!t.empty() && t.back() == ' ') t.remove_suffix(1);
    return platform::equalsIgnoreCase(t, "true") || platform::equalsIgnoreCase(t, "wahr");
}

bool IniSetValue(ProgrammZustand& z, const std::string& strDatei, const std::string& strSektion,
                 const std::string& strSchluessel, const std::string& strWert) {
    (void)z;
    return fctIniWertSchreiben(strDatei, strSektion, strSchluessel, strWert);
}

// ---------------------------------------------------------------------------
// Named operations.

bool fctWertAllgInIniSpeichern(ProgrammZustand& z, const std::string& strSchluessel,
                               const std::string& strWert) {
    IniSetValue(z, z.strIniDatei, kAllgemeineDaten, strSchluessel, strWert);
    return true;
}

bool fctIniDateiNeuAnlegen(ProgrammZustand& z, const std::string& strMsgSchluessel, int intModus) {
    const std::string w = IniGetValue(z, z.strIniDatei, kMsgboxAnzeigen, strMsgSchluessel);
    return intModus == 1 ? w != "1" : w == "1";
}

bool fctMsgboxNichtMehrAnzeigenSpeichern(ProgrammZustand& z, const std::string& strMsgSchluessel) {
    IniSetValue(z, z.strIniDatei, kMsgboxAnzeigen, strMsgSchluessel, "1");
    return true;
}

void subVerzeichnisVorgabeAktualisieren(ProgrammZustand& z, const std::string& strVerzeichnis,
                                        int intModus) {
    if (intModus == 1) {
        if (strVerzeichnis == z.strVerzeichnisVorgabe) return;
        z.strVerzeichnisVorgabe = fctBackslashAmEndeAnfuegen(strVerzeichnis);
        fctWertAllgInIniSpeichern(z, "VerzeichnisVorgabe", z.strVerzeichnisVorgabe);
        return;
    }
    // Drive and directory of the path: everything up to its last backslash
    // ("c:\Bibliothek\dbTessara.mdb" gives "c:\Bibliothek\"); a bare drive
    // "c:file" gives "c:".
    std::string neu;
    if (const std::size_t bs = strVerzeichnis.rfind('\\'); bs != std::string::npos)
        neu = strVerzeichnis.substr(0, bs + 1);
    else if (strVerzeichnis.size() >= 2 && strVerzeichnis[1] == ':')
        neu = strVerzeichnis.substr(0, 2);
    if (neu.empty() || neu == z.strVerzeichnisVorgabe) return;
    z.strVerzeichnisVorgabe = neu;
    fctWertAllgInIniSpeichern(z, "VerzeichnisVorgabe", z.strVerzeichnisVorgabe);
}

// ---------------------------------------------------------------------------
// The database list.

bool fctDbEintragGueltig(const std::string& s) { return !s.empty() && s != "0"; }

void subLesenTessaraIniDatei(ProgrammZustand& z) {
    Prozedur p(z, "subLesenTessaraIniDatei");
    p.step("DbVerzeichnisse lesen");
    std::vector<std::string>& liste = z.aryDbVerzeichnis;
    liste.clear();
    std::size_t i = 0;
    std::string wert = "ohne";
    while (fctDbEintragGueltig(wert)) {
        wert = IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "DbVerzeichnis" + std::to_string(i));
        if (fctDbEintragGueltig(wert)) {
            liste.resize(i + 1);
            liste[i] = wert;
            ++i;
        }
    }
    // The list is never empty: without any database it holds the value that
    // ended it, and the program reads entry 0 to learn that there is none.
    if (i == 0) liste.assign(1, wert);
}

void subSpeichernTessaraIniDatei(ProgrammZustand& z) {
    Prozedur p(z, "subSpeichernTessaraIniDatei");
    p.step("DbVerzeichnisse schreiben");
    for (std::size_t i = 0; i < z.aryDbVerzeichnis.size(); ++i)
        IniSetValue(z, z.strIniDatei, kAllgemeineDaten, "DbVerzeichnis" + std::to_string(i),
                    z.aryDbVerzeichnis[i]);
}

bool fctIniDateiErsterStart(ProgrammZustand& z) {
    Prozedur p(z, "fctIniDateiErsterStart");
    if (!fctDateiExistiert(z.strIniDatei)) {
        const std::string alt = z.strAppPfad + "\\TessaraV8.ini";
        if (fctDateiExistiert(alt)) {
            p.step("alte Ini-Datei umschreiben");
            subAlteTessaraIniDateiUmschreiben(z, alt, z.strIniDatei);
        } else {
            p.step("Ini-Datei neu anlegen");
            IniSetValue(z, z.strIniDatei, kAllgemeineDaten, "DbVerzeichnis0", "0");
        }
    }
    p.step("DbVerzeichnis0 lesen");
    return fctDbEintragGueltig(IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "DbVerzeichnis0"));
}

// The previous major version (8.x) kept its settings in the same
// private-profile text, written as ANSI. Its database directories are taken
// from it line by line, wherever they stand:
//  - a line "DbVerzeichnis<n>=<directory>" (the key this version still uses),
//  - a line "Eintrag<n>=<directory>\dbTessara.mdb" (the form in which 8.x
//    also listed its databases, as the machine-wide registry entries still
//    do); the database file name is dropped to leave the directory.
// Names compare without regard to case; values that are empty or "0" name no
// database; a directory seen before (case and trailing "\" ignored) is not
// listed twice. The directories are written in the order found as
// "DbVerzeichnis0", "DbVerzeichnis1", ... of "AllgemeineDaten"; without any,
// the new file is begun with "DbVerzeichnis0" = "0" as on a first start.
// Nothing else of the old file is carried over: its other keys belong to a
// version whose options and paths no longer apply.
bool subAlteTessaraIniDateiUmschreiben(ProgrammZustand& z, const std::string& strAlteDatei,
                                       const std::string& strNeueDatei) {
    Prozedur p(z, "subAlteTessaraIniDateiUmschreiben");
    p.step("alte Ini-Datei lesen");
    IniText alt;
    std::string strFehler;
    if (fctIniLaden(strAlteDatei, alt, strFehler) == IniStatus::Fehler)
        subErrorAllgemein(z, true, strFehler, kDateizugriffsfehler, {strAlteDatei});

    std::vector<std::string> verzeichnisse;
    auto schonDa = [&](const std::string& v) {
        for (const auto& d : verzeichnisse)
            if (fctGleichesVerzeichnis(d, v)) return true;
        return false;
    };
    auto nurZiffern = [](std::string_view s) {
        if (s.empty()) return false;
        for (char c : s)
            if (c < '0' || c > '9') return false;
        return true;
    };
    for (const std::string& zeile : alt.zeilen()) {
        std::string name, wert;
        if (!fctIniZeileZerlegen(zeile, name, wert) || !fctDbEintragGueltig(wert)) continue;
        std::string verzeichnis;
        if (platform::startsWithIgnoreCase(name, "DbVerzeichnis") &&
            nurZiffern(std::string_view(name).substr(13))) {
            verzeichnis = wert;
        } else if (platform::startsWithIgnoreCase(name, "Eintrag") &&
                   nurZiffern(std::string_view(name).substr(7))) {
            static const std::string kDb = "\\dbTessara.mdb";
            if (wert.size() <= kDb.size() ||
                !platform::equalsIgnoreCase(std::string_view(wert).substr(wert.size() - kDb.size()),
                                            kDb))
                continue;
            verzeichnis = wert.substr(0, wert.size() - kDb.size());
        } else {
            continue;
        }
        if (fctDbEintragGueltig(verzeichnis) && !schonDa(verzeichnis))
            verzeichnisse.push_back(verzeichnis);
    }

    p.step("neue Ini-Datei schreiben");
    if (verzeichnisse.empty()) verzeichnisse.push_back("0");
    IniText neu;
    if (fctIniLaden(strNeueDatei, neu, strFehler) == IniStatus::Fehler) return false;
    for (std::size_t i = 0; i < verzeichnisse.size(); ++i)
        neu.setzen(kAllgemeineDaten, "DbVerzeichnis" + std::to_string(i), verzeichnisse[i]);
    // One write for the whole list: a converted file is complete or absent.
    return fctIniSpeichern(strNeueDatei, neu);
}

// ---------------------------------------------------------------------------
// dbTessara.ini.

std::string fctDbIniDatei(const std::string& strDbVerzeichnis) {
    return fctBackslashAmEndeAnfuegen(strDbVerzeichnis) + "dbTessara.ini";
}

typDbPosition fctDbPositionLesen(ProgrammZustand& z, const std::string& strDbVerzeichnis) {
    const std::string datei = fctDbIniDatei(strDbVerzeichnis);
    typDbPosition pos;
    pos.strAktuelleOrdnerNr = IniGetValue(z, datei, "Position", "strAktuelleOrdnerNr");
    pos.s1 = fctIniIntLesen(z, datei, "Position", "s1");
    pos.Pos = fctIniLongLesen(z, datei, "Position", "Pos");
    return pos;
}

bool subDbPositionSpeichern(ProgrammZustand& z, const std::string& strDbVerzeichnis,
                            const typDbPosition& pos) {
    const std::string datei = fctDbIniDatei(strDbVerzeichnis);
    bool ok = IniSetValue(z, datei, "Position", "strAktuelleOrdnerNr", pos.strAktuelleOrdnerNr);
    ok = IniSetValue(z, datei, "Position", "s1", std::to_string(pos.s1)) && ok;
    ok = IniSetValue(z, datei, "Position", "Pos", std::to_string(pos.Pos)) && ok;
    return ok;
}

}  // namespace tessara
