#pragma once
// A fresh directory per test and a program state whose paths point into it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "befehl.h"
#include "frisches_verzeichnis.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace slidetest {

// Runs tessara-cli with the arguments (already quoted), its errors into its
// output; the exit code.
inline int lauf(const std::string& argumente, std::string* ausgabe = nullptr) {
    int code = -1;
    const std::string text = tessara::test::befehlsAusgabe(
        std::string("'") + TESSARA_CLI + "' " + argumente + " 2>&1", &code);
    if (ausgabe) *ausgabe = text;
    return code;
}

class TempVerzeichnis : public ::testing::Test {
  protected:
    void SetUp() override {
        wurzel = tessara::test::frischesVerzeichnis("authoring");
        basis = platform::programPath(wurzel.string()) + "\\";
        z.strCTemp = basis;
        z.strErrorDatei = basis + "fehler.txt";
        z.benutzer = &benutzer;
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove_all(wurzel, ec);
    }

    // A file below the directory (relative name with "/"), with content.
    std::filesystem::path datei(const std::string& relativ, const std::string& inhalt = "x") {
        auto p = wurzel / relativ;
        std::filesystem::create_directories(p.parent_path());
        std::ofstream(p, std::ios::binary) << inhalt;
        return p;
    }
    static std::string lesen(const std::filesystem::path& p) {
        return tessara::test::dateiInhalt(p);
    }

    std::filesystem::path wurzel;
    std::string basis;  // program form, ends in "\"
    tessara::SkriptBenutzer benutzer;
    tessara::ProgrammZustand z;
};

}  // namespace slidetest
