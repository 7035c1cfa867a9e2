#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

#include "frisches_verzeichnis.h"
#include "platform/memory/memory_registry.h"
#include "platform/posix/file_registry.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

const char* kRoot = "Software\\Vendel\\Tessara\\9.0";
const char* kSetup = "Software\\Vendel\\Tessara\\9.0\\Setup";

// The same behaviour is asked of the memory and the file registry.
class RegistryContract : public ::testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        if (GetParam()) {
            dir_ = tessara::test::frischesVerzeichnis("reg");
            reg_ = std::make_unique<FileRegistry>((dir_ / "cfg" / "registry.reg").string());
        } else {
            reg_ = std::make_unique<MemoryRegistry>();
        }
    }
    void TearDown() override {
        if (!dir_.empty()) fs::remove_all(dir_);
    }
    fs::path dir_;
    std::unique_ptr<Registry> reg_;
};

TEST_P(RegistryContract, RoundTripsStringsAndDwordsWithTheirTypes) {
    Registry& r = *reg_;
    EXPECT_FALSE(r.keyExists(Hive::CurrentUser, kSetup));
    EXPECT_FALSE(r.readString(Hive::CurrentUser, kSetup, "strMassstabX"));

    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "strMassstabX", "1.5"));
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "longXRef", 1));
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "lonFrmHeight", 0xFFFFFFFFu));
    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kRoot, "Eintrag1",
                              "c:\\Tessara\\\"Bib\"\\dbTessara.mdb\nzweite Zeile äöü"));
    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "", "Standardwert"));

    EXPECT_TRUE(r.keyExists(Hive::CurrentUser, kSetup));
    EXPECT_TRUE(r.keyExists(Hive::CurrentUser, "Software\\Vendel"));  // parents exist
    EXPECT_EQ(r.readString(Hive::CurrentUser, kSetup, "strMassstabX"), "1.5");
    EXPECT_EQ(r.readDword(Hive::CurrentUser, kSetup, "longXRef"), 1u);
    EXPECT_EQ(r.readDword(Hive::CurrentUser, kSetup, "lonFrmHeight"), 0xFFFFFFFFu);
    EXPECT_EQ(r.readString(Hive::CurrentUser, kRoot, "Eintrag1"),
              "c:\\Tessara\\\"Bib\"\\dbTessara.mdb\nzweite Zeile äöü");
    EXPECT_EQ(r.readString(Hive::CurrentUser, kSetup, ""), "Standardwert");

    // A value of the other type reads as missing.
    EXPECT_FALSE(r.readDword(Hive::CurrentUser, kSetup, "strMassstabX"));
    EXPECT_FALSE(r.readString(Hive::CurrentUser, kSetup, "longXRef"));
    // Rewriting with the other type replaces it.
    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "longXRef", "0"));
    EXPECT_FALSE(r.readDword(Hive::CurrentUser, kSetup, "longXRef"));
    EXPECT_EQ(r.readString(Hive::CurrentUser, kSetup, "longXRef"), "0");

    // The hives are separate.
    EXPECT_FALSE(r.keyExists(Hive::LocalMachine, kSetup));
    ASSERT_TRUE(r.writeString(Hive::LocalMachine, "Software\\Tessara\\Version_8", "Eintrag2",
                              "d:\\lib\\dbTessara.mdb"));
    EXPECT_FALSE(r.readString(Hive::CurrentUser, "Software\\Tessara\\Version_8", "Eintrag2"));
    EXPECT_EQ(r.readString(Hive::LocalMachine, "SOFTWARE\\Tessara\\Version_8", "Eintrag2"),
              "d:\\lib\\dbTessara.mdb");
}

TEST_P(RegistryContract, NamesCompareWithoutCaseAndKeepTheFirstSpelling) {
    Registry& r = *reg_;
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "longCurrentX", 10));
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, "SOFTWARE\\VENDEL\\tessara\\9.0\\setup",
                             "LONGCURRENTX", 20));
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "longCurrentY", 30));
    EXPECT_EQ(r.readDword(Hive::CurrentUser, kSetup, "LongCurrentx"), 20u);
    EXPECT_EQ(r.valueNames(Hive::CurrentUser, kSetup),
              (std::vector<std::string>{"longCurrentX", "longCurrentY"}));
    // Separators at the ends or doubled do not make another key.
    EXPECT_EQ(r.readDword(Hive::CurrentUser, "\\Software\\Vendel\\\\Tessara\\9.0\\Setup\\",
                          "longCurrentY"),
              30u);
}

TEST_P(RegistryContract, DeletesValuesAndCreatesKeys) {
    Registry& r = *reg_;
    EXPECT_FALSE(r.deleteValue(Hive::CurrentUser, kSetup, "fehlt"));
    ASSERT_TRUE(r.createKey(Hive::LocalMachine, "SOFTWARE\\Tessara\\Version_8\\Setup"));
    EXPECT_TRUE(r.keyExists(Hive::LocalMachine, "Software\\Tessara\\Version_8"));
    EXPECT_TRUE(r.valueNames(Hive::LocalMachine, "SOFTWARE\\Tessara\\Version_8\\Setup").empty());
    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "a", "1"));
    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "b", "2"));
    EXPECT_TRUE(r.deleteValue(Hive::CurrentUser, kSetup, "A"));
    EXPECT_FALSE(r.readString(Hive::CurrentUser, kSetup, "a"));
    EXPECT_EQ(r.valueNames(Hive::CurrentUser, kSetup), std::vector<std::string>{"b"});
    // The hive itself exists, as on Windows; values are not kept in it.
    EXPECT_TRUE(r.createKey(Hive::CurrentUser, ""));
    EXPECT_TRUE(r.keyExists(Hive::CurrentUser, ""));
    EXPECT_FALSE(r.writeString(Hive::CurrentUser, "", "x", "y"));
}

INSTANTIATE_TEST_SUITE_P(MemoryAndFile, RegistryContract, ::testing::Values(false, true),
                         [](const auto& param) { return param.param ? "File" : "Memory"; });

class FileRegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = tessara::test::frischesVerzeichnis("reg");
        path_ = (dir_ / "registry.reg").string();
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string slurp() { return tessara::test::dateiInhalt(path_); }
    fs::path dir_;
    std::string path_;
};

TEST_F(FileRegistryTest, PersistsAcrossInstancesInRegFileForm) {
    {
        FileRegistry r(path_);
        ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "strVerzeichnisVorgabe", "c:\\Bib\\"));
        ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "longReihe", 42));
    }
    FileRegistry again(path_);
    EXPECT_EQ(again.readString(Hive::CurrentUser, kSetup, "strVerzeichnisVorgabe"), "c:\\Bib\\");
    EXPECT_EQ(again.readDword(Hive::CurrentUser, kSetup, "longReihe"), 42u);
    std::string text = slurp();
    EXPECT_NE(text.find("[HKEY_CURRENT_USER\\Software\\Vendel\\Tessara\\9.0\\Setup]\n"),
              std::string::npos);
    EXPECT_NE(text.find("\"strVerzeichnisVorgabe\"=\"c:\\\\Bib\\\\\"\n"), std::string::npos);
    EXPECT_NE(text.find("\"longReihe\"=dword:0000002a\n"), std::string::npos);
    // No temporary file is left beside it.
    int files = 0;
    for (const auto& e : fs::directory_iterator(dir_))
        if (e.path().filename().string().find(".tmp.") != std::string::npos) ++files;
    EXPECT_EQ(files, 0);
}

TEST_F(FileRegistryTest, JunkReadsAsEmptyAndIsReplacedOnWrite) {
    {
        std::ofstream out(path_, std::ios::binary);
        std::mt19937 rng(7);
        for (int i = 0; i < 5000; ++i) out.put(static_cast<char>(rng()));
    }
    FileRegistry r(path_);
    EXPECT_FALSE(r.keyExists(Hive::CurrentUser, kSetup));
    EXPECT_FALSE(r.readString(Hive::CurrentUser, kSetup, "x"));
    EXPECT_TRUE(r.valueNames(Hive::CurrentUser, kSetup).empty());
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "x", 5));
    EXPECT_EQ(FileRegistry(path_).readDword(Hive::CurrentUser, kSetup, "x"), 5u);
}

TEST_F(FileRegistryTest, DamagedLinesAreSkippedTheRestIsRead) {
    fs::copy_file(std::string(TESSARA_SOURCE_DIR) + "/tests/platform/golden/beschaedigt.reg",
                  path_);
    FileRegistry r(path_);
    EXPECT_EQ(r.readString(Hive::CurrentUser, "Software\\A", "gut"), "ja");
    EXPECT_EQ(r.valueNames(Hive::CurrentUser, "Software\\A"), std::vector<std::string>{"gut"});
    EXPECT_FALSE(r.keyExists(Hive::LocalMachine, "Software\\B"));
    EXPECT_EQ(r.readDword(Hive::LocalMachine, "Software\\C", "zahl"), 0xFFFFu);
}

TEST_F(FileRegistryTest, AnUnwritablePlaceFailsTheWriteWithoutCrashing) {
    fs::path blocker = dir_ / "blocker";
    std::ofstream(blocker) << "a file where the directory should be";
    FileRegistry r((blocker / "registry.reg").string());
    EXPECT_FALSE(r.writeString(Hive::CurrentUser, kSetup, "x", "y"));
    EXPECT_FALSE(r.createKey(Hive::CurrentUser, kSetup));
    EXPECT_FALSE(r.readString(Hive::CurrentUser, kSetup, "x"));
}

TEST_F(FileRegistryTest, ConcurrentProcessesKeepEachOthersValues) {
    constexpr int kProcesses = 4, kValues = 25;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            FileRegistry r(path_);
            bool ok = true;
            for (int i = 0; i < kValues; ++i)
                ok = r.writeDword(Hive::CurrentUser, kSetup,
                                  "p" + std::to_string(p) + "v" + std::to_string(i),
                                  static_cast<std::uint32_t>(p * 1000 + i)) &&
                     ok;
            _exit(ok ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    FileRegistry r(path_);
    EXPECT_EQ(r.valueNames(Hive::CurrentUser, kSetup).size(),
              static_cast<std::size_t>(kProcesses * kValues));
    for (int p = 0; p < kProcesses; ++p)
        for (int i = 0; i < kValues; ++i)
            EXPECT_EQ(r.readDword(Hive::CurrentUser, kSetup,
                                  "p" + std::to_string(p) + "v" + std::to_string(i)),
                      static_cast<std::uint32_t>(p * 1000 + i));
}

TEST(FileRegistryPath, FollowsTheConfigurationDirectory) {
    const char* old = std::getenv("XDG_CONFIG_HOME");
    std::string saved = old ? old : "";
    setenv("XDG_CONFIG_HOME", "/srv/konfig", 1);
    EXPECT_EQ(FileRegistry::defaultPath(), "/srv/konfig/tessara/registry.reg");
    unsetenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    EXPECT_EQ(FileRegistry::defaultPath(),
              std::string(home && *home ? home : "/tmp") + "/.config/tessara/registry.reg");
    if (old) setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
}

}  // namespace
}  // namespace platform
