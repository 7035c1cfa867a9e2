#include "platform/environment.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <optional>

#include "frisches_verzeichnis.h"
#include "platform/posix/posix_environment.h"
#include "tabelle.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// Sets environment variables for one test and puts the old values back.
struct EnvGuard {
    std::map<std::string, std::optional<std::string>> saved;
    void set(const std::string& name, const std::optional<std::string>& value) {
        const char* old = std::getenv(name.c_str());
        saved.try_emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
        value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
    ~EnvGuard() {
        for (const auto& [name, value] : saved)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
};

class PathTest : public ::testing::Test {
  protected:
    void SetUp() override {
        base_ = tessara::test::frischesVerzeichnis("paths");
        env_.set("HOME", (base_ / "home").string());
        env_.set("TESSARA_DRIVE_D", (base_ / "laufwerk_d/").string());
        for (char c : std::string("cefgz"))
            env_.set(std::string("TESSARA_DRIVE_") + char(c - 32), std::nullopt);
    }
    void TearDown() override { fs::remove_all(base_); }
    fs::path base_;
    EnvGuard env_;
};

TEST_F(PathTest, ProgramAndNativePaths) {
    const std::string home = (base_ / "home").string();
    const std::string d = (base_ / "laufwerk_d").string();
    auto einsetzen = [&](std::string s) {
        for (const auto& [platz, wert] : {std::pair{"{home}", home}, std::pair{"{d}", d}})
            if (auto p = s.find(platz); p != std::string::npos) s.replace(p, strlen(platz), wert);
        return s;
    };
    for (const auto& f : tessara::test::tabelle("platform/golden/pfade.txt")) {
        const std::string von = einsetzen(f.at(1));
        std::string nach = einsetzen(f.at(2));
        if (f[0] == "native") {
            EXPECT_EQ(nativePath(von), nach) << von;
        } else {
            std::replace(nach.begin(), nach.end(), '/', '\\');
            EXPECT_EQ(programPath(von), nach) << von;
        }
    }
    // A drive is a real, writable directory; and a path comes back.
    EXPECT_TRUE(fs::is_directory(home + "/.tessara/drive_c"));
    EXPECT_TRUE(fs::is_directory(d));
    EXPECT_EQ(nativePath(programPath(d + "/a/b.dwg")), d + "/a/b.dwg");
}

TEST(CommandLine, ArgumentsAreJoinedAsWindowsQuotesThem) {
    using V = std::vector<std::string>;
    EXPECT_EQ(PosixEnvironment(V{}).commandLine(), "");
    for (const auto& f : tessara::test::tabelle("platform/golden/kommandozeile.txt")) {
        const V args(f.begin() + 1, f.end());
        EXPECT_EQ(PosixEnvironment::joinCommandLine(args), f[0]);
        EXPECT_EQ(PosixEnvironment(args).commandLine(), f[0]);
    }
    const char* argv[] = {"/usr/bin/tessara", "/s", "a;b", nullptr};
    EXPECT_EQ(PosixEnvironment(3, argv).commandLine(), "/s a;b");
    // The path after "/d" stands in quotes as on Windows, even without a blank.
    EXPECT_EQ(PosixEnvironment(V{"/d", "/bib/dbTessara.mdb"}).commandLine(),
              "/d \"/bib/dbTessara.mdb\"");
    EXPECT_EQ(PosixEnvironment::joinCommandLine({"/d", "/bib/dbTessara.mdb"}),
              "/d /bib/dbTessara.mdb");
}

TEST_F(PathTest, EnvironmentDirectories) {
    env_.set("TMPDIR", (base_ / "tmp/").string());
    env_.set("TESSARA_COMMON_APPDATA", std::nullopt);
    env_.set("XDG_DATA_HOME", (base_ / "data").string());
    PosixEnvironment e;
    EXPECT_EQ(nativePath(e.temporaryDirectory()), (base_ / "tmp").string() + "/");
    EXPECT_EQ(e.temporaryDirectory().back(), '\\');
    EXPECT_EQ(nativePath(e.commonAppData()), (base_ / "data" / "tessara-common").string());
    EXPECT_TRUE(fs::is_directory(base_ / "data" / "tessara-common"));

    env_.set("TESSARA_COMMON_APPDATA", (base_ / "laufwerk_d" / "ProgramData").string());
    EXPECT_EQ(e.commonAppData(), "d:\\ProgramData");

    // The test executable's own directory.
    std::string appDir = nativePath(e.applicationDirectory());
    EXPECT_TRUE(fs::exists(fs::path(appDir) / "test_platform")) << appDir;
    EXPECT_NE(e.applicationDirectory().back(), '\\');
}

}  // namespace
}  // namespace platform
