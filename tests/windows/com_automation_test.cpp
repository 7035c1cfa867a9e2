// Late binding through IDispatch against automation servers every Windows
// (and wine) has: Scripting.Dictionary and Scripting.FileSystemObject.
#include "platform/win32/com_automation.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/win32/win32_environment.h"

namespace platform {
namespace {

TEST(ComAutomation, PropertiesMethodsAndPointsThroughADictionary) {
    ComAutomationHost host;
    auto dict = host.createObject("Scripting.Dictionary");
    ASSERT_TRUE(dict);
    dict->put("CompareMode", Variant::fromInt(1));  // text comparison
    EXPECT_EQ(dict->get("CompareMode").integer, 1);

    dict->call("Add", {Variant::fromString("Block"), Variant::fromString("Tür 00100170")});
    dict->call("Add", {Variant::fromString("Punkt"), Variant::fromDoubles({1.5, -2.0, 0.25})});
    dict->call("Add", {Variant::fromString("Zahl"), Variant::fromDouble(2.5)});
    EXPECT_EQ(dict->get("Count").integer, 3);
    EXPECT_EQ(dict->get("Item", {Variant::fromString("BLOCK")}).text, "Tür 00100170");
    Variant p = dict->get("Item", {Variant::fromString("Punkt")});
    ASSERT_EQ(p.type, Variant::Type::DoubleArray);
    EXPECT_EQ(p.doubles, (std::vector<double>{1.5, -2.0, 0.25}));
    EXPECT_EQ(dict->get("Item", {Variant::fromString("Zahl")}).number, 2.5);
    EXPECT_TRUE(dict->call("Exists", {Variant::fromString("punkt")}).boolean);
    EXPECT_FALSE(dict->call("Exists", {Variant::fromString("fehlt")}).boolean);

    // An object passed in and handed back stays usable.
    auto fso = host.createObject("Scripting.FileSystemObject");
    dict->call("Add", {Variant::fromString("fso"), Variant::fromObject(fso)});
    Variant back = dict->get("Item", {Variant::fromString("fso")});
    ASSERT_EQ(back.type, Variant::Type::Object);
    std::string temp = Win32Environment().temporaryDirectory();
    EXPECT_TRUE(back.object->call("FolderExists", {Variant::fromString(temp)}).boolean);
    EXPECT_FALSE(
        back.object->call("FileExists", {Variant::fromString(temp + "gibt_es_nicht.dwg")}).boolean);
    EXPECT_EQ(
        fso->call("BuildPath", {Variant::fromString("c:\\temp"), Variant::fromString("bv8LT.scr")})
            .text,
        "c:\\temp\\bv8LT.scr");
}

TEST(ComAutomation, FailuresCarryVbsNumbersAndTheServersText) {
    ComAutomationHost host;
    auto dict = host.createObject("Scripting.Dictionary");
    dict->call("Add", {Variant::fromString("a"), Variant::fromInt(1)});
    // No AutoCAD runs here; a key twice is the server's own error (0: any
    // number but 0).
    const std::pair<std::function<void()>, long> faelle[] = {
        {[&] { host.getActiveObject("AutoCAD.Application"); }, 429},
        {[&] { host.createObject("Gibt.Es.Nicht"); }, 429},
        {[&] { dict->call("KeineMethode"); }, 438},
        {[&] {
             dict->call("Add", {Variant::fromString("a"), Variant::fromInt(2)});
         },
         0},
    };
    for (const auto& [aufruf, nummer] : faelle) {
        try {
            aufruf();
            ADD_FAILURE() << "no error " << nummer;
        } catch (const AutomationError& e) {
            EXPECT_TRUE(nummer ? e.number() == nummer : e.number() != 0) << e.number();
            EXPECT_STRNE(e.what(), "");
        }
    }
}

}  // namespace
}  // namespace platform
