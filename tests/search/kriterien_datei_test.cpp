// Criteria files: the round trip through the save and open dialogs, the
// file's exact bytes, and files that are not what they should be.
#include <fstream>

#include "frisches_verzeichnis.h"
#include "search/such_kriterien_datei.h"
#include "startup/zeichensatz.h"
#include "such_umgebung.h"

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
    struct Fall {
        const char* name;
        std::string bytes;
        std::string feld0, op0, feld9;
    };
    const std::string zehnMb(10 * 1024 * 1024, 'A');
    const std::vector<Fall> faelle = {
        {"empty", "", "", "", ""},
        {"truncated", "10:00:00\r\nVentil\r\n>=\r\nDN", "Ventil", ">=", ""},
        {"bare LF lines", "t\nVentil\n=\n", "Ventil", "=", ""},
        {"overlong", "t\r\n" + zehnMb, std::string(4096, 'A'), "", ""},
        {"binary", std::string("\0\x01\xff\r\nA\0B\r\n\x02\r\n", 14), "AB", "", ""},
        {"utf-8", "t\r\nHähne\r\n<>\r\n", "Hähne", "<>", ""},
        {"utf-8 bom", "\xEF\xBB\xBFt\r\nMaß\r\n", "Maß", "", ""},
        {"ansi", "t\r\nH\xE4hne\r\nkein Operator\r\n", "Hähne", "", ""},
    };
    for (const auto& f : faelle) {
        schreiben("f.str", f.bytes);
        benutzer.dateien = {basis + "\\f.str"};
        typSuchKriterien k = beispiel();
        ASSERT_TRUE(fctKriterienLaden(z, benutzer, k)) << f.name;
        EXPECT_EQ(k.txtBenennung[0], f.feld0) << f.name;
        EXPECT_EQ(k.comboxSuchkriterienVerknuepfen[0], f.op0) << f.name;
        EXPECT_EQ(k.txtBenennung[9], f.feld9) << f.name;
        EXPECT_EQ(lesen("f.str"), f.bytes) << f.name << ": the file was changed";
    }
    benutzer.dateien = {basis + "\\fehlt.str"};
    typSuchKriterien k = beispiel();
    EXPECT_FALSE(fctKriterienLaden(z, benutzer, k));
    EXPECT_EQ(k.txtBenennung[0], "Kugelhahn");
    EXPECT_NE(protokoll().find("fehlt.str"), std::string::npos);
}

}  // namespace
}  // namespace tessara::test
