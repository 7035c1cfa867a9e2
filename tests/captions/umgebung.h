#pragma once
// A fresh directory per test standing for the application directory, with
// caption files written by the test, and a program state whose Settings
// file and error log lie beside it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::captionstest {

namespace fs = std::filesystem;

class Umgebung : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        wurzel = fs::temp_directory_path() / ("tessara_captions_" + std::to_string(::getpid()) +
                                              "_" + info->test_suite_name() + "_" + info->name());
        fs::remove_all(wurzel);
        fs::create_directories(wurzel / "app");
        z.benutzer = &benutzer;
        z.strAppPfad = prog(wurzel / "app");
        z.strCTemp = prog(wurzel) + "\\";
        z.strErrorDatei = prog(wurzel / "log.txt");
        z.strIniDatei = prog(wurzel / "Tessara9.0.ini");
        z.strSprache = "deutsch";
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(wurzel, ec);
    }

    static std::string prog(const fs::path& p) { return platform::programPath(p.string()); }
    static std::string lesen(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    }
    static void schreiben(const fs::path& p, const std::string& bytes) {
        std::ofstream(p, std::ios::binary | std::ios::trunc) << bytes;
    }
    // art: "Frm", "Msgbox" or "Tooltip"; the bytes as they lie on disk.
    void datei(const std::string& art, const std::string& bytes) {
        schreiben(wurzel / "app" / ("txtBeschriftTessara9.0" + art + "_deutsch.txt"), bytes);
    }
    std::string log() const { return lesen(wurzel / "log.txt"); }

    fs::path wurzel;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
};

}  // namespace tessara::captionstest
