// The command line of the simulated host, fed directly: the end-to-end
// tests rely on it reading the program's scripts as a host would.
#include "sim_interpreter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>

#include "authoring/slide.h"
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

// Sessions from a golden transcript: "> text" is typed, "@L x,y" and "@R"
// click, "@D file" shows a written drawing, "@S file" a slide's vectors;
// every other line is what the host logs in between
// (inputs and clicks are echoed by the directives, not repeated).
TEST_F(SimHostBefehle, Sitzungen) {
    std::filesystem::create_directories(datei("c:\\B\\"));
    std::string erwartet, ist;
    std::unique_ptr<std::ostringstream> l;
    std::unique_ptr<simhost::SimInterpreter> h;
    std::size_t gelesen = 0;
    for (const auto& g : goldenZeilen("simhost_sitzungen.txt")) {
        erwartet += g + "\n";
        if (g.rfind("===", 0) == 0) {
            l = std::make_unique<std::ostringstream>();
            h = std::make_unique<simhost::SimInterpreter>(*l);
            gelesen = 0;
        } else if (!g.empty() && g[0] != '>' && g[0] != '@') {
            continue;
        }
        ist += g + "\n";
        const std::string arg = g.size() > 2 ? g.substr(g[0] == '@' ? 3 : 2) : "";
        int x = 0, y = 0;
        if (g[0] == '>') {
            h->eingabe(arg);
        } else if (g.rfind("@L", 0) == 0 && std::sscanf(arg.c_str(), "%d,%d", &x, &y) == 2) {
            h->linksklick(x, y);
        } else if (g == "@R") {
            h->rechtsklick();
        } else if (g.rfind("@D", 0) == 0) {
            ist += lesen(arg);
        } else if (g.rfind("@S", 0) == 0) {
            const auto s = slide::readSlideFile(datei(arg).string());
            for (const auto& e : s.elements) {
                const auto p = s.pointsOf(e);
                ist += "V " + std::to_string(e.colour) + " " + std::to_string(p[0].x) + "," +
                       std::to_string(p[0].y) + " " + std::to_string(p[1].x) + "," +
                       std::to_string(p[1].y) + "\n";
            }
        }
        std::istringstream neu(l->str().substr(gelesen));
        gelesen = l->str().size();
        for (std::string zeile; std::getline(neu, zeile);)
            if (zeile.rfind("EINGABE [", 0) != 0 && zeile.rfind("KLICK ", 0) != 0)
                ist += zeile + "\n";
    }
    EXPECT_EQ(ist, erwartet);
}

}  // namespace
}  // namespace tessara::test
