// The window program: start-up with the real platform services.
#include <QApplication>
#include <QTimer>
#include <string>
#include <vector>

#include "cad/cad_verbindung.h"
#include "entry/start_ablauf.h"
#include "platform/platform.h"
#include "platform/posix/file_registry.h"
#include "platform/posix/posix_environment.h"
#include "platform/posix/unix_instance_channel.h"
#include "platform/system_clock.h"
#include "platform/x11/x11_desktop.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/qt_benutzer.h"

int main(int argc, char** argv) {
    // The command line is taken before Qt removes its own options from it.
    platform::PosixEnvironment env(argc, argv);
    QApplication app(argc, argv);

    platform::FileRegistry registry;
    platform::X11Desktop desktop;
    platform::SystemClock clock;
    platform::UnixInstanceChannel kanal;
    platform::Platform plattform;
    plattform.registry = &registry;
    plattform.environment = &env;
    plattform.desktop = &desktop;
    plattform.clock = &clock;
    plattform.instance = &kanal;
    desktop.onPump = [] { QApplication::processEvents(); };

    tessara::QtBenutzer benutzer;
    tessara::ProgrammZustand z;
    z.plattform = &plattform;
    z.benutzer = &benutzer;
    // No COM on this system: the host is found by its window title.
    tessara::CadVerbindung cad;

    tessara::FrmBlockverwaltung fenster(z, cad);
    benutzer.setEltern(&fenster);
    tessara::clsStart start;
    if (start.Main(z, fenster) == tessara::MainErgebnis::ProzessEnde) return 0;

    // Requests of later processes arrive through the instance channel and
    // enter Main again, one after another on this thread.
    QTimer abholen;
    QObject::connect(&abholen, &QTimer::timeout, [&] {
        for (const auto& m : kanal.receive())
            start.anfrageAusfuehren(z, fenster, m.operation, m.arguments);
    });
    abholen.start(100);
    return app.exec();
}
