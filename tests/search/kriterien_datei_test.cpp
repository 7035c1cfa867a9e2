// Criteria files: the round trip through the save and open dialogs, the
// file's exact bytes, and files that are not what they should be.
#include <fstream>

#include "frisches_verzeichnis.h"
#include "search/such_kriterien_datei.h"
#include "startup/zeichensatz.h"
#include "such_umgebung.h"
#include "tabelle.h"

namespace tessara::test {
namespace {

class KriterienDatei : public SuchUmgebung {
  protected:
    void schreiben(const std::string& name, const std::string& bytes) {
        std::ofstream(verzeichnis / name, std::ios::binary) << bytes;
    }
    typSuchKriterien beispiel() const {
        typSuchKriterien k;
        k.txtBenennung[0] = "Kugelhahn";
        k.txtBenennung[3] = "Maß ä";
        k.txtBenennung[9] = std::string(2000, 'x');
        k.txtBenennung[10] = "nicht gespeichert";
        k.comboxSuchkriterienVerknuepfen[0] = "<>";
        k.comboxSuchkriterienVerknuepfen[9] = "$";
        return k;
    }
};

TEST_F(KriterienDatei, SavingAndLoadingRestoresTextsAndOperatorsButNotTheBlockName) {
    benutzer.dateien = {basis + "\\Meine", basis + "\\Meine.str"};  // no extension: ".str" added
    ASSERT_TRUE(fctKriterienSpeichern(z, benutzer, beispiel()));
    const std::string bytes = lesen("Meine.str");
    // 21 lines, each ending in CR LF; the umlauts in Windows-1252.
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 21);
    EXPECT_NE(bytes.find("\r\nMa\xDF \xE4\r\n"), std::string::npos);
    EXPECT_EQ(bytes.find("nicht gespeichert"), std::string::npos);
    typSuchKriterien k;
    k.txtBenennung[10] = "bleibt";
    k.txtBenennung[5] = "wird geleert";
    ASSERT_TRUE(fctKriterienLaden(z, benutzer, k));
    const auto b = beispiel();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(k.txtBenennung[i], b.txtBenennung[i]) << i;
        EXPECT_EQ(k.comboxSuchkriterienVerknuepfen[i], b.comboxSuchkriterienVerknuepfen[i]) << i;
    }
    EXPECT_EQ(k.txtBenennung[10], "bleibt");
}

TEST_F(KriterienDatei, TheFileTextMatchesTheGoldenFile) {
    typSuchKriterien k = beispiel();
    k.txtBenennung[9] = "Zeile\r\numbrochen";  // a value stays one line
    EXPECT_EQ(fctKriterienDateiText(k, "12:34:56"),
              dateiInhalt(std::string(TESSARA_SOURCE_DIR) + "/tests/search/golden/kriterien.str"));
}

TEST_F(KriterienDatei, CancellingTheDialogsDoesNothing) {
    typSuchKriterien k = beispiel();
    EXPECT_FALSE(fctKriterienSpeichern(z, benutzer, k));
    EXPECT_FALSE(fctKriterienLaden(z, benutzer, k));
    EXPECT_EQ(k.txtBenennung[0], "Kugelhahn");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(verzeichnis), {}), 0);
}

TEST_F(KriterienDatei, BadFilesGiveClearFieldsAndNeverACrash) {
    auto faelle = tabelle("search/golden/kriterien_kaputt.txt");
    faelle.push_back(
        {"overlong", "t\r\n" + std::string(10 << 20, 'A'), std::string(4096, 'A'), ""});
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.at(0));
        schreiben("f.str", f.at(1));
        benutzer.dateien = {basis + "\\f.str"};
        typSuchKriterien k = beispiel();
        ASSERT_TRUE(fctKriterienLaden(z, benutzer, k));
        EXPECT_EQ(k.txtBenennung[0], f.at(2));
        EXPECT_EQ(k.comboxSuchkriterienVerknuepfen[0], f.at(3));
        EXPECT_EQ(k.txtBenennung[9], "");
        EXPECT_EQ(lesen("f.str"), f[1]) << "the file was changed";
    }
    benutzer.dateien = {basis + "\\fehlt.str"};
    typSuchKriterien k = beispiel();
    EXPECT_FALSE(fctKriterienLaden(z, benutzer, k));
    EXPECT_EQ(k.txtBenennung[0], "Kugelhahn");
    EXPECT_NE(protokoll().find("fehlt.str"), std::string::npos);
}

}  // namespace
}  // namespace tessara::test
