#include "startup/kommandozeile.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

using Art = typKommandozeile::Art;

struct Fall {
    const char* zeile;
    Art art;
    const char* str1;
    const char* str2;
};

TEST(Kommandozeile, WirdWieGewohntZerlegt) {
    const Fall faelle[] = {
        {"", Art::Leer, "", ""},
        // "/d", blank and quote in front, the closing quote behind: cut blindly.
        {"/d \"C:\\Lib\\dbTessara.mdb\"", Art::Datenbank, "C:\\Lib\\dbTessara.mdb", ""},
        {"/D XC:\\Lib\\dbTessara.mdbY", Art::Datenbank, "C:\\Lib\\dbTessara.mdb", ""},
        {"/d \"x", Art::Datenbank, "", ""},
        {"/d", Art::Datenbank, "", ""},
        {"lblkeinfuegen", Art::LBlkEinfuegen, "", ""},
        {"LBlkEinfuegen", Art::LBlkEinfuegen, "", ""},
        {"lblkeinfuegen ", Art::Nichts, "", ""},
        {" lblkeinfuegen", Art::Nichts, "", ""},
        {"lblock", Art::Nichts, "", ""},
        {"/s 0010017;A", Art::StartForm2, "0010017", "a"},
        {"/s 0010017;", Art::StartForm2, "0010017", ""},
        {"/s", Art::Nichts, "", ""},
        {"/s 0010017", Art::Nichts, "", ""},
        {"/s a;b;c", Art::Nichts, "", ""},
        {"/s;b", Art::StartForm2, "", "b"},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.zeile);
        auto k = fctKommandozeileAuswerten(f.zeile);
        EXPECT_EQ(k.art, f.art);
        EXPECT_EQ(k.str1, f.str1);
        EXPECT_EQ(k.str2, f.str2);
    }
}

TEST(Kommandozeile, KleinschreibungMitUmlauten) {
    EXPECT_EQ(fctKlein("ÄÖÜ Abc ß"), "äöü abc ß");
    EXPECT_EQ(fctKommandozeileAuswerten("LBLOCK").strKlein, "lblock");
}

TEST(Kommandozeile, BeliebigeBytesWerdenVerkraftet) {
    std::string s;
    for (int i = 0; i < 4096; ++i) {
        s.push_back(static_cast<char>((i * 131 + 7) & 0xFF));
        auto k = fctKommandozeileAuswerten(s);
        EXPECT_LE(k.str1.size(), s.size());
    }
}

}  // namespace
}  // namespace tessara
