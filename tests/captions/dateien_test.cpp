// The caption files that ship in data/: Windows-1252 with CR LF, the same
// keys in every language, a text for every control and message the program
// shows.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <tuple>

#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "captions/umgebung.h"
#include "platform/case_fold.h"
#include "startup/ini_datei.h"
#include "tabelle.h"

namespace tessara::captionstest {
namespace {

const fs::path kDaten = fs::path(TESSARA_SOURCE_DIR) / "data";
const char* const kArten[] = {"Frm", "Msgbox", "Tooltip"};
const char* const kSprachen[] = {"deutsch", "englisch"};

class Dateien : public Umgebung {
  protected:
    void SetUp() override {
        Umgebung::SetUp();
        z.strAppPfad = prog(kDaten);
    }
    static std::string bytes(const std::string& art, const std::string& sprache) {
        return lesen(kDaten / ("txtBeschriftTessara9.0" + art + "_" + sprache + ".txt"));
    }
};

TEST_F(Dateien, Cp1252MitCrLfUndGleicheSchluesselInJederSprache) {
    for (const char* art : kArten) {
        std::set<std::string> schluessel[2];
        for (int s = 0; s < 2; ++s) {
            const std::string b = bytes(art, kSprachen[s]);
            ASSERT_FALSE(b.empty()) << art << " " << kSprachen[s];
            const IniText ini = IniText::ausBytes(b);
            EXPECT_EQ(ini.kodierung(), IniText::Kodierung::Ansi) << art << " " << kSprachen[s];
            // Every line ends in CR LF, and no CR or LF stands alone.
            auto n = [&](const std::string& t) {
                std::size_t k = 0;
                for (auto p = b.find(t); p != std::string::npos; p = b.find(t, p + 1)) ++k;
                return k;
            };
            EXPECT_EQ(std::tuple(n("\r"), n("\n")), std::tuple(n("\r\n"), n("\r\n")))
                << art << " " << kSprachen[s];
            ASSERT_EQ(b.substr(b.size() - 2), "\r\n");
            const std::vector<std::string> sektionen = ini.sektionen();
            EXPECT_EQ(sektionen, (std::vector<std::string>{"Allg", "Gruppe", "Speziell"}));
            for (const auto& sk : sektionen)
                for (const auto& k : ini.schluessel(sk))
                    EXPECT_TRUE(schluessel[s].insert(sk + "|" + platform::foldCase(k)).second)
                        << art << " " << kSprachen[s] << ": twice " << sk << "|" << k;
        }
        EXPECT_EQ(schluessel[0], schluessel[1]) << art << ": deutsch and englisch differ";
    }
    // The bytes on disk are Windows-1252: "ö" is one byte 0xF6.
    EXPECT_NE(bytes("Msgbox", "deutsch")
                  .find("ge\xF6"
                        "ffnet"),
              std::string::npos);
}

TEST_F(Dateien, JedesSteuerelementUndJedeMeldungHatEinenText) {
    for (const char* sprache : kSprachen) {
        z.strSprache = sprache;
        for (const auto& f : test::tabelle("captions/golden/steuerelemente.txt")) {
            const std::string& zeile = f.at(0);
            std::istringstream in(zeile);
            std::string form, control, was;
            in >> form >> control;
            if (control == "-") control.clear();
            while (in >> was) {
                if (was == "text") {
                    EXPECT_TRUE(fctBeschriftungSuchen(z, BeschriftungsArt::Frm, form, control))
                        << sprache << ": " << zeile;
                } else if (was == "tip") {
                    auto t = fctBeschriftungSuchen(z, BeschriftungsArt::Tooltip, form, control);
                    EXPECT_TRUE(t && !t->empty()) << sprache << ": " << zeile;
                } else {
                    ASSERT_EQ(was.rfind("items:", 0), 0u) << zeile;
                    const int n = std::stoi(was.substr(6));
                    for (int i = 0; i <= n; ++i)
                        EXPECT_EQ(fctBeschriftungSuchen(z, BeschriftungsArt::Frm, form, control, i)
                                      .has_value(),
                                  i < n)
                            << sprache << ": " << zeile << " item " << i;
                }
            }
        }
        for (const auto& f : test::tabelle("captions/golden/meldungen.txt")) {
            std::istringstream in(f.at(0));
            for (long n; in >> n;) {
                auto t =
                    fctBeschriftungWert(z, BeschriftungsArt::Msgbox, "Allg", std::to_string(n));
                EXPECT_TRUE(t && !t->empty()) << sprache << ": message " << n;
            }
        }
    }
    EXPECT_EQ(log(), "");
}

TEST_F(Dateien, WoertlicheTexte) {
    for (const auto& f : test::tabelle("captions/golden/woertlich.txt")) {
        ASSERT_EQ(f.size(), 4u) << f.at(0);
        const auto art = f[0] == "Frm" ? BeschriftungsArt::Frm : BeschriftungsArt::Msgbox;
        EXPECT_EQ(fctBeschriftungWert(z, art, f[1], f[2]), f[3]) << f[2];
    }
}

}  // namespace
}  // namespace tessara::captionstest
