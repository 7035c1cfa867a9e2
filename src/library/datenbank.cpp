#include "library/datenbank.h"

#include <chrono>
#include <memory>

#include "db/jet_opener.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara {

db::StorageOpener fctKatalogOeffner(ProgrammZustand& z) {
    jet::filelock::Wait warten;
    auto angezeigt = std::make_shared<bool>(false);
    warten.report = [&z, angezeigt](const jet::filelock::WaitReport& r) {
        if (!z.benutzer) return;
        if (r.ended) {
            if (*angezeigt) z.benutzer->fortschritt(0, 0, {});
            *angezeigt = false;
            return;
        }
        // A wait shorter than a second is the ordinary turn-taking of two
        // writers; only a longer one is worth a display.
        if (r.waited < std::chrono::seconds(1)) return;
        *angezeigt = true;
        const long sekunden =
            static_cast<long>(std::chrono::duration_cast<std::chrono::seconds>(r.waited).count());
        const long grenze =
            static_cast<long>(std::chrono::duration_cast<std::chrono::seconds>(r.limit).count());
        z.benutzer->fortschritt(
            sekunden, grenze,
            "Warten auf die Sperre eines anderen Prozesses, " + std::to_string(sekunden) + " s");
    };
    return db::jetOpener(platform::nativePath, std::move(warten));
}

}  // namespace tessara
