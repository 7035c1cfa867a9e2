// The Win32 registry backend against the real registry (under wine: the
// prefix's registry): the calls every backend answers alike, and what the
// raw API sees of them. Everything lies below Software\TessaraTest of both
// hives and is removed again.
#include "platform/win32/win32_registry.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "registry_vertrag.h"

namespace platform {
namespace {

const char* kBase = "Software\\TessaraTest";

class Win32RegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        for (Hive h : {Hive::CurrentUser, Hive::LocalMachine}) reg_.deleteKeyTree(h, kBase);
    }
    void TearDown() override {
        EXPECT_TRUE(reg_.deleteKeyTree(Hive::CurrentUser, kBase));
        reg_.deleteKeyTree(Hive::LocalMachine, kBase);  // not every test writes there
        for (Hive h : {Hive::CurrentUser, Hive::LocalMachine})
            EXPECT_FALSE(reg_.keyExists(h, kBase));
    }
    Win32Registry reg_;
};

TEST_F(Win32RegistryTest, AnswersAsEveryBackendAndWritesWhatTheRawApiReads) {
    registryVertragPruefen(reg_);
    ASSERT_TRUE(reg_.writeString(Hive::CurrentUser, kBase, "Pfad", "c:\\Größe\\dbTessara.mdb"));
    DWORD type = 0, value = 0, size = sizeof value;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\TessaraTest\\Namen", L"longCurrentY",
                           RRF_RT_ANY, &type, &value, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(value, 30u);
    wchar_t text[64] = {};
    DWORD bytes = sizeof text;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\TessaraTest", L"Pfad", RRF_RT_REG_SZ,
                           &type, text, &bytes),
              ERROR_SUCCESS);
    EXPECT_EQ(std::wstring(text), L"c:\\Gr\u00f6\u00dfe\\dbTessara.mdb");
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

}  // namespace
}  // namespace platform
