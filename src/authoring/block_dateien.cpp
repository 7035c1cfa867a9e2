#include "authoring/block_dateien.h"

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "startup/fehler_log.h"

namespace tessara {

bool DateienLöschenSlideLibBlockzeichnung(ProgrammZustand& z, const std::string& basisVerzeichnis,
                                          const std::string& ordnerNr, const std::string& blockNr,
                                          bool bibliothek) {
    Prozedur p(z, "DateienLöschenSlideLibBlockzeichnung ");
    return p.geschuetzt(false, [&] {
        p.step("Blockzeichnung löschen");
        bool zeichnung = DeleteAFile(z, basisVerzeichnis + fctZeichnungDatei(ordnerNr, blockNr, 0));
        p.step("SlideLib löschen");
        bool dia =
            DeleteAFile(z, basisVerzeichnis + fctSlideLibEintrag(ordnerNr, blockNr, bibliothek));
        return zeichnung && dia;
    });
}

}  // namespace tessara
