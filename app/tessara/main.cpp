// The window program: start-up with the real platform services.
#include <QApplication>
#include <QTimer>
#include <memory>
#include <string>
#include <vector>

#include "cad/acad_ueber_automation.h"
#include "cad/cad_verbindung.h"
#include "captions/beschriftung.h"
#include "entry/start_ablauf.h"
#include "entry/tessara_start.h"
#include "platform/console.h"
#include "platform/platform.h"
#include "platform/system.h"
#include "platform/system_clock.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/qt_benutzer.h"

int main(int argc, char** argv) {
    // The command line is taken before Qt removes its own options from it.
    auto env = platform::systemEnvironment(platform::commandLineArguments(argc, argv));
    QApplication app(argc, argv);

    auto registry = platform::systemRegistry();
    auto desktop = platform::systemDesktop([] { QApplication::processEvents(); });
    auto kanal = platform::systemInstanceChannel();
    platform::SystemClock clock;
    platform::Platform plattform;
    plattform.registry = registry.get();
    plattform.environment = env.get();
    plattform.desktop = desktop.get();
    plattform.clock = &clock;
    plattform.instance = kanal.get();

    tessara::QtBenutzer benutzer;
    tessara::ProgrammZustand z;
    z.plattform = &plattform;
    z.benutzer = &benutzer;
    // Where the system has no COM, the host is found by its window title.
    tessara::CadVerbindung cad;
    auto com = platform::systemAutomationHost();
    std::unique_ptr<tessara::AcadUeberAutomation> acad;
    if (com) {
        acad = std::make_unique<tessara::AcadUeberAutomation>(*com);
        cad.automation = acad.get();
    }

    tessara::FrmBlockverwaltung fenster(z, cad);
    benutzer.setEltern(&fenster);
    benutzer.setZustand(&z);
    benutzer.setBeschriftung([&z](const std::string& k) { return tessara::fctBeschriftung(z, k); });
    tessara::clsStart start;
    if (start.Main(z, fenster) == tessara::MainErgebnis::ProzessEnde) return 0;

    // Requests of later processes arrive through the instance channel, the
    // CAD host's through the entry class where the system has COM; both
    // enter Main again, one after another on this thread.
    auto klasse =
        platform::systemAutomationServer(tessara::kTessaraStartKlasse, tessara::kTessaraStartClsid,
                                         tessara::fctTessaraStartOperationen());
    QTimer abholen;
    QObject::connect(&abholen, &QTimer::timeout, [&] {
        start.anfragenAbholen(z, fenster, kanal->receive());
        if (klasse) start.anfragenAbholen(z, fenster, klasse->receive());
    });
    abholen.start(100);
    return app.exec();
}
