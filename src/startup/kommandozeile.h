#pragma once
// What a command line asks of the program. Comparisons use the lower-cased
// line, as the program always has; the database path is cut from the line as
// typed, because on a case-sensitive file system a lower-cased path names
// another file.
#include <string>

namespace tessara {

struct typKommandozeile {
    enum class Art {
        Leer,           // a normal start
        Datenbank,      // "/d" "<path>": open that library database
        LBlkEinfuegen,  // "lblkeinfuegen": insert the block last handed over
        StartForm2,     // "/s <a>;<b>": open the main window on a request
        Nichts          // anything else: no request
    };
    Art art = Art::Leer;
    std::string strKlein;  // the line in lower case, as logged
    std::string str1;      // database path, or StartForm2's first string
    std::string str2;      // StartForm2's second string
};

// Lower case as LCase does for the texts a command line carries: ASCII and
// the German umlauts (UTF-8).
std::string fctKlein(const std::string& s);

typKommandozeile fctKommandozeileAuswerten(const std::string& strCmdLine);

}  // namespace tessara
