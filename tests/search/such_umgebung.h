#pragma once
// A real catalogue file in a fresh temporary directory, a scripted user and
// program state whose error log lies beside the file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "db/connection.h"
#include "db/jet_opener.h"
#include "frisches_verzeichnis.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::test {

class SuchUmgebung : public ::testing::Test {
  protected:
    void SetUp() override {
        verzeichnis = tessara::test::frischesVerzeichnis("suche");
        basis = platform::programPath(verzeichnis.string());
        z.strCTemp = basis + "\\";
        z.strErrorDatei = basis + "\\fehler.txt";
        z.benutzer = &benutzer;
    }
    void TearDown() override {
        std::error_code ec;
        std::filesystem::remove_all(verzeichnis, ec);
    }
    // A new catalogue "dbTessara.mdb" with its default rows, connected.
    void katalogAnlegen() {
        datei = basis + "\\dbTessara.mdb";
        ASSERT_TRUE(Mk_Datenbank(z, oeffner, datei));
        con.open(fctJetVerbindung(datei));
    }
    std::string lesen(const std::string& name) const { return dateiInhalt(verzeichnis / name); }
    std::string protokoll() const { return lesen("fehler.txt"); }

    std::filesystem::path verzeichnis;
    std::string basis, datei;
    db::StorageOpener oeffner = db::jetOpener(platform::nativePath);
    db::Connection con{oeffner};
    SkriptBenutzer benutzer;
    ProgrammZustand z;
};

}  // namespace tessara::test
