#pragma once
// What the end-to-end tests share: the private X server of the test process,
// the desktop that tells when the program has seen a key held down, reading
// the simulated host's log with bounded waits, and starting the host.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "cad/cad_verbindung.h"
#include "eigener_x_server.h"
#include "frisches_verzeichnis.h"
#include "platform/platform.h"
#include "platform/system_clock.h"
#include "platform/x11/x11_desktop.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"
#include "x_hand.h"

namespace tessara::test {

// A private X server for the test process: windowed tests running beside it
// on a shared display would take the keyboard focus the typing relies on.
// Inline: registered once, however many test files include this.
inline ::testing::Environment* const xserver =
    ::testing::AddGlobalTestEnvironment(new EigenesDisplay);

// The real X11 desktop, telling when the program under test has seen a key
// or mouse button held down. The hand holds it until then, as a user holds
// the button until the pick is taken, and no longer: a held key repeats.
class BeobachteterDesktop : public platform::X11Desktop {
  public:
    bool isKeyDown(platform::Key taste) override {
        const bool unten = X11Desktop::isKeyDown(taste);
        if (unten) {
            std::lock_guard<std::mutex> sperre(m_);
            gesehen_.insert(taste);
            cv_.notify_all();
        }
        return unten;
    }
    // Holds the hand on `taste` until the program has seen it down; bounded,
    // so that a program that never looks fails its test instead of hanging.
    std::function<void()> haltenBisGesehen(platform::Key taste) {
        {
            std::lock_guard<std::mutex> sperre(m_);
            gesehen_.erase(taste);  // seen while it was down before, not this time
        }
        return [this, taste] {
            std::unique_lock<std::mutex> sperre(m_);
            cv_.wait_for(sperre, std::chrono::seconds(20),
                         [&] { return gesehen_.count(taste) > 0; });
        };
    }

  private:
    std::mutex m_;
    std::condition_variable cv_;
    std::set<platform::Key> gesehen_;
};

inline std::string lesen(const std::filesystem::path& p) { return dateiInhalt(p); }

// Asks again and again, bounded, until the condition holds; whether it did.
inline bool warteBis(const std::function<bool()>& bedingung,
                     std::chrono::seconds grenze = std::chrono::seconds(20)) {
    const auto ende = std::chrono::steady_clock::now() + grenze;
    while (!bedingung()) {
        if (std::chrono::steady_clock::now() >= ende) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// Waits, bounded, until the file holds the text.
inline bool warteAufLog(const std::filesystem::path& log, const std::string& text,
                        std::chrono::seconds grenze = std::chrono::seconds(20)) {
    return warteBis([&] { return lesen(log).find(text) != std::string::npos; }, grenze);
}

// The rest of the first log line that begins with `anfang`; empty when none.
inline std::string zeilenRest(const std::string& log, const std::string& anfang) {
    const auto p = ("\n" + log).find("\n" + anfang);
    if (p == std::string::npos) return {};
    const auto von = p + anfang.size();
    return log.substr(von, log.find('\n', von) - von);
}

// Waits, bounded, until a window whose title begins with the text is on the
// desktop; its handle, 0 when none came. (It looks again and again: a title
// set after the window is mapped tells the root window nothing.)
inline platform::WindowHandle warteAufFenster(platform::Desktop& desktop,
                                              const std::string& titel) {
    platform::WindowHandle gefunden = 0;
    warteBis([&] {
        for (const auto& w : desktop.topLevelWindows())
            if (w.title.rfind(titel, 0) == 0) gefunden = w.handle;
        return gefunden != 0;
    });
    return gefunden;
}

// Starts the simulated host (its pid in `pid` at once, for the tear-down)
// and waits until its window is mapped.
inline ::testing::AssertionResult simhostStarten(pid_t& pid, const std::string& titel,
                                                 const std::filesystem::path& log,
                                                 platform::Desktop& desktop) {
    pid = prozessStarten({TESSARA_SIMHOST, "--title", titel, "--log", log.string()});
    if (pid <= 0) return ::testing::AssertionFailure() << "simhost did not start";
    if (!warteAufLog(log, "START ")) return ::testing::AssertionFailure() << lesen(log);
    if (!warteAufFenster(desktop, titel))
        return ::testing::AssertionFailure() << "simhost window did not appear";
    return ::testing::AssertionSuccess();
}

// A test against the simulated host in process: drive "c:" mapped into a
// fresh directory of the test, the real X11 desktop and clock, a scripted
// user, and the host's log; the host ends with the test.
class HostTest : public ::testing::Test {
  protected:
    void SetUp() override {
        verzeichnis = frischesVerzeichnis("e2e");
        std::filesystem::create_directories(verzeichnis / "c");
        setenv("TESSARA_DRIVE_C", (verzeichnis / "c").c_str(), 1);
        log = verzeichnis / "simhost.log";
        ASSERT_TRUE(desktop.connected()) << "no X server";
        ASSERT_TRUE(desktop.canType()) << "no XTest extension";
        plattform.desktop = &desktop;
        plattform.clock = &uhr;
        z.plattform = &plattform;
        z.benutzer = &benutzer;
        z.strCTemp = "c:\\temp\\";
        v.meldungsText = [](int nr) { return "Meldung " + std::to_string(nr); };
    }
    void TearDown() override {
        prozessBeenden(host);
        std::error_code ec;
        std::filesystem::remove_all(verzeichnis, ec);
    }
    // A pick the program does not watch for: held until the host logged `bis`.
    void klickenBis(unsigned int knopf, int x, int y, const std::string& bis) {
        Hand().klick(knopf, x, y, [&] { warteAufLog(log, bis); });
    }

    std::filesystem::path verzeichnis, log;
    pid_t host = 0;
    BeobachteterDesktop desktop;
    platform::SystemClock uhr;
    platform::Platform plattform;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    CadVerbindung v;
};

}  // namespace tessara::test
