// The Win32 registry backend against the real registry (under wine: the
// prefix's registry). Everything is written below HKCU\Software\TessaraTest
// and removed again.
#include "platform/win32/win32_registry.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace platform {
namespace {

const char* kBase = "Software\\TessaraTest";
const char* kSetup = "Software\\TessaraTest\\Vendel\\Tessara\\9.0\\Setup";

class Win32RegistryTest : public ::testing::Test {
  protected:
    void SetUp() override { reg_.deleteKeyTree(Hive::CurrentUser, kBase); }
    void TearDown() override {
        EXPECT_TRUE(reg_.deleteKeyTree(Hive::CurrentUser, kBase));
        EXPECT_FALSE(reg_.keyExists(Hive::CurrentUser, kBase));
    }
    Win32Registry reg_;
};

TEST_F(Win32RegistryTest, RoundTripsStringsAndDwordsWithTheirTypes) {
    EXPECT_FALSE(reg_.keyExists(Hive::CurrentUser, kSetup));
    ASSERT_TRUE(reg_.writeString(Hive::CurrentUser, kSetup, "strMassstabX", "1.5"));
    ASSERT_TRUE(reg_.writeDword(Hive::CurrentUser, kSetup, "longXRef", 1));
    ASSERT_TRUE(reg_.writeDword(Hive::CurrentUser, kSetup, "lonFrmHeight", 0xFFFFFFFFu));
    ASSERT_TRUE(reg_.writeString(Hive::CurrentUser, kSetup, "Eintrag1",
                                 "c:\\Bibliothek Größe\\dbTessara.mdb"));
    EXPECT_TRUE(reg_.keyExists(Hive::CurrentUser, "Software\\TessaraTest\\Vendel"));
    EXPECT_EQ(reg_.readString(Hive::CurrentUser, kSetup, "strMassstabX"), "1.5");
    EXPECT_EQ(reg_.readDword(Hive::CurrentUser, kSetup, "longXRef"), 1u);
    EXPECT_EQ(reg_.readDword(Hive::CurrentUser, kSetup, "lonFrmHeight"), 0xFFFFFFFFu);
    EXPECT_EQ(reg_.readString(Hive::CurrentUser, kSetup, "Eintrag1"),
              "c:\\Bibliothek Größe\\dbTessara.mdb");
    EXPECT_FALSE(reg_.readDword(Hive::CurrentUser, kSetup, "strMassstabX"));
    EXPECT_FALSE(reg_.readString(Hive::CurrentUser, kSetup, "longXRef"));
    EXPECT_FALSE(reg_.readString(Hive::CurrentUser, kSetup, "fehlt"));

    // What the backend wrote is what the raw API reads.
    DWORD type = 0, value = 0, size = sizeof value;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\TessaraTest\\Vendel\\Tessara\\9.0\\Setup",
                           L"longXRef", RRF_RT_ANY, &type, &value, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(value, 1u);
    wchar_t text[64] = {};
    DWORD bytes = sizeof text;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\TessaraTest\\Vendel\\Tessara\\9.0\\Setup",
                           L"Eintrag1", RRF_RT_REG_SZ, &type, text, &bytes),
              ERROR_SUCCESS);
    EXPECT_EQ(std::wstring(text), L"c:\\Bibliothek Gr\u00f6\u00dfe\\dbTessara.mdb");
}

TEST_F(Win32RegistryTest, NamesCompareWithoutCaseAndValuesAreListed) {
    ASSERT_TRUE(reg_.writeDword(Hive::CurrentUser, kSetup, "longCurrentX", 10));
    ASSERT_TRUE(reg_.writeDword(Hive::CurrentUser,
                                "SOFTWARE\\TESSARATEST\\vendel\\tessara\\9.0\\setup",
                                "LONGCURRENTX", 20));
    ASSERT_TRUE(reg_.writeString(Hive::CurrentUser, kSetup, "strAktuelleOrdnerNr", "001"));
    EXPECT_EQ(reg_.readDword(Hive::CurrentUser, kSetup, "longcurrentx"), 20u);
    auto names = reg_.valueNames(Hive::CurrentUser, kSetup);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[1], "strAktuelleOrdnerNr");
    EXPECT_EQ(
        reg_.readDword(Hive::CurrentUser,
                       "\\Software\\TessaraTest\\\\Vendel\\Tessara\\9.0\\Setup\\", "longCurrentX"),
        20u);
    EXPECT_TRUE(reg_.deleteValue(Hive::CurrentUser, kSetup, "LongCurrentX"));
    EXPECT_FALSE(reg_.deleteValue(Hive::CurrentUser, kSetup, "LongCurrentX"));
    EXPECT_EQ(reg_.valueNames(Hive::CurrentUser, kSetup).size(), 1u);
    ASSERT_TRUE(reg_.createKey(Hive::CurrentUser, "Software\\TessaraTest\\Leer\\Unter"));
    EXPECT_TRUE(reg_.valueNames(Hive::CurrentUser, "Software\\TessaraTest\\Leer\\Unter").empty());
}

TEST_F(Win32RegistryTest, ForeignValueTypesReadAsMissing) {
    ASSERT_TRUE(reg_.createKey(Hive::CurrentUser, kBase));
    HKEY k;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software\\TessaraTest", 0, KEY_SET_VALUE, &k),
              ERROR_SUCCESS);
    const BYTE bin[3] = {1, 2, 3};
    RegSetValueExW(k, L"binaer", 0, REG_BINARY, bin, sizeof bin);
    const wchar_t expand[] = L"%TEMP%\\x";
    RegSetValueExW(k, L"erweitert", 0, REG_EXPAND_SZ, reinterpret_cast<const BYTE*>(expand),
                   sizeof expand);
    RegCloseKey(k);
    EXPECT_FALSE(reg_.readString(Hive::CurrentUser, kBase, "binaer"));
    EXPECT_FALSE(reg_.readDword(Hive::CurrentUser, kBase, "binaer"));
    EXPECT_EQ(reg_.readString(Hive::CurrentUser, kBase, "erweitert"), "%TEMP%\\x");
}

TEST(Win32RegistryMachine, LocalMachineEntriesRoundTripAndAreRemoved) {
    Win32Registry reg;
    const char* key = "SOFTWARE\\TessaraTest\\Version_8\\Setup";
    reg.deleteKeyTree(Hive::LocalMachine, "SOFTWARE\\TessaraTest");
    if (!reg.createKey(Hive::LocalMachine, key))
        GTEST_SKIP() << "no write access to HKEY_LOCAL_MACHINE for this user";
    ASSERT_TRUE(reg.writeString(Hive::LocalMachine, "SOFTWARE\\TessaraTest\\Version_8", "Eintrag2",
                                "c:\\Bib\\dbTessara.mdb"));
    EXPECT_EQ(reg.readString(Hive::LocalMachine, "Software\\TessaraTest\\Version_8", "eintrag2"),
              "c:\\Bib\\dbTessara.mdb");
    EXPECT_FALSE(reg.readString(Hive::CurrentUser, "Software\\TessaraTest\\Version_8", "Eintrag2"));
    EXPECT_TRUE(reg.deleteKeyTree(Hive::LocalMachine, "SOFTWARE\\TessaraTest"));
    EXPECT_FALSE(reg.keyExists(Hive::LocalMachine, key));
}

}  // namespace
}  // namespace platform
