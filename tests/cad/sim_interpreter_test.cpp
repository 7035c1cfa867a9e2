// The command line of the simulated host, fed directly: the end-to-end
// tests rely on it reading the program's scripts as a host would.
#include "sim_interpreter.h"

#include <gtest/gtest.h>

#include <sstream>

#include "cad/lt_skript.h"
#include "cad_umgebung.h"

namespace tessara::test {
namespace {

class SimHostBefehle : public CadUmgebung {
  protected:
    bool enthaelt(const std::string& zeile) const {
        return ("\n" + log.str()).find("\n" + zeile + "\n") != std::string::npos;
    }
    std::ostringstream log;
    simhost::SimInterpreter host{log};
};

TEST_F(SimHostBefehle, SkriptNurMitFiledia0) {
    ASSERT_TRUE(fctSkriptSchreiben(z, "c:\\temp\\bv8LT.scr", fctSkriptOeffnen("c:\\x.dwg")));
    host.eingabe("script");
    host.eingabe("c:\\temp\\bv8LT.scr");
    EXPECT_TRUE(enthaelt("DATEIDIALOG SCRIPT")) << log.str();
    EXPECT_FALSE(enthaelt("OPEN c:\\x.dwg"));
    host.escape();
    for (const char* t : {"filedia", "0", "script", "c:\\temp\\bv8LT.scr"}) host.eingabe(t);
    EXPECT_TRUE(enthaelt("OPEN c:\\x.dwg")) << log.str();
    EXPECT_EQ(host.variable("FILEDIA"), "1") << "the script sets it back";
}

TEST_F(SimHostBefehle, FehlendeZeichnungWirdNichtEingefuegt) {
    host.eingabe("._-insert");
    host.eingabe("\"a=c:\\fehlt.dwg\"");
    EXPECT_TRUE(enthaelt("FEHLER DATEI NICHT GEFUNDEN c:\\fehlt.dwg")) << log.str();
    EXPECT_EQ(host.prompt(), "Befehl:");
}

TEST_F(SimHostBefehle, UndoZurueckZurMarke) {
    const auto vorher = host.zeichnung().size();
    host.eingabe("_undo");
    host.eingabe("_m");
    host.eingabe("._-wblock");
    host.eingabe("\"c:\\B\\neu.dwg\"");
    std::filesystem::create_directories(datei("c:\\B\\"));
    host.eingabe("");
    host.rechtsklick();
    EXPECT_TRUE(host.zeichnung().empty());
    EXPECT_EQ(lesen("c:\\B\\neu.dwg").rfind("SIMHOST ZEICHNUNG\n", 0), 0u);
    host.eingabe("_undo");
    host.eingabe("_b");
    EXPECT_EQ(host.zeichnung().size(), vorher);
}

}  // namespace
}  // namespace tessara::test
