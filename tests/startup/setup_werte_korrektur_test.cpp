// Setup values no window can show are put back to what a first start shows.
#include <gtest/gtest.h>

#include <functional>

#include "startup/registry_werte.h"

namespace tessara {
namespace {

struct Fall {
    const char* name;
    std::function<void(typSetupWerte&)> setzen;
    std::function<bool(const typSetupWerte&)> erwartet;
    bool korrigiert;
};

TEST(SetupWerteKorrigieren, PutsNonsenseBackToTheDefault) {
    using W = typSetupWerte;
    const std::vector<Fall> faelle = {
        {"nichts falsch", [](W&) {}, [](const W&) { return true; }, false},
        {"Bildgröße 12", [](W& w) { w.longAnzahlDerBilder = 12; },
         [](const W& w) { return w.longAnzahlDerBilder == 2; }, true},
        {"Bildgröße -1", [](W& w) { w.longAnzahlDerBilder = -1; },
         [](const W& w) { return w.longAnzahlDerBilder == 2; }, true},
        {"Bildgröße 7", [](W& w) { w.longAnzahlDerBilder = 7; },
         [](const W& w) { return w.longAnzahlDerBilder == 7; }, false},
        {"Doppelklick 9", [](W& w) { w.longDoppelklick = 9; },
         [](const W& w) { return w.longDoppelklick == 0; }, true},
        {"Doppelklick 3", [](W& w) { w.longDoppelklick = 3; },
         [](const W& w) { return w.longDoppelklick == 3; }, false},
        {"Schalter 5, Vorgabe 1", [](W& w) { w.longBlockAusBibliothek = 5; },
         [](const W& w) { return w.longBlockAusBibliothek == 1; }, true},
        {"Schalter -1, Vorgabe 0", [](W& w) { w.lonOldView = -1; },
         [](const W& w) { return w.lonOldView == 0; }, true},
        {"Maßstab abc", [](W& w) { w.strMassstabX = "abc"; },
         [](const W& w) { return w.strMassstabX == "1"; }, true},
        {"Maßstab leer", [](W& w) { w.strMassstabY = ""; },
         [](const W& w) { return w.strMassstabY == "1"; }, true},
        {"Maßstab 0.00", [](W& w) { w.strMassstabZ = "0.00"; },
         [](const W& w) { return w.strMassstabZ == "1"; }, true},
        {"Maßstab 1.2.3", [](W& w) { w.strMassstabZ = "1.2.3"; },
         [](const W& w) { return w.strMassstabZ == "1"; }, true},
        {"Maßstab mit Komma", [](W& w) { w.strMassstabX = " 0,25 "; },
         [](const W& w) { return w.strMassstabX == "0.25"; }, true},
        {"Maßstab gespiegelt", [](W& w) { w.strMassstabY = "-2.5"; },
         [](const W& w) { return w.strMassstabY == "-2.5"; }, false},
        {"Fenster negativ", [](W& w) { w.lonFrmHeight = -300, w.lonFrmWidth = -1; },
         [](const W& w) { return w.lonFrmHeight == 0 && w.lonFrmWidth == 0; }, true},
        // Left of or above the primary screen: a real place.
        {"Position negativ", [](W& w) { w.longCurrentX = -1200; },
         [](const W& w) { return w.longCurrentX == -1200; }, false},
    };
    for (const auto& f : faelle) {
        typSetupWerte w;
        f.setzen(w);
        EXPECT_EQ(fctSetupWerteKorrigieren(w), f.korrigiert) << f.name;
        EXPECT_TRUE(f.erwartet(w)) << f.name;
        EXPECT_FALSE(fctSetupWerteKorrigieren(w)) << f.name << ": a second pass changes nothing";
    }
}

}  // namespace
}  // namespace tessara
