#include "cad/einfuege_texte.h"

#include <utility>

#include "authoring/datei_layout.h"

namespace tessara {

namespace {

const std::string Q = "\"";

std::string ersetzen(std::string s, char von, const std::string& nach) {
    std::string r;
    for (char c : s) {
        if (c == von) {
            r += nach;
        } else {
            r += c;
        }
    }
    return r;
}

// Data typed into the host: its path, the scale values.
std::string lispText(const std::string& s) { return Q + s + Q; }

}  // namespace

std::string fctZeichnungsPfad(const std::string& strBibliothek, const std::string& strOrdnerNr,
                              const std::string& strBlockNr, int ansicht) {
    return strBibliothek + fctZeichnungDatei(strOrdnerNr, strBlockNr, ansicht);
}

std::string fctVariantenZeichnungsPfad(const std::string& strBibliothek,
                                       const std::string& strOrdnerNr,
                                       const std::string& strVariante, int ansicht) {
    return strBibliothek + fctVarianteZeichnung(strOrdnerNr, strVariante, ansicht);
}

std::string fctSlidePfad(const std::string& strBibliothek, const std::string& strOrdnerNr,
                         const std::string& strBlockNr, int ansicht) {
    return strBibliothek + fctDiaDatei(strOrdnerNr, strBlockNr, ansicht);
}

std::string fctBlockNameBereinigen(const std::string& strName) {
    std::string r = strName;
    for (char& c : r) {
        if (c == ',' || c == '/' || c == ':') c = '_';
    }
    return r;
}

std::string fctLispPfad(const std::string& strPfad) { return ersetzen(strPfad, '\\', "/"); }

std::string fctTastenSchuetzen(const std::string& strText) {
    std::string r;
    for (char c : strText) {
        switch (c) {
            case '+':
            case '^':
            case '%':
            case '~':
            case '(':
            case ')':
            case '{':
            case '}':
            case '[':
            case ']':
                r += '{';
                r += c;
                r += '}';
                break;
            default:
                r += c;
        }
    }
    return r;
}

std::string fctBlockAngabe(const std::string& strName, const std::string& strPfad,
                           bool booAusBibliothek) {
    return booAusBibliothek ? strName + "=" + strPfad : strPfad;
}

std::vector<std::string> fctInsertLspZeilen() {
    return {
        "(defun tessara_einfuege(pfad x y winkel lay0 atted expl ary)",
        "",
        "  (setvar" + Q + "cmdecho" + Q + " 1)",
        "",
        "  (command" + Q + "._insert" + Q + " pfad pause)",
        "",
        "  (if x",
        "    (command x)",
        "    (command pause)",
        "  );Ende if",
        "",
        "  (if y",
        "    (command y)",
        "    (command pause)",
        "  );Ende if",
        "",
        "  (if winkel",
        "    (command Winkel)",
        "    (command pause)",
        "  );Ende if",
        "           ",
        "  (if lay0",
        "    (command " + Q + "._change" + Q + " (entlast) " + Q + "_prop" + Q + " " + Q + "_la" +
            Q + " " + Q + "0" + Q + ")",
        "  );Ende if",
        "",
        "  (if atted",
        "    (command " + Q + "._attedit" + Q + " (entlast))",
        "  );Ende if",
        "",
        "  (if expl",
        "    (command " + Q + "._explode" + Q + " (entlast))",
        "  );Ende if",
        "",
        "  (if ary",
        "    (command " + Q + "._array" + Q + " (entlast))",
        "  );Ende if",
        "",
        ");Ende defun",
    };
}

std::string fctInsertLspLadenTasten(const std::string& strLspDatei) {
    return "{(}load " + fctTastenSchuetzen(lispText(fctLispPfad(strLspDatei))) + "{)}";
}

std::vector<std::string> fctTessaraEinfuegeArgumente(const std::string& strBlockAngabe,
                                                     const typEinfuegeOptionen& o) {
    const std::string nil = "nil";
    return {
        lispText(fctLispPfad(strBlockAngabe)),
        o.checkXFrage == 1 ? nil : o.strMassstabX,
        o.checkYFrage == 1 ? nil : o.strMassstabY,
        o.checkWinkel == 1 ? nil : o.strWinkel,
        o.longEinfuegenLayer0 == 1 ? "1" : nil,
        o.checkAttribute ? "1" : nil,
        o.checkUrsprung ? "1" : nil,
        o.checkReihe ? "1" : nil,
    };
}

std::string fctTessaraEinfuegeTasten(const std::string& strBlockAngabe,
                                     const typEinfuegeOptionen& o) {
    std::string s = "{(}tessara_einfuege";
    for (const auto& a : fctTessaraEinfuegeArgumente(strBlockAngabe, o)) {
        s += " " + fctTastenSchuetzen(a);
    }
    return s + "{)}";
}

std::string fctInsertAusdruck(const std::string& strBlockAngabe, const typEinfuegeOptionen& o) {
    const std::string rotation = o.checkWinkel == 1 ? "pause" : o.strWinkel;
    std::string antworten;
    if (o.checkXFrage == 0 && o.checkYFrage == 0) {
        antworten = " pause " + o.strMassstabX + " " + o.strMassstabY + " " + rotation;
    } else if (o.checkXFrage == 1 && o.checkYFrage == 0) {
        antworten = " pause pause " + o.strMassstabY + " " + rotation;
    } else if (o.checkXFrage == 0 && o.checkYFrage == 1) {
        antworten = " pause " + o.strMassstabX + " pause " + rotation;
    } else if (o.checkXFrage == 1 && o.checkYFrage == 1) {
        antworten = " pause pause pause " + rotation;
    } else {
        return {};
    }
    return "(command " + Q + "._-insert" + Q + " " + lispText(fctLispPfad(strBlockAngabe)) +
           antworten + ")";
}

std::string fctInsertNullpunktBefehl(const std::string& strBlockAngabe) {
    // "j" answers the redefinition question; the point is the origin and the
    // three returns take the default scales and rotation.
    return "._-insert " + strBlockAngabe + "\r" + "j" + "\r" + "0,0,0" + "\r" + "\r\r\r";
}

std::string fctVerschiebeBefehl(const typPunkt& versatz) {
    return "._move (entlast)  " + versatz.x + "," + versatz.y + "," + versatz.z + "\r";
}

std::string fctRotationsBefehl() {
    return "._rotate (entlast)  (getvar " + Q + "lastpoint" + Q + ")\r";
}

std::string fctBreakLadenBefehl(const std::string& strProgrammVerzeichnis) {
    std::string verzeichnis = fctLispPfad(strProgrammVerzeichnis);
    if (!verzeichnis.empty() && verzeichnis.back() != '/') verzeichnis += "/";
    return "(load " + Q + verzeichnis + "break" + Q + ")\r";
}

std::string fctLayerBefehl(const std::string& strLayer) {
    return "._change (entlast)  _prop _la " + strLayer + "\r\r";
}

std::string fctLayer0Befehl() { return "._change (entlast)  _prop _la 0\r\r"; }

std::string fctAtteditBefehl() { return "._attedit (entlast)"; }

std::string fctExplodeBefehl() { return "._explode (entlast)\r"; }

std::string fctArrayBefehl() { return "._array (entlast)\r"; }

std::vector<std::string> fctLispVariablenBefehle(const typBlockDaten& b) {
    // AutoLISP reads "\\" and "\"" inside a string as escapes.
    auto literal = [](const std::string& wert) {
        std::string r = Q;
        for (char c : wert) {
            if (c == '\\' || c == '"') r += '\\';
            r += c;
        }
        return r + Q;
    };
    std::vector<std::pair<std::string, std::string>> werte = {{"Block", b.Block}};
    for (std::size_t i = 0; i < b.M.size(); ++i)
        werte.emplace_back("M" + std::to_string(i), b.M[i]);
    werte.insert(werte.end(), {{"LAYER", b.Layer}, {"LYCOLOR", b.LyColor}, {"LYLINE", b.LyLine}});
    std::vector<std::string> r;
    for (const auto& [name, wert] : werte) {
        r.push_back("(setq tessara_" + name + " " + literal(wert) + ")\r");
    }
    return r;
}

}  // namespace tessara
