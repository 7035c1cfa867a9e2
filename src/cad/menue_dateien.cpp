#include "cad/menue_dateien.h"

#include <fstream>

#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "startup/zeichensatz.h"

namespace tessara {

namespace {

constexpr const char* kZeile = "\r\n";

std::string text(const CadVerbindung& v, int nummer) {
    return v.meldungsText ? v.meldungsText(nummer) : std::to_string(nummer);
}

// An AutoLISP string: "\" and the quote escaped.
std::string lispText(const std::string& s) {
    std::string r;
    for (char c : s) {
        if (c == '\\' || c == '"') r.push_back('\\');
        r.push_back(c);
    }
    return r;
}

bool schreiben(const std::string& strDatei, const std::string& strText) {
    std::ofstream f(fctNativerPfad(strDatei), std::ios::binary | std::ios::trunc);
    f << fctUtf8NachAnsi(strText);
    f.close();
    return !f.fail();
}

}  // namespace

typMenueDateien fctMenueDateiNamen(const ProgrammZustand& z, const std::string& strVerzeichnis) {
    const std::string name = z.strTblBlockInfo == "tblBlockInfoInventor" ? "itessara" : "tessara";
    const std::string basis = fctOhneBackslash(strVerzeichnis) + "\\" + name;
    return {basis + ".mnu", basis + ".mnl"};
}

std::string fctMnuText(const ProgrammZustand& z, const CadVerbindung& v) {
    const bool inventor = z.strTblBlockInfo == "tblBlockInfoInventor";
    const std::string gruppe = inventor ? "ITESSARA" : "TESSARA";
    const std::string befehl = inventor ? "ITESSARA" : "TESSARA";
    const std::string lblock = inventor ? "ILBLOCK" : "LBLOCK";
    return "//  " + z.versionZeile() + kZeile + "***MENUGROUP=" + gruppe + kZeile + kZeile +
           "***POP1" + kZeile + "**" + gruppe + kZeile + "ID_" + gruppe + "  [" +
           text(v, kMsgMenueTessara) + "]" + kZeile + "ID_" + befehl + "_START  [" +
           text(v, kMsgMenueStarten) + "]^C^C" + befehl + kZeile + "ID_" + lblock + "  [" +
           text(v, kMsgMenueLetzterBlock) + "]^C^C" + lblock + kZeile;
}

std::string fctMnlText(const ProgrammZustand& z, const std::string& strExe) {
    const bool inventor = z.strTblBlockInfo == "tblBlockInfoInventor";
    const std::string exe = lispText(strExe);
    return ";;  " + z.versionZeile() + kZeile + "(defun c:" + (inventor ? "itessara" : "tessara") +
           " () (startapp \"" + exe + "\") (princ))" + kZeile +
           "(defun c:" + (inventor ? "ilblock" : "lblock") + " () (startapp \"" + exe +
           "\" \"lblock\") (princ))" + kZeile + "(princ)" + kZeile;
}

std::string fctLispLaden(const std::string& strDatei) {
    return "(load \"" + lispText(strDatei) + "\") ";
}

bool fctMenueDateienLaden(ProgrammZustand& z, CadVerbindung& v) {
    Prozedur p(z, "Menüdateien");
    return p.geschuetztNurLog(false, [&] {
        if (fctIstAutoCadLt(v) || !v.acadApp) return false;
        p.step("Menüdateien schreiben");
        const std::string exe = z.strAppPfad + "\\" + z.strExeName;
        typMenueDateien d;
        bool geschrieben = false;
        for (const std::string& ort : {z.strAppPfad, z.strCTemp}) {
            d = fctMenueDateiNamen(z, ort);
            geschrieben =
                schreiben(d.strMnu, fctMnuText(z, v)) && schreiben(d.strMnl, fctMnlText(z, exe));
            if (geschrieben) break;
        }
        if (!geschrieben) return false;
        p.step("MenuGroups.Load");
        try {
            v.acadApp->MenuGroupsLoad(d.strMnu);
        } catch (const AcadFehler& e) {
            subDebugLog(z, std::string("MenuGroups.Load: ") + e.what());
        }
        p.step("Lisp laden");
        v.acadApp->ActiveDocument()->SendCommand(fctLispLaden(d.strMnl));
        return true;
    });
}

}  // namespace tessara
