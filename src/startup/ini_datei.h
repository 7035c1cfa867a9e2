#pragma once
// The private-profile (INI) engine under the Settings file, the per-database
// "dbTessara.ini" and the caption files. It behaves as GetPrivateProfileString
// and WritePrivateProfileString do, because existing files were written by
// them and must read the same:
//  - section and key names compare without regard to case and are trimmed;
//    the first section and the first key of a name win;
//  - a value is trimmed, and one pair of matching surrounding quotes (' or ")
//    is stripped; the program reads through a buffer of 120 characters, so a
//    value read from a file is cut there;
//  - a line without "=" names no value; junk, NUL bytes and overlong lines are
//    carried along, never fatal;
//  - a write creates the file and the section as needed and leaves every
//    other line as it was; new lines end in CRLF.
// On disk the text is Windows-1252. A file that starts with a UTF-8 or UTF-16
// byte order mark, or that is well-formed UTF-8 with umlauts (edited in a
// modern editor), is read as such and written back the same way.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessara {

// Longest value the program reads (the caller's buffer).
inline constexpr std::size_t kIniWertLaenge = 120;

class IniText {
  public:
    enum class Kodierung { Ansi, Utf8, Utf8Bom, Utf16Le };

    IniText() = default;
    // Any bytes are accepted.
    static IniText ausBytes(std::string_view bytes);
    // The file's bytes in its own encoding; lines keep their own endings.
    std::string bytes() const;

    // The whole value (trimmed, unquoted, not cut), or nothing when the
    // section or key is missing.
    std::optional<std::string> wert(std::string_view sektion, std::string_view schluessel) const;
    // Writes key=value into the first section of that name, creating it at
    // the end of the text; an existing key keeps its spelling and place.
    // Line breaks inside the value become blanks (a value is one line).
    // Answers whether the text changed.
    bool setzen(std::string_view sektion, std::string_view schluessel, std::string_view wert);
    // Removes every section of that name with all its lines. Answers whether
    // anything went.
    bool sektionEntfernen(std::string_view sektion);

    // Section names in file order (duplicates included), keys of the first
    // section of a name in file order.
    std::vector<std::string> sektionen() const;
    std::vector<std::string> schluessel(std::string_view sektion) const;

    // The text's lines (UTF-8, without their line ends), for readers that go
    // through a file line by line.
    std::vector<std::string> zeilen() const;

    Kodierung kodierung() const { return kodierung_; }

  private:
    struct Zeile {
        std::string text;  // UTF-8, without the line end
        std::string ende;  // "\r\n", "\n", "\r" or "" (last line)
    };
    // Index range [anfang, ende) of the lines of the first section named so;
    // anfang is the header line. Empty optional when missing.
    struct Bereich {
        std::size_t kopf, ende;
    };
    std::optional<Bereich> finden(std::string_view sektion) const;

    Kodierung kodierung_ = Kodierung::Ansi;
    std::vector<Zeile> zeilen_;
};

// File level, with program (backslash) paths.
enum class IniStatus {
    Ok,
    DateiFehlt,  // no such file: reads as empty, not an error
    Fehler       // the file is there but cannot be read
};

// Loads a file; on Fehler, strFehler says why.
IniStatus fctIniLaden(const std::string& strDatei, IniText& text, std::string& strFehler);

// Writes the text to a temporary file beside the target and renames it over
// the target, so the file is either the old or the new one, never half of
// each. The directory must exist. False when the file could not be written.
bool fctIniSpeichern(const std::string& strDatei, const IniText& text);

// A value as the program reads it: empty when missing, cut at 120
// characters, and at a NUL byte as the C string of the API would be.
std::string fctIniWertLesen(const std::string& strDatei, std::string_view sektion,
                            std::string_view schluessel, IniStatus* status = nullptr,
                            std::string* strFehler = nullptr);
// Writes key=value, creating file and section as needed. Unchanged content
// is not written again.
bool fctIniWertSchreiben(const std::string& strDatei, std::string_view sektion,
                         std::string_view schluessel, std::string_view wert);

// Splits one line of the form key=value as the engine does: name and value
// trimmed, surrounding quotes of the value stripped. False for section
// headers and lines without "=".
bool fctIniZeileZerlegen(std::string_view zeile, std::string& name, std::string& wert);

// Cuts text to at most n characters (not bytes).
std::string fctZeichenKuerzen(std::string_view utf8, std::size_t n);

}  // namespace tessara
