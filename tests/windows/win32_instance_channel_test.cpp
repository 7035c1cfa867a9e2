// The named-pipe instance channel between two channels of this process (the
// claim is a named mutex, which excludes a second claim of the same process
// as of another). Second starts of the real program, and a start after the
// first one was killed, are window_under_wine.sh's.
#include "platform/win32/win32_instance_channel.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "instance_kanal.h"
#include "platform/instance_wire.h"
#include "platform/win32/utf16.h"

namespace platform {
namespace {

std::string uniqueName(const char* base) {
    return std::string(base) + "-" + std::to_string(GetCurrentProcessId());
}

TEST(Win32InstanceChannel, ALaterStartHandsItsRequestsOverInOrder) {
    const std::string name = uniqueName("Tessara9.0");
    Win32InstanceChannel first, later;
    ASSERT_TRUE(first.claim(name));
    EXPECT_FALSE(first.anotherInstanceRunning(name));
    EXPECT_FALSE(later.claim(name));
    EXPECT_TRUE(later.anotherInstanceRunning(name));
    EXPECT_EQ(sendeWaehrendAbholen(first, later, name,
                                   {{"StartForm2", {"0010017", "Blöcke; mit Blank"}},
                                    {"LBlkEinfuegen", {}},
                                    {"ClassNameUebergeben", {"Tessara_8_5.clsTessaraStart"}}}),
              (std::vector<std::string>{"StartForm2|0010017|Blöcke; mit Blank", "LBlkEinfuegen",
                                        "ClassNameUebergeben|Tessara_8_5.clsTessaraStart"}));
    // Nobody polls: the send times out instead of hanging, and the request
    // it gave up on is not carried out later.
    later.setSendTimeoutMs(200);
    EXPECT_FALSE(later.send(name, {"LBlkEinfuegen", {}}));
    EXPECT_TRUE(first.receive().empty());
    EXPECT_TRUE(first.receive().empty());
    // Gone: the name is free again and nobody answers.
    first.release();
    EXPECT_FALSE(later.anotherInstanceRunning(name));
    EXPECT_FALSE(later.send(name, {"LBlkEinfuegen", {}}));
    EXPECT_TRUE(later.claim(name));
}

TEST(Win32InstanceChannel, ASenderDyingMidRequestDoesNotWedgeTheReceiver) {
    const std::string name = uniqueName("Halb");
    Win32InstanceChannel first, later;
    first.setClientGraceMs(200);
    ASSERT_TRUE(first.claim(name));
    HANDLE h = CreateFileW(win32::toWide(Win32InstanceChannel::pipeName(name)).c_str(),
                           GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(h, INVALID_HANDLE_VALUE);
    std::string frame = wire::encode({"StartForm2", {"halb", "fertig"}});
    DWORD n = 0;
    WriteFile(h, frame.data(), static_cast<DWORD>(frame.size() / 2), &n, nullptr);
    CloseHandle(h);
    // The holder takes the connection (a fresh pipe instance listens from
    // then on) and delivers nothing of the half.
    EXPECT_TRUE(first.receive().empty());
    EXPECT_EQ(sendeWaehrendAbholen(first, later, name, {{"LBlkEinfuegen", {}}}),
              std::vector<std::string>{"LBlkEinfuegen"});
}

}  // namespace
}  // namespace platform
