#pragma once
// What the end-to-end tests share: the private X server of the test process,
// reading the simulated host's log with bounded waits, and starting the host.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "platform/desktop.h"
#include "x_hand.h"

namespace tessara::test {

// A private X server for the test process: windowed tests running beside it
// on a shared display would take the keyboard focus the typing relies on.
class XServer : public ::testing::Environment {
  public:
    void SetUp() override { pid_ = xvfbStarten(); }
    void TearDown() override { prozessBeenden(pid_); }

  private:
    pid_t pid_ = 0;
};

// Inline: registered once, however many test files include this.
inline ::testing::Environment* const xserver = ::testing::AddGlobalTestEnvironment(new XServer);

inline std::string lesen(const std::filesystem::path& p) {
    std::ifstream f(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

inline std::size_t anzahl(const std::string& text, const std::string& teil) {
    std::size_t n = 0;
    for (auto p = text.find(teil); p != std::string::npos; p = text.find(teil, p + 1)) ++n;
    return n;
}

// Waits, bounded, until the file holds the text n times.
inline bool warteAufLogAnzahl(const std::filesystem::path& log, const std::string& text,
                              std::size_t n,
                              std::chrono::seconds grenze = std::chrono::seconds(20)) {
    const auto ende = std::chrono::steady_clock::now() + grenze;
    while (std::chrono::steady_clock::now() < ende) {
        if (anzahl(lesen(log), text) >= n) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

inline bool warteAufLog(const std::filesystem::path& log, const std::string& text,
                        std::chrono::seconds grenze = std::chrono::seconds(20)) {
    return warteAufLogAnzahl(log, text, 1, grenze);
}

// The rest of the first log line that begins with `anfang`; empty when none.
inline std::string zeilenRest(const std::string& log, const std::string& anfang) {
    const auto p = ("\n" + log).find("\n" + anfang);
    if (p == std::string::npos) return {};
    const auto von = p + anfang.size();
    return log.substr(von, log.find('\n', von) - von);
}

// Waits, bounded, until a window whose title begins with the text is on the
// desktop; its handle, 0 when none came.
inline platform::WindowHandle warteAufFenster(platform::Desktop& desktop,
                                              const std::string& titel) {
    const auto ende = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < ende) {
        for (const auto& w : desktop.topLevelWindows())
            if (w.title.rfind(titel, 0) == 0) return w.handle;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return 0;
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

}  // namespace tessara::test
