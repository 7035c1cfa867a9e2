#pragma once
// The start-up tests' directory and program state, in German, with caption
// files written by the test into the application directory.
#include <string>

#include "startup/einstellungen_umgebung.h"

namespace tessara::captionstest {

namespace fs = std::filesystem;

class Umgebung : public einstellungentest::EinstellungenUmgebung {
  protected:
    void SetUp() override {
        EinstellungenUmgebung::SetUp();
        z.strSprache = "deutsch";
    }
    // art: "Frm", "Msgbox" or "Tooltip"; the bytes as they lie on disk.
    void datei(const std::string& art, const std::string& bytes) {
        schreiben(wurzel / "app" / ("txtBeschriftTessara9.0" + art + "_deutsch.txt"), bytes);
    }
    std::string log() const { return lesen(EinstellungenUmgebung::log()); }
};

}  // namespace tessara::captionstest
