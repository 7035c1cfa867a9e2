#include "organisation/ordner_rechte.h"

#include <exception>
#include <vector>

#include "captions/meldungen.h"
#include "organisation/def_menue.h"
#include "organisation/schreib_einheit.h"
#include "platform/case_fold.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

// Trim: blanks and tabs off both ends of a name in the list.
std::string getrimmt(const std::string& s) {
    const auto a = s.find_first_not_of(" \t");
    if (a == std::string::npos) return {};
    return s.substr(a, s.find_last_not_of(" \t") - a + 1);
}

std::vector<std::string> namen(const std::string& strRechte) {
    std::vector<std::string> liste;
    std::size_t anfang = 0;
    while (anfang <= strRechte.size()) {
        const auto ende = std::min(strRechte.find(';', anfang), strRechte.size());
        if (auto n = getrimmt(strRechte.substr(anfang, ende - anfang)); !n.empty())
            liste.push_back(n);
        anfang = ende + 1;
    }
    return liste;
}

}  // namespace

bool fctOrdnerErlaubt(const std::string& strOrdnerRechte, const std::string& strAnmeldeName) {
    const auto liste = namen(strOrdnerRechte);
    if (liste.empty()) return true;
    for (const auto& n : liste)
        if (platform::equalsIgnoreCase(n, kRechteAlle) ||
            platform::equalsIgnoreCase(n, getrimmt(strAnmeldeName)))
            return true;
    return false;
}

bool fctOrdnerRechteSpeichern(ProgrammZustand& z, NavigationsModell& m, long lngNr,
                              const std::string& strRechte, const std::string& strAnmeldeName) {
    Prozedur p(z, "fctOrdnerRechteSpeichern");
    return p.geschuetzt(false, [&] {
        std::string rechte;
        for (const auto& n : namen(strRechte)) rechte += (rechte.empty() ? "" : ";") + n;
        if (rechte.empty()) rechte = kRechteAlle;
        if (rechte.size() > 100) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgWertZuLang, rechte, kMsgHoechstens, "100"});
            return false;
        }
        if (!fctOrdnerErlaubt(rechte, strAnmeldeName)) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgRechteAussperren, strAnmeldeName});
            return false;
        }
        db::Connection& con = m.datenbank().con;
        SchreibEinheit e(con);
        db::Recordset rs;
        rs.open("SELECT Nr, OrdnerRechte FROM tblOrdner WHERE Nr = " + std::to_string(lngNr), con,
                db::adOpenKeyset, db::adLockOptimistic);
        if (rs.eof()) return false;
        rs.setValue("OrdnerRechte", rechte);
        rs.update();
        e.commit();
        return true;
    });
}

}  // namespace tessara
