// The named-pipe instance channel between two real Windows processes: this
// executable started again with "--channel-helper".
#include "platform/win32/win32_instance_channel.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/instance_wire.h"
#include "platform/win32/utf16.h"

// Modes: "second NAME OP [ARG...] [-- OP [ARG...]]..." (exit 0 when its claim
// failed, another instance was seen and every send was acknowledged; 2, 3, 4
// otherwise), "claim-and-die NAME", "partial NAME" (half a message, then it
// ends).
int channelHelperMain(int argc, char** argv) {
    if (argc < 2) return 64;
    std::string mode = argv[0], name = argv[1];
    platform::Win32InstanceChannel channel;
    if (mode == "second") {
        if (channel.claim(name)) return 2;
        if (!channel.anotherInstanceRunning(name)) return 3;
        for (int i = 2; i < argc;) {
            platform::InstanceMessage m{argv[i++], {}};
            while (i < argc && std::string(argv[i]) != "--") m.arguments.push_back(argv[i++]);
            if (i < argc) ++i;
            if (!channel.send(name, m)) return 4;
        }
        return 0;
    }
    if (mode == "claim-and-die") {
        if (!channel.claim(name)) return 2;
        ExitProcess(0);  // no release
    }
    if (mode == "partial") {
        std::wstring pipe = platform::win32::toWide(platform::Win32InstanceChannel::pipeName(name));
        HANDLE h = CreateFileW(pipe.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                               OPEN_EXISTING, 0, nullptr);
        if (h == INVALID_HANDLE_VALUE) return 5;
        std::string frame = platform::wire::encode({"StartForm2", {"halb", "fertig"}});
        DWORD n = 0;
        WriteFile(h, frame.data(), static_cast<DWORD>(frame.size() / 2), &n, nullptr);
        ExitProcess(0);  // dies with the message half sent
    }
    return 64;
}

namespace platform {
namespace {

// Runs this executable as the helper; returns its exit code while `poll`
// runs, or -1 if it did not end within a generous bound.
int runHelper(const std::vector<std::string>& args, const std::function<void()>& poll = {}) {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(self) + L"\" --channel-helper";
    for (const auto& a : args) line += L" \"" + win32::toWide(a) + L"\"";
    STARTUPINFOW si{};
    si.cb = sizeof si;
    PROCESS_INFORMATION pi{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &si,
                        &pi))
        return -2;
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    DWORD code = static_cast<DWORD>(-1);
    while (std::chrono::steady_clock::now() < until) {
        if (WaitForSingleObject(pi.hProcess, 5) == WAIT_OBJECT_0) {
            GetExitCodeProcess(pi.hProcess, &code);
            break;
        }
        if (poll) poll();
    }
    if (code == static_cast<DWORD>(-1)) TerminateProcess(pi.hProcess, 99);
    CloseHandle(pi.hThread);
    CloseHandle(pi.hProcess);
    return static_cast<int>(code);
}

std::string uniqueName(const char* base) {
    return std::string(base) + "-" + std::to_string(GetCurrentProcessId());
}

TEST(Win32InstanceChannel, SecondProcessHandsItsRequestsToTheFirstInOrder) {
    const std::string name = uniqueName("Tessara9.0");
    Win32InstanceChannel first;
    ASSERT_TRUE(first.claim(name));
    EXPECT_FALSE(first.anotherInstanceRunning(name));
    std::vector<InstanceMessage> got;
    int code =
        runHelper({"second", name, "StartForm2", "0010017", "Blöcke; mit Blank", "--",
                   "LBlkEinfuegen", "--", "ClassNameUebergeben", "Tessara_8_5.clsTessaraStart"},
                  [&] {
                      for (auto& m : first.receive()) got.push_back(std::move(m));
                  });
    EXPECT_EQ(code, 0) << "2: claimed, 3: saw no instance, 4: a send failed";
    for (auto& m : first.receive()) got.push_back(std::move(m));
    ASSERT_EQ(got.size(), 3u);
    EXPECT_EQ(got[0].operation, "StartForm2");
    EXPECT_EQ(got[0].arguments, (std::vector<std::string>{"0010017", "Blöcke; mit Blank"}));
    EXPECT_EQ(got[1].operation, "LBlkEinfuegen");
    EXPECT_EQ(got[2].arguments, std::vector<std::string>{"Tessara_8_5.clsTessaraStart"});
}

TEST(Win32InstanceChannel, ADeadHoldersClaimIsFreeAgain) {
    const std::string name = uniqueName("Verwaist");
    ASSERT_EQ(runHelper({"claim-and-die", name}), 0);
    Win32InstanceChannel me;
    EXPECT_FALSE(me.anotherInstanceRunning(name));
    ASSERT_TRUE(me.claim(name));
    me.release();
    me.setSendTimeoutMs(300);
    EXPECT_FALSE(me.send(name, {"LBlkEinfuegen", {}}));
}

TEST(Win32InstanceChannel, ASenderDyingMidRequestDoesNotWedgeTheReceiver) {
    const std::string name = uniqueName("Halb");
    Win32InstanceChannel first;
    first.setClientGraceMs(200);
    ASSERT_TRUE(first.claim(name));
    std::vector<InstanceMessage> got;
    auto poll = [&] {
        for (auto& m : first.receive()) got.push_back(std::move(m));
    };
    EXPECT_EQ(runHelper({"partial", name}, poll), 0);
    poll();
    EXPECT_TRUE(got.empty());
    EXPECT_EQ(runHelper({"second", name, "LBlkEinfuegen"}, poll), 0);
    poll();
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].operation, "LBlkEinfuegen");
}

TEST(Win32InstanceChannel, InProcessClaimAndSendWithoutAHolder) {
    const std::string name = uniqueName("Allein");
    Win32InstanceChannel a, b;
    ASSERT_TRUE(a.claim(name));
    EXPECT_FALSE(b.claim(name));
    EXPECT_TRUE(b.anotherInstanceRunning(name));
    b.setSendTimeoutMs(200);
    // Nobody polls `a`, so the send times out instead of hanging.
    EXPECT_FALSE(b.send(name, {"LBlkEinfuegen", {}}));
    // The request it gave up on is not carried out later.
    EXPECT_TRUE(a.receive().empty());
    EXPECT_TRUE(a.receive().empty());
    a.release();
    EXPECT_FALSE(b.anotherInstanceRunning(name));
    EXPECT_TRUE(b.claim(name));
}

}  // namespace
}  // namespace platform
