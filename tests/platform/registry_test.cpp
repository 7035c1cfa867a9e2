#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <set>

#include "frisches_verzeichnis.h"
#include "platform/memory/memory_registry.h"
#include "platform/posix/file_registry.h"
#include "registry_vertrag.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

const char* kSetup = "Software\\Vendel\\Tessara\\9.0\\Setup";

// The same calls with the same results of the memory and the file registry
// (and, in tests/windows, of the real one).
TEST(RegistryContract, MemoryAndFileAnswerAlike) {
    MemoryRegistry memory;
    registryVertragPruefen(memory);
    const fs::path dir = tessara::test::frischesVerzeichnis("reg");
    FileRegistry file((dir / "cfg" / "registry.reg").string());
    registryVertragPruefen(file);
    // What the file holds is read back by the next instance alike.
    FileRegistry again((dir / "cfg" / "registry.reg").string());
    EXPECT_EQ(again.readString(Hive::LocalMachine, "Software\\TessaraTest\\Version_8", "Eintrag2"),
              "d:\\lib\\dbTessara.mdb");
    EXPECT_EQ(again.valueNames(Hive::CurrentUser, "Software\\TessaraTest\\Namen"),
              std::vector<std::string>{"longCurrentY"});
    fs::remove_all(dir);
}

class FileRegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = tessara::test::frischesVerzeichnis("reg");
        path_ = (dir_ / "registry.reg").string();
    }
    void TearDown() override { fs::remove_all(dir_); }
    fs::path dir_;
    std::string path_;
};

TEST_F(FileRegistryTest, KeepsRegFileFormWithoutATemporaryFileBeside) {
    FileRegistry r(path_);
    ASSERT_TRUE(r.writeString(Hive::CurrentUser, kSetup, "strVerzeichnisVorgabe", "c:\\Bib\\"));
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "longReihe", 42));
    EXPECT_EQ(tessara::test::dateiInhalt(path_),
              tessara::test::dateiInhalt(std::string(TESSARA_SOURCE_DIR) +
                                         "/tests/platform/golden/registry_datei.reg"));
    std::set<std::string> files;
    for (const auto& e : fs::directory_iterator(dir_)) files.insert(e.path().filename());
    EXPECT_EQ(files, (std::set<std::string>{"registry.reg", "registry.reg.lock"}));
}

TEST_F(FileRegistryTest, JunkOrDamagedLinesAreSkippedAndReplacedOnWrite) {
    {
        std::ofstream out(path_, std::ios::binary);
        std::mt19937 rng(7);
        for (int i = 0; i < 5000; ++i) out.put(static_cast<char>(rng()));
    }
    FileRegistry r(path_);
    EXPECT_FALSE(r.keyExists(Hive::CurrentUser, kSetup));
    EXPECT_TRUE(r.valueNames(Hive::CurrentUser, kSetup).empty());
    ASSERT_TRUE(r.writeDword(Hive::CurrentUser, kSetup, "x", 5));
    EXPECT_EQ(FileRegistry(path_).readDword(Hive::CurrentUser, kSetup, "x"), 5u);

    fs::copy_file(std::string(TESSARA_SOURCE_DIR) + "/tests/platform/golden/beschaedigt.reg", path_,
                  fs::copy_options::overwrite_existing);
    FileRegistry d(path_);
    EXPECT_EQ(d.valueNames(Hive::CurrentUser, "Software\\A"), std::vector<std::string>{"gut"});
    EXPECT_EQ(d.readString(Hive::CurrentUser, "Software\\A", "gut"), "ja");
    EXPECT_FALSE(d.keyExists(Hive::LocalMachine, "Software\\B"));
    EXPECT_EQ(d.readDword(Hive::LocalMachine, "Software\\C", "zahl"), 0xFFFFu);
    // A file where its directory should be: writes fail, nothing crashes.
    FileRegistry blocked((fs::path(path_) / "registry.reg").string());
    EXPECT_FALSE(blocked.writeString(Hive::CurrentUser, kSetup, "x", "y"));
    EXPECT_FALSE(blocked.createKey(Hive::CurrentUser, kSetup));
    EXPECT_FALSE(blocked.readString(Hive::CurrentUser, kSetup, "x"));
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
