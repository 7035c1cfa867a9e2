#pragma once
// Everything a CAD-bridge test needs: program state, the scripted desktop
// and clock, a scripted user, and drive "c:" mapped into a fresh temporary
// directory so the script and drawing files are real files.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "cad/cad_verbindung.h"
#include "frisches_verzeichnis.h"
#include "platform/memory/fake_clock.h"
#include "platform/memory/memory_desktop.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::test {

// The lines of a file in tests/cad/golden/, split at LF only: a CR belongs to
// the text the host receives.
inline std::vector<std::string> goldenZeilen(const std::string& name) {
    std::ifstream in(std::filesystem::path(TESSARA_SOURCE_DIR) / "tests/cad/golden" / name,
                     std::ios::binary);
    std::vector<std::string> zeilen;
    for (std::string s; std::getline(in, s);) zeilen.push_back(s);
    return zeilen;
}

// Compares lines with a golden file; TESSARA_UPDATE_GOLDEN=1 writes the file
// anew after an intended change, and its diff is the review.
inline void goldenVergleich(const std::string& name, const std::vector<std::string>& ist) {
    if (std::getenv("TESSARA_UPDATE_GOLDEN")) {
        std::ofstream aus(std::filesystem::path(TESSARA_SOURCE_DIR) / "tests/cad/golden" / name,
                          std::ios::binary);
        for (const auto& z : ist) aus << z << '\n';
    }
    EXPECT_EQ(ist, goldenZeilen(name));
}

class CadUmgebung : public ::testing::Test {
  protected:
    void SetUp() override {
        laufwerk = tessara::test::frischesVerzeichnis("cad");
        ::setenv("TESSARA_DRIVE_C", laufwerk.c_str(), 1);
        plattform.desktop = &desktop;
        plattform.clock = &uhr;
        z.plattform = &plattform;
        z.benutzer = &benutzer;
        z.strCTemp = "c:\\temp\\";
        z.strAppPfad = "c:\\Programme\\Tessara";
        z.strIniDatei = "c:\\Programme\\Tessara\\Tessara9.0.ini";
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove_all(laufwerk, ec);
    }

    // The native file behind a program path on drive c:.
    std::filesystem::path datei(const std::string& programmPfad) const {
        std::string rest = programmPfad.substr(2);
        for (char& c : rest)
            if (c == '\\') c = '/';
        return laufwerk / rest.substr(1);
    }
    std::string lesen(const std::string& programmPfad) const {
        return dateiInhalt(datei(programmPfad));
    }
    // The keystrokes the desktop received, one string each.
    std::vector<std::string> getippt() const {
        std::vector<std::string> r;
        for (const auto& t : desktop.typed()) r.push_back(t.keys);
        return r;
    }
    void anlegen(const std::string& programmPfad, const std::string& inhalt = "x") const {
        auto p = datei(programmPfad);
        std::filesystem::create_directories(p.parent_path());
        std::ofstream(p, std::ios::binary) << inhalt;
    }

    std::filesystem::path laufwerk;
    platform::FakeClock uhr;
    platform::MemoryDesktop desktop{&uhr};
    platform::Platform plattform;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    CadVerbindung v;
};

}  // namespace tessara::test
