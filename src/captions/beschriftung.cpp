#include "captions/beschriftung.h"

#include <filesystem>
#include <system_error>

#include "platform/environment.h"
#include "startup/einstellungen.h"

namespace tessara {

std::string fctBeschriftungsDatei(const ProgrammZustand& z, BeschriftungsArt art) {
    const char* teil = art == BeschriftungsArt::Frm      ? "Frm_"
                       : art == BeschriftungsArt::Msgbox ? "Msgbox_"
                                                         : "Tooltip_";
    return z.strAppPfad + z.strBeschriftDatei + teil + z.strSprache + ".txt";
}

bool fctBeschriftungsFileZuordnenIni(ProgrammZustand& z) {
    std::error_code ec;
    return std::filesystem::is_regular_file(
        platform::nativePath(fctBeschriftungsDatei(z, BeschriftungsArt::Frm)), ec);
}

std::string fctBeschriftung(ProgrammZustand& z, const std::string& strSchluessel,
                            const std::string& strSektion) {
    return IniGetValue(z, fctBeschriftungsDatei(z, BeschriftungsArt::Frm), strSektion,
                       strSchluessel);
}

}  // namespace tessara
