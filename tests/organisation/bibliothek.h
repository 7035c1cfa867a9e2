#pragma once
// A library for the Folder and Page tests: a real .mdb made by Mk_Datenbank
// in a fresh directory, the shipped code table in a program directory beside
// it, and a navigation model open on it with Folder "000" current. Messages
// show as "[Meldung <nr>]" (the program directory holds no caption files),
// so a test names the messages it expects by number.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/jet_opener.h"
#include "library/navigation_model.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::orgtest {

namespace fs = std::filesystem;

class Bibliothek : public ::testing::Test {
  public:
    void SetUp() override;
    void TearDown() override;

    // Runs a statement on a connection of its own.
    void ausfuehren(const std::string& sql);
    // The rows of a SELECT, each as its values joined by "|" (Null as "").
    std::vector<std::string> zeilen(const std::string& sql);
    // Opens the model on the library (again) with Folder `code` current.
    void oeffnen(const std::string& code = "000");
    // What the user was shown, each as "title: text" with "\r" as " / ".
    std::vector<std::string> gezeigt() const;
    static std::string m(long nr) { return "[Meldung " + std::to_string(nr) + "]"; }
    // The error records written (lines of the log naming an error); a test
    // that expects none leaves fehlerErwartet false and TearDown checks.
    std::vector<std::string> fehler() const;
    bool fehlerErwartet = false;

    fs::path wurzel;
    std::string db;     // program path of dbTessara.mdb
    std::string basis;  // library directory, with a trailing backslash
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    db::StorageOpener oeffner = db::jetOpener(platform::nativePath);
    std::unique_ptr<NavigationsModell> modell;
};

}  // namespace tessara::orgtest
