#include "entry/tessara_start.h"

#include <algorithm>
#include <cctype>

#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {
constexpr long kMsgAnfrageVerworfen = 580;  // then the reason
constexpr long kMsgBlocknameZuLang = 581;
constexpr long kMsgAnfrageUnlesbar = 582;
constexpr long kMsgDbPfadZuLang = 583;
}  // namespace

bool fctAnfrageTextGueltig(const std::string& s) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c < 0x20 || c == 0x7F) return false;
        std::size_t folge = 0;  // continuation bytes of this character
        if (c >= 0xC2 && c <= 0xDF)
            folge = 1;
        else if ((c & 0xF0) == 0xE0)
            folge = 2;
        else if (c >= 0xF0 && c <= 0xF4)
            folge = 3;
        else if (c >= 0x80)
            return false;
        if (s.size() - i - 1 < folge) return false;
        for (; folge > 0; --folge)
            if ((static_cast<unsigned char>(s[++i]) & 0xC0) != 0x80) return false;
    }
    return true;
}

void clsTessaraStart::verwerfen(const std::string& strGrund) {
    subErrorAllgemein(z_, true, "Anfrage verworfen: " + strGrund, 0);
}

bool clsTessaraStart::blockPruefen(const std::string& strBlock, const std::string& strVariante) {
    if (!fctAnfrageTextGueltig(strBlock) || !fctAnfrageTextGueltig(strVariante)) {
        verwerfen("Blockname unlesbar");
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(kMsgAnfrageVerworfen), MsgboxZeile(kMsgAnfrageUnlesbar)},
                  kGruppeAllg, "AnfrageVerworfen");
        return false;
    }
    if (strBlock.size() > kBlockNameMax || strVariante.size() > kBlockNameMax) {
        verwerfen("Blockname zu lang");
        // Its beginning, cut where a character begins.
        std::size_t n = std::min<std::size_t>(40, strBlock.size());
        while (n > 0 && n < strBlock.size() &&
               (static_cast<unsigned char>(strBlock[n]) & 0xC0) == 0x80)
            --n;
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(kMsgAnfrageVerworfen), MsgboxZeile(kMsgBlocknameZuLang),
                   MsgboxZeile(strBlock.substr(0, n) + " …")},
                  kGruppeAllg, "AnfrageVerworfen");
        return false;
    }
    return true;
}

bool clsTessaraStart::dbPruefen(std::string& strDb) {
    const bool lesbar = fctAnfrageTextGueltig(strDb);
    if (!lesbar || strDb.size() > kDbPfadMax) {
        verwerfen(lesbar ? "Datenbankpfad zu lang" : "Datenbankpfad unlesbar");
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(kMsgAnfrageVerworfen),
                   MsgboxZeile(lesbar ? kMsgDbPfadZuLang : kMsgAnfrageUnlesbar)},
                  kGruppeAllg, "AnfrageVerworfen");
        return false;
    }
    // Hosts hand over paths in AutoLISP's form; the program's form has
    // backslashes only.
    for (char& c : strDb)
        if (c == '/') c = '\\';
    if (strDb.empty() || strDb == "TestDb") return true;
    // Switching closes the open library first: a request naming a directory
    // that is not there would leave the window with none.
    std::string endung = strDb.size() >= 4 ? strDb.substr(strDb.size() - 4) : std::string();
    for (char& c : endung) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::string dir = endung == ".mdb" ? fctVerzeichnisVon(strDb) : strDb;
    if (!fctVerzeichnisExistiert(dir)) {
        verwerfen("Verzeichnis fehlt: " + dir);
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(kMsgAnfrageVerworfen), MsgboxZeile(kMsgVerzeichnisFehlt),
                   MsgboxZeile(dir)},
                  kGruppeAllg, "AnfrageVerworfen");
        return false;
    }
    return true;
}

void clsTessaraStart::StartTessara() { start_.Main(z_, fenster_); }

bool clsTessaraStart::StartTessara2(const std::string& strBlock, const std::string& strVariante) {
    if (!blockPruefen(strBlock, strVariante)) return false;
    z_.strUebergabeBlock = strBlock;
    z_.strUebergabeVariante = strVariante;
    start_.Main(z_, fenster_);
    return true;
}

bool clsTessaraStart::StartTessara3(const std::string& strBlock, const std::string& strVariante,
                                    const std::string& strDb) {
    // Checked together: half a request is not carried out.
    std::string db = strDb;
    if (!blockPruefen(strBlock, strVariante) || !dbPruefen(db)) return false;
    if (!db.empty()) {
        z_.strUebergabeDb = db;
        start_.Main(z_, fenster_);
    }
    return StartTessara2(strBlock, strVariante);
}

bool clsTessaraStart::ChangeDb(const std::string& strDb) {
    std::string db = strDb;
    if (!dbPruefen(db)) return false;
    z_.strUebergabeDb = db;
    start_.Main(z_, fenster_);
    return true;
}

void clsTessaraStart::LBlockEinfuegen() {
    if (z_.strUebergabeBlock.empty()) {
        z_.strUebergabeBlock = start_.letzterBlock();
        z_.strUebergabeVariante = start_.letzteVariante();
    }
    start_.Main(z_, fenster_);
}

bool clsTessaraStart::anfrage(const platform::InstanceMessage& m) {
    Prozedur p(z_, "clsTessaraStart");
    p.step(fctAnfrageTextGueltig(m.operation) ? m.operation : "?");
    const auto& a = m.arguments;
    const auto n = a.size();
    if ((m.operation == "StartTessara" || m.operation == "LBlockEinfuegen" ||
         m.operation == "LBlkEinfuegen") &&
        n == 0) {
        if (m.operation == "StartTessara")
            StartTessara();
        else
            LBlockEinfuegen();
        return true;
    }
    if ((m.operation == "StartTessara2" || m.operation == "StartForm2") && n == 2)
        return StartTessara2(a[0], a[1]);
    if (m.operation == "StartTessara3" && n == 3) return StartTessara3(a[0], a[1], a[2]);
    if (m.operation == "ChangeDb" && n == 1) return ChangeDb(a[0]);
    if (m.operation == "ClassNameUebergeben" && n == 1 && fctAnfrageTextGueltig(a[0])) {
        start_.klasseSetzen(a[0]);
        return true;
    }
    // From no client of ours: nothing to tell the user, only the log knows.
    verwerfen("unbekannte Anfrage mit " + std::to_string(n) + " Argumenten");
    return false;
}

}  // namespace tessara
