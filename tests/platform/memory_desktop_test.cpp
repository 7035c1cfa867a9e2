#include "platform/memory/memory_desktop.h"

#include <gtest/gtest.h>

#include "platform/memory/fake_clock.h"
#include "platform/memory/memory_instance_channel.h"

namespace platform {
namespace {

TEST(MemoryDesktop, ActivatesTheExactTitleFirstThenAPrefix) {
    MemoryDesktop d;
    auto lt = d.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    auto full = d.addWindow("AutoCAD");
    auto other = d.addWindow("Editor");
    d.addWindow("");  // untitled windows are not listed

    ASSERT_EQ(d.topLevelWindows().size(), 3u);
    EXPECT_TRUE(d.activateByTitle("autocad"));
    EXPECT_EQ(d.foregroundWindow(), full);  // exact title wins over the earlier prefix
    EXPECT_TRUE(d.activateByTitle("AutoCAD LT"));
    EXPECT_EQ(d.foregroundWindow(), lt);
    EXPECT_FALSE(d.activateByTitle("Bricscad"));
    EXPECT_FALSE(d.activateByTitle(""));
    EXPECT_EQ(d.foregroundWindow(), lt);

    d.refuseActivation(other);
    EXPECT_FALSE(d.activateByTitle("Editor"));
    EXPECT_FALSE(d.bringToFront(other));
    EXPECT_TRUE(d.bringToFront(full));
    EXPECT_EQ(d.activations(), (std::vector<WindowHandle>{full, lt, full}));

    d.removeWindow(full);
    EXPECT_EQ(d.foregroundWindow(), 0u);
    EXPECT_FALSE(d.bringToFront(full));
}

TEST(MemoryDesktop, RecordsKeysWithTheirTargetAndRefusesMalformedOnes) {
    MemoryDesktop d;
    auto host = d.addWindow("ZWCAD 2012");
    std::vector<std::string> seen;
    d.onKeys = [&](const MemoryDesktop::TypedKeys& t) { seen.push_back(t.keys); };
    ASSERT_TRUE(d.activateByTitle("ZWCAD"));
    EXPECT_TRUE(d.sendKeys("{ESC}{ESC}"));
    EXPECT_TRUE(d.sendKeys("script\r"));
    EXPECT_FALSE(d.sendKeys("{ESC"));
    ASSERT_EQ(d.typed().size(), 2u);
    EXPECT_EQ(d.typed()[0].target, host);
    EXPECT_EQ(d.allTypedKeys(), "{ESC}{ESC}script\r");
    EXPECT_EQ(seen, (std::vector<std::string>{"{ESC}{ESC}", "script\r"}));
}

TEST(MemoryDesktop, KeyStatesSetScheduledOrAfterPolls) {
    FakeClock clock;
    MemoryDesktop d(&clock);
    const auto t0 = clock.tickMs();
    d.pressDuring(Key::LeftButton, t0 + 300, t0 + 500);
    EXPECT_FALSE(d.isKeyDown(Key::LeftButton));
    d.sleepMs(200);
    EXPECT_FALSE(d.isKeyDown(Key::LeftButton));
    d.sleepMs(100);
    EXPECT_TRUE(d.isKeyDown(Key::LeftButton));
    d.sleepMs(200);
    EXPECT_FALSE(d.isKeyDown(Key::LeftButton));
    EXPECT_EQ(clock.tickMs(), t0 + 500);
    EXPECT_EQ(d.sleptMs(), 500);

    d.pressAfterQueries(Key::Escape, 3);
    EXPECT_FALSE(d.isKeyDown(Key::Escape));
    EXPECT_FALSE(d.isKeyDown(Key::Escape));
    EXPECT_TRUE(d.isKeyDown(Key::Escape));
    EXPECT_TRUE(d.isKeyDown(Key::Escape));
    EXPECT_EQ(d.queries(Key::Escape), 4);
    d.setKeyDown(Key::Escape, false);
    EXPECT_FALSE(d.isKeyDown(Key::Escape));

    d.setKeyDown(Key::RightButton, true);
    EXPECT_TRUE(d.isKeyDown(Key::RightButton));

    int pumped = 0;
    d.onPump = [&] { ++pumped; };
    d.pumpMessages();
    d.pumpMessages();
    EXPECT_EQ(d.pumps(), 2);
    EXPECT_EQ(pumped, 2);
}

TEST(FakeClock, MovesOnlyWhenTold) {
    FakeClock c;
    auto wall = c.now();
    auto tick = c.tickMs();
    EXPECT_EQ(c.now(), wall);
    c.advanceMs(1500);
    EXPECT_EQ(c.tickMs(), tick + 1500);
    EXPECT_EQ(c.now() - wall, std::chrono::milliseconds(1500));
}

TEST(MemoryInstanceChannel, SecondInstanceHandsItsRequestToTheFirst) {
    auto bus = std::make_shared<MemoryInstanceBus>();
    MemoryInstanceChannel first(bus), second(bus);
    ASSERT_TRUE(first.claim("Tessara9.0"));
    EXPECT_FALSE(first.anotherInstanceRunning("Tessara9.0"));
    EXPECT_FALSE(second.claim("tessara9.0"));
    EXPECT_TRUE(second.anotherInstanceRunning("Tessara9.0"));
    EXPECT_TRUE(second.send("Tessara9.0", {"StartForm2", {"0010017", "a"}}));
    EXPECT_TRUE(second.send("Tessara9.0", {"LBlkEinfuegen", {}}));
    auto got = first.receive();
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].operation, "StartForm2");
    EXPECT_EQ(got[0].arguments, (std::vector<std::string>{"0010017", "a"}));
    EXPECT_EQ(got[1].operation, "LBlkEinfuegen");
    EXPECT_TRUE(first.receive().empty());

    bus->holderUnresponsive = true;
    EXPECT_FALSE(second.send("Tessara9.0", {"LBlkEinfuegen", {}}));
    bus->holderUnresponsive = false;
    first.release();
    EXPECT_FALSE(second.send("Tessara9.0", {"LBlkEinfuegen", {}}));
    EXPECT_TRUE(second.claim("Tessara9.0"));
}

}  // namespace
}  // namespace platform
