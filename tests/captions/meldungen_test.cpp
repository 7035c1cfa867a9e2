// The message family through a scripted user: lines looked up and joined,
// the title rule, the answers of a question and the don't-show-again box.
#include "captions/meldungen.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "captions/umgebung.h"
#include "startup/einstellungen.h"

namespace tessara::captionstest {
namespace {

class Meldungen : public Umgebung {
  protected:
    void SetUp() override {
        Umgebung::SetUp();
        datei("Msgbox",
              "[Allg]\r\n3=Info-Titel\r\n4=Frage-Titel\r\n10=eins\r\n11=zwei\r\n12=drei\r\n"
              "13=vier\r\n413=Nicht mehr anzeigen\r\n"
              "[Gruppe]\r\n10=G-eins\r\n[Speziell]\r\n10=S-eins\r\n11=S-zwei\r\n");
    }
};

TEST_F(Meldungen, InfoFamilieVerbindetZeilen) {
    struct Fall {
        std::function<void()> aufruf;
        std::string text;
    };
    const std::vector<Fall> faelle = {
        {[&] { subMsgboxInfoEinzeilig(z, 10); }, "eins"},
        {[&] { subMsgboxInfoEinzeilig(z, 10, kGruppeGruppe); }, "G-eins"},
        {[&] { subMsgboxInfoZweizeilig(z, 10, 11, kGruppeSpeziell); }, "S-eins\rS-zwei"},
        {[&] { subMsgboxInfoZweizeilig(z, 10, 11); }, "eins\rzwei"},
        {[&] { subMsgboxInfoVierZeilig121(z, 10, 11, 12, 13); }, "eins\rzwei\r\rdrei\rvier"},
        {[&] { subMsgboxInfoEinzeilig(z, 10, kGruppeAllg, {"c:\\Bibliothek\\dbTessara.mdb"}); },
         "eins\rc:\\Bibliothek\\dbTessara.mdb"},
        {[&] { subMsgboxInfoZweizeilig(z, 10, 99); }, "eins\r[Meldung 99]"},
    };
    for (const auto& f : faelle) {
        benutzer.gezeigt.clear();
        f.aufruf();
        ASSERT_EQ(benutzer.gezeigt.size(), 1u) << f.text;
        const auto& g = benutzer.gezeigt[0];
        EXPECT_EQ(std::tie(g.text, g.titel, g.symbol, g.knoepfe, g.kaestchen),
                  std::make_tuple(f.text, "Info-Titel", Symbol::Information, Knoepfe::Ok, ""));
    }
}

TEST_F(Meldungen, FrageIstWahrNurBeiJa) {
    const std::pair<Antwort, bool> faelle[] = {{Antwort::Ja, true},
                                               {Antwort::Nein, false},
                                               {Antwort::Abbrechen, false},
                                               {Antwort::Ok, false}};
    for (const auto& [antwort, erwartet] : faelle) {
        benutzer.gezeigt.clear();
        benutzer.antworten = {antwort};
        EXPECT_EQ(fctMsgboxFrageZweizeilig2(z, 10, 11), erwartet);
        ASSERT_EQ(benutzer.gezeigt.size(), 1u);
        const auto& g = benutzer.gezeigt[0];
        EXPECT_EQ(std::tie(g.text, g.titel, g.symbol, g.knoepfe),
                  std::make_tuple("eins\r\rzwei", "Frage-Titel", Symbol::Frage, Knoepfe::JaNein));
    }
}

TEST_F(Meldungen, NichtMehrAnzeigen) {
    // Information: unticked it comes again, ticked it is saved and gone.
    benutzer.haken = {false, true};
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Info, {10, "c:\\x"}, kGruppeAllg, "InfoSchluessel"));
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Info, {10, "c:\\x"}, kGruppeAllg, "InfoSchluessel"));
    ASSERT_EQ(benutzer.gezeigt.size(), 2u);
    EXPECT_EQ(benutzer.gezeigt[0].text, "eins\rc:\\x");
    EXPECT_EQ(benutzer.gezeigt[0].kaestchen, "Nicht mehr anzeigen");
    EXPECT_FALSE(fctMsgboxNichtMehrAnzeigen(z, "InfoSchluessel"));
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Info, {10}, kGruppeAllg, "InfoSchluessel"));
    EXPECT_EQ(benutzer.gezeigt.size(), 2u);

    // Question: a tick with No is not kept; with Yes it is, and from then on
    // the question answers Yes without being shown.
    benutzer.haken = {true, true};
    benutzer.antworten = {Antwort::Nein, Antwort::Ja};
    EXPECT_FALSE(fctMsgbox(z, MsgboxArt::Frage, {11}, kGruppeAllg, "FrageSchluessel"));
    EXPECT_TRUE(fctMsgboxNichtMehrAnzeigen(z, "FrageSchluessel"));
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Frage, {11}, kGruppeAllg, "FrageSchluessel"));
    EXPECT_EQ(benutzer.gezeigt.size(), 4u);
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Frage, {11}, kGruppeAllg, "FrageSchluessel"));
    EXPECT_EQ(benutzer.gezeigt.size(), 4u);

    EXPECT_EQ(lesen(wurzel / "Tessara9.0.ini"),
              "[MsgboxAnzeigen]\r\nInfoSchluessel=1\r\nFrageSchluessel=1\r\n");
}

// A Benutzer without check boxes still shows the box, and nothing is saved.
TEST_F(Meldungen, BenutzerOhneKontrollkaestchen) {
    struct Schlicht : Benutzer {
        int gezeigt = 0;
        Antwort meldung(const std::string&, const std::string&, Symbol, Knoepfe) override {
            ++gezeigt;
            return Antwort::Ja;
        }
        std::string ordnerWaehlen(const std::string&, const std::string&) override { return {}; }
        std::string dateiWaehlen(const std::string&, const std::string&, const std::string&,
                                 bool) override {
            return {};
        }
        void fortschritt(long, long, const std::string&) override {}
    } schlicht;
    z.benutzer = &schlicht;
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Frage, {10}, kGruppeAllg, "K"));
    EXPECT_TRUE(fctMsgbox(z, MsgboxArt::Frage, {10}, kGruppeAllg, "K"));
    EXPECT_EQ(schlicht.gezeigt, 2);
    EXPECT_TRUE(fctMsgboxNichtMehrAnzeigen(z, "K"));
}

}  // namespace
}  // namespace tessara::captionstest
