#include "ui/block_aktionen.h"

#include "authoring/datei_layout.h"
#include "library/bibliothek_sitzung.h"

namespace tessara::ui {

QString fctVorschauName(const BibliothekSitzung& s, const std::string& strSlideLib) {
    if (strSlideLib.empty()) return {};
    return QString::fromStdString(
        fctBildnameAnsicht0(s.modell().strBasisVerzeichnis(), strSlideLib));
}

}  // namespace tessara::ui
