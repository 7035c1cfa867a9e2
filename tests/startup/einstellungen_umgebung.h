#pragma once
// A fresh directory per test, drive "c:" mapped into it, and a program state
// whose Settings file, temporary directory and error log lie inside, with
// the memory backends of the platform layer.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "frisches_verzeichnis.h"
#include "platform/environment.h"
#include "platform/memory/fake_clock.h"
#include "platform/memory/memory_environment.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::einstellungentest {

namespace fs = std::filesystem;

class EinstellungenUmgebung : public ::testing::Test {
  protected:
    void SetUp() override {
        wurzel = tessara::test::frischesVerzeichnis("settings");
        fs::create_directories(wurzel / "app");
        fs::create_directories(wurzel / "drive_c");
        ::setenv("TESSARA_DRIVE_C", (wurzel / "drive_c").c_str(), 1);
        // The record's date and time are local time; fix the zone.
        ::setenv("TZ", "UTC", 1);
        ::tzset();

        env.setApplicationDirectory(prog(wurzel / "app"));
        env.setCommonAppData(prog(wurzel / "common"));
        plattform.registry = &registry;
        plattform.environment = &env;
        plattform.clock = &uhr;
        z.plattform = &plattform;
        z.benutzer = &benutzer;
        z.strAppPfad = prog(wurzel / "app");
        z.strCTemp = prog(wurzel) + "\\";
        z.strErrorDatei = z.strCTemp + "log.txt";
        z.strIniDatei = prog(wurzel / "Tessara9.0.ini");
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(wurzel, ec);
        ::unsetenv("TESSARA_DRIVE_C");
    }

    static std::string prog(const fs::path& p) { return platform::programPath(p.string()); }
    static std::string lesen(const fs::path& p) { return tessara::test::dateiInhalt(p); }
    static void schreiben(const fs::path& p, const std::string& bytes) {
        std::ofstream(p, std::ios::binary | std::ios::trunc) << bytes;
    }
    fs::path ini() const { return wurzel / "Tessara9.0.ini"; }
    fs::path log() const { return wurzel / "log.txt"; }

    fs::path wurzel;
    platform::MemoryEnvironment env;
    platform::MemoryRegistry registry;
    platform::FakeClock uhr;
    platform::Platform plattform;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
};

}  // namespace tessara::einstellungentest
