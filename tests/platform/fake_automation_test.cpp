#include "platform/memory/fake_automation.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(FakeAutomation, BehavesAsLateBindingDoes) {
    FakeAutomationHost host;
    auto app = std::make_shared<FakeAutomationObject>();
    app->properties["Version"] = Variant::fromString("20.0s (LMS Tech)");
    std::vector<std::string> commands;
    app->methods["SendCommand"] = [&](const std::vector<Variant>& a) {
        commands.push_back(a.at(0).text);
        return Variant();
    };
    app->methods["Item"] = [](const std::vector<Variant>& a) {
        return Variant::fromDoubles({a.at(0).number, 0, 0});
    };
    host.running["AutoCAD.Application"] = app;

    auto got = host.getActiveObject("autocad.application");
    EXPECT_EQ(got->get("version").text, "20.0s (LMS Tech)");
    got->call("SendCommand", {Variant::fromString("._-insert ")});
    got->put("Visible", Variant::fromBool(true));
    EXPECT_TRUE(got->get("Visible").boolean);
    EXPECT_EQ(got->get("Item", {Variant::fromDouble(3)}).doubles, (std::vector<double>{3, 0, 0}));
    EXPECT_EQ(commands, std::vector<std::string>{"._-insert "});
    EXPECT_EQ(app->log, (std::vector<std::string>{"get version", "call SendCommand", "put Visible",
                                                  "get Visible", "get Item"}));

    try {
        got->call("Quit");
        FAIL();
    } catch (const AutomationError& e) {
        EXPECT_EQ(e.number(), 438);
    }
    try {
        got->get("Version", {Variant::fromInt(1)});
        FAIL();
    } catch (const AutomationError& e) {
        EXPECT_EQ(e.number(), 438);
    }
    try {
        host.createObject("AutoCAD.Application");
        FAIL();
    } catch (const AutomationError& e) {
        EXPECT_EQ(e.number(), 429);
    }
    host.creatable["AutoCAD.Application"] = [] { return std::make_shared<FakeAutomationObject>(); };
    EXPECT_NE(host.createObject("AutoCAD.Application"), host.createObject("AutoCAD.Application"));
}

}  // namespace
}  // namespace platform
