// Setup values no window can show are put back to what a first start shows.
#include <gtest/gtest.h>

#include <stdexcept>

#include "startup/dialog_farbe.h"
#include "startup/registry_werte.h"
#include "tabelle.h"

namespace tessara {
namespace {

TEST(SetupWerteKorrigieren, PutsNonsenseBackToTheDefault) {
    auto feld = [](const std::string& name) -> const decltype(typSetupEintrag::feld)& {
        for (const auto& e : fctSetupEintraege())
            if (name == e.name) return e.feld;
        throw std::invalid_argument(name);
    };
    for (const auto& f : test::tabelle("startup/golden/setup_korrektur.txt")) {
        SCOPED_TRACE(f.at(0));
        typSetupWerte w;
        for (std::size_t i = 2; i + 2 < f.size(); i += 3) {
            if (auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&feld(f[i])))
                w.** zahl = std::stoi(f[i + 1]);
            else
                w.*std::get<std::string typSetupWerte::*>(feld(f[i])) = f[i + 1];
        }
        EXPECT_EQ(fctSetupWerteKorrigieren(w), f.at(1) == "1");
        for (std::size_t i = 2; i + 2 < f.size(); i += 3) {
            if (auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&feld(f[i])))
                EXPECT_EQ(w.**zahl, std::stoi(f[i + 2])) << f[i];
            else
                EXPECT_EQ(w.*std::get<std::string typSetupWerte::*>(feld(f[i])), f[i + 2]) << f[i];
        }
        EXPECT_FALSE(fctSetupWerteKorrigieren(w)) << "a second pass changes nothing";
    }
}

// "sBkColor" in each form it is met in, and what is no colour.
TEST(DialogFarbe, ReadAsWindowsColourValue) {
    for (const auto& f : test::tabelle("startup/golden/dialog_farbe.txt")) {
        const auto farbe = fctDialogFarbe(f.at(0) == "-" ? std::string() : f[0]);
        EXPECT_EQ(farbe ? std::to_string(*farbe) : std::string("-"), f.at(1)) << f[0];
    }
}

TEST(SetupBeimStart, MultipleInsertionFollowsSwitchedOnAtStart) {
    for (const auto [aktiv, vorher] : {std::pair{0, 1}, {1, 0}}) {
        typSetupWerte w;
        w.longMehrfachAktiv = aktiv;
        w.longMehrfacheinfuegen = vorher;
        subSetupBeimStart(w);
        EXPECT_EQ(w.longMehrfacheinfuegen, aktiv);
    }
}

}  // namespace
}  // namespace tessara
