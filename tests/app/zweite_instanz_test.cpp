// Real processes: a running Tessara window and later starts of the program
// that hand their command line to it through the instance channel. A second
// start brings the running window forward, so they run on an X server of
// their own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "eigener_x_server.h"
#include "frisches_verzeichnis.h"
#include "platform/x11/x11_desktop.h"

extern char** environ;

namespace {

::testing::Environment* const xServer =
    ::testing::AddGlobalTestEnvironment(new tessara::test::EigenesDisplay);

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class ZweiteInstanz : public ::testing::Test {
  protected:
    void SetUp() override {
        // Short: the instance socket in run/ must stay below 108 bytes.
        dir = fs::temp_directory_path() / ("tessara_e2e_" + std::to_string(::getpid()));
        fs::remove_all(dir);
        fs::create_directories(dir / "run");
        fs::permissions(dir / "run", fs::perms::owner_all);
        // The test's own environment (display, X authority) with private
        // places for everything the program writes.
        const std::vector<std::string> eigene = {
            "HOME=" + dir.string(), "XDG_RUNTIME_DIR=" + (dir / "run").string(),
            "XDG_CONFIG_HOME=" + (dir / "cfg").string(),
            "TESSARA_COMMON_APPDATA=" + (dir / "common").string()};
        env = eigene;
        for (char** e = environ; *e; ++e)
            if (std::none_of(eigene.begin(), eigene.end(), [v = std::string(*e)](auto& x) {
                    return v.starts_with(x.substr(0, x.find('=') + 1));
                }))
                env.push_back(*e);
        // A library to open, and the boxes that would wait for a hand on
        // the mouse switched off as a user switches them off.
        for (const char* d : {"bib", "bib2", "bib3", "common/Tessara"})
            fs::create_directories(dir / d);
        std::ofstream(dir / "common" / "Tessara" / "Tessara9.0.ini")
            << "[AllgemeineDaten]\r\nDbVerzeichnis0=" << (dir / "bib").string()
            << "\r\n[MsgboxAnzeigen]\r\nAcadVerbindung=1\r\nKeinBlock=1\r\nTessaraBeenden=1\r\n"
            << "AnfrageVerworfen=1\r\n";
    }
    void TearDown() override {
        if (erste > 0) {
            ::kill(erste, SIGTERM);
            int st = 0;
            ::waitpid(erste, &st, 0);
        }
        fs::remove_all(dir);
    }

    pid_t starten(const std::vector<std::string>& args, const fs::path& ausgabe,
                  const std::string& programm = "tessara") {
        std::vector<std::string> argv = {std::string(TESSARA_BINARY_DIR) + "/app/" + programm};
        argv.insert(argv.end(), args.begin(), args.end());
        std::vector<char*> a, e;
        for (auto& s : argv) a.push_back(s.data());
        a.push_back(nullptr);
        for (auto& s : env) e.push_back(s.data());
        e.push_back(nullptr);
        posix_spawn_file_actions_t fa;
        posix_spawn_file_actions_init(&fa);
        posix_spawn_file_actions_addopen(&fa, 1, ausgabe.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0644);
        posix_spawn_file_actions_adddup2(&fa, 1, 2);
        pid_t pid = -1;
        EXPECT_EQ(posix_spawn(&pid, argv[0].c_str(), &fa, nullptr, a.data(), e.data()), 0);
        posix_spawn_file_actions_destroy(&fa);
        return pid;
    }

    // Waits for a process to end by itself; -1 when it did not within the time.
    static int warten(pid_t pid, std::chrono::milliseconds grenze) {
        const auto ende = std::chrono::steady_clock::now() + grenze;
        while (std::chrono::steady_clock::now() < ende) {
            int st = 0;
            if (::waitpid(pid, &st, WNOHANG) == pid) return WIFEXITED(st) ? WEXITSTATUS(st) : 128;
            std::this_thread::sleep_for(20ms);
        }
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        return -1;
    }

    static std::string lesen(const fs::path& p) { return tessara::test::dateiInhalt(p); }
    // A path below the test directory as the program writes it, with backslashes.
    std::string dos(const fs::path& relativ) const {
        std::string s = (dir / relativ).string();
        std::replace(s.begin(), s.end(), '/', '\\');
        return s;
    }
    // Starts a later program and expects it to end by itself with 0.
    void zweite(const std::vector<std::string>& args, const std::string& programm = "tessara") {
        const fs::path aus = dir / ("z" + std::to_string(++gestartet) + ".txt");
        EXPECT_EQ(warten(starten(args, aus, programm), 20s), 0) << lesen(aus);
    }
    int gestartet = 0;

    // Waits until the file holds the text `anzahl` times.
    static bool erscheint(const fs::path& p, const std::string& text, int anzahl = 1) {
        const auto ende = std::chrono::steady_clock::now() + 20s;
        while (std::chrono::steady_clock::now() < ende) {
            const std::string s = lesen(p);
            int n = 0;
            for (auto pos = s.find(text); pos != std::string::npos; pos = s.find(text, pos + 1))
                ++n;
            if (n >= anzahl) return true;
            std::this_thread::sleep_for(50ms);
        }
        return false;
    }

    fs::path dir;
    std::vector<std::string> env;
    pid_t erste = -1;
};

TEST_F(ZweiteInstanz, ReichtIhreAnfragenAnDasLaufendeProgrammWeiter) {
    const fs::path log = dir / "erste.txt";
    erste = starten({}, log);
    ASSERT_TRUE(erscheint(log, "bereit: " + (dir / "bib").string() + "\\dbTessara.mdb"))
        << lesen(log);
    // The library named by the Settings file in the common application data
    // had no database yet: the window made one.
    EXPECT_TRUE(fs::exists(dir / "bib" / "dbTessara.mdb"));

    zweite({"/s", "0010017;A"});
    EXPECT_TRUE(erscheint(log, "Blockanfrage: 0010017;a")) << lesen(log);

    zweite({"/d", (dir / "bib2" / "dbTessara.mdb").string()});
    EXPECT_TRUE(erscheint(log, "Datenbank: " + dos("bib2/dbTessara.mdb"))) << lesen(log);
    for (int i = 0; i < 400 && !fs::exists(dir / "bib2/dbTessara.mdb"); ++i)
        std::this_thread::sleep_for(50ms);
    EXPECT_TRUE(fs::exists(dir / "bib2/dbTessara.mdb")) << "the window switched to the new library";

    // "lblkeinfuegen" inserts the block handed over last once more.
    zweite({"lblkeinfuegen"});
    EXPECT_TRUE(erscheint(log, "Blockanfrage: 0010017;a", 2)) << lesen(log);

    // One or three ";"-pieces: nothing is handed over, the start still ends.
    // A request handed over after it is carried out after anything it sent.
    zweite({"/s", "a;b;c"});
    zweite({"lblkeinfuegen"});
    ASSERT_TRUE(erscheint(log, "Blockanfrage: 0010017;a", 3)) << lesen(log);
    EXPECT_EQ(lesen(log).find("Blockanfrage: a"), std::string::npos);

    // The entry class reached from a second process, as the CAD host reaches
    // it: requests carried out in order, and one it must refuse leaves a line
    // in the error log and the window serving the next (the other refusals
    // are table cases of tests/entry).
    const auto anfrage = [&](std::vector<std::string> a) {
        a.insert(a.begin(), "tessara-start");
        zweite(a, "tessara-cli");
    };
    anfrage({"StartTessara2", "0010017", "A"});
    EXPECT_TRUE(erscheint(log, "Blockanfrage: 0010017;A")) << lesen(log);
    anfrage({"StartTessara2", std::string(200, '7'), "A"});
    EXPECT_TRUE(erscheint(dir / "common/Tessara/txtErrorTessara9.0.txt",
                          "Anfrage verworfen: Blockname zu lang"));
    // "/" and "\\" mixed: the library is switched.
    anfrage({"ChangeDb", (dir / "bib3").string() + "\\dbTessara.mdb"});
    EXPECT_TRUE(erscheint(log, "Datenbank: " + dos("bib3/dbTessara.mdb"))) << lesen(log);
    anfrage({"LBlockEinfuegen"});
    EXPECT_TRUE(erscheint(log, "Blockanfrage: 0010017;A", 2)) << lesen(log);
    anfrage({"StartTessara3", "0010018", "", (dir / "bib" / "dbTessara.mdb").string()});
    EXPECT_TRUE(erscheint(log, "Blockanfrage: 0010018;")) << lesen(log);
    EXPECT_EQ(lesen(log).find("Blockanfrage: 777"), std::string::npos);
}

TEST_F(ZweiteInstanz, EinAbgestuerzterErsterHinterlaesstKeineSperre) {
    const fs::path log = dir / "erste.txt";
    erste = starten({}, log);
    ASSERT_TRUE(erscheint(log, "bereit"));
    ::kill(erste, SIGKILL);
    ::waitpid(erste, nullptr, 0);
    erste = starten({}, dir / "neu.txt");
    EXPECT_TRUE(erscheint(dir / "neu.txt", "bereit")) << lesen(dir / "neu.txt");
}

// A first start in an empty home with a library given by "/d": the
// CAD-connection message is the only window before the library's first Page,
// and the library is the first of the database list.
TEST_F(ZweiteInstanz, ErsterStartMitDZeigtNurDieCadMeldung) {
    fs::remove_all(dir / "common");
    const fs::path log = dir / "erste.txt";
    erste = starten({"/d", (dir / "bib" / "dbTessara.mdb").string()}, log);
    platform::X11Desktop x;
    const auto ende = std::chrono::steady_clock::now() + 20s;
    while (x.topLevelWindows().empty() && std::chrono::steady_clock::now() < ende)
        std::this_thread::sleep_for(50ms);
    auto fenster = x.topLevelWindows();
    ASSERT_EQ(fenster.size(), 1u) << lesen(log);
    EXPECT_EQ(fenster[0].title, "Information");
    ASSERT_TRUE(x.sendKeys("~"));
    ASSERT_TRUE(erscheint(log, "bereit: ")) << lesen(log);
    fenster = x.topLevelWindows();
    ASSERT_EQ(fenster.size(), 1u);
    EXPECT_EQ(fenster[0].title.rfind("Tessara", 0), 0u) << fenster[0].title;
    EXPECT_EQ(std::system("import -window root " TESSARA_BINARY_DIR "/erster_start.png"), 0);
    EXPECT_NE(lesen(dir / "common/Tessara/Tessara9.0.ini").find("DbVerzeichnis0=" + dos("bib")),
              std::string::npos);
    EXPECT_TRUE(fs::exists(dir / "bib" / "dbTessara.mdb"));
}

}  // namespace
