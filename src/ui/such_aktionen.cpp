#include "ui/such_aktionen.h"

#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "startup/fehler_log.h"

namespace tessara::ui {

namespace {
constexpr long kKeinBlock = 407;
}

bool fctZumBlockSpringen(FrmBlockverwaltung& f, const std::string& strBlock) {
    ProgrammZustand& z = f.zustand();
    Prozedur p(z, "fctZumBlockSpringen", true);
    if (!f.modell().offen()) return false;
    p.step("fctAufOrdnerUndSeiteSpringen");
    if (strBlock.size() < 4 ||
        !f.modell().fctAufOrdnerUndSeiteSpringen(strBlock.substr(0, 3), strBlock)) {
        fctMsgbox(z, MsgboxArt::Info, {MsgboxZeile(kKeinBlock), MsgboxZeile(strBlock)});
        return false;
    }
    p.step("subOrdnerUndSeitenNeuAnzeigen");
    f.subOrdnerUndSeitenNeuAnzeigen();
    return true;
}

bool fctBlockEinfuegen(FrmBlockverwaltung& f, const std::string& strBlock) {
    if (!fctZumBlockSpringen(f, strBlock)) return false;
    f.cmbEinfuegen_Click();
    return true;
}

QString fctVorschauName(FrmBlockverwaltung& f, const std::string& strSlideLib) {
    if (strSlideLib.empty()) return {};
    return QString::fromStdString(
        fctBildnameAnsicht0(f.modell().strBasisVerzeichnis(), strSlideLib));
}

}  // namespace tessara::ui
