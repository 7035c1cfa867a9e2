// AutoCAD's object model over the late-bound automation interface, against
// fake automation objects (AutoCAD's COM server cannot run here).
#include "cad/acad_ueber_automation.h"

#include <gtest/gtest.h>

#include <map>

#include "cad/acad_automation.h"

namespace tessara::test {
namespace {

using platform::AutomationError;
using platform::AutomationObject;
using platform::Variant;

class FakeObjekt : public AutomationObject {
  public:
    std::map<std::string, Variant> eigenschaften;
    std::vector<std::string> aufrufe;  // "Methode(arg|arg)"
    std::vector<std::vector<Variant>> argumente;
    std::map<std::string, Variant> rueckgaben;  // by method name
    std::string wirftBei;

    Variant get(const std::string& p, const std::vector<Variant>& = {}) override {
        auto it = eigenschaften.find(p);
        if (it == eigenschaften.end()) throw AutomationError("Unbekannter Name", -2147352570);
        return it->second;
    }
    void put(const std::string& p, const Variant& v) override { eigenschaften[p] = v; }
    Variant call(const std::string& m, const std::vector<Variant>& args = {}) override {
        if (m == wirftBei) throw AutomationError("Aufruf abgelehnt", -2147418111);
        std::string s = m + "(";
        for (std::size_t i = 0; i < args.size(); ++i) {
            if (i) s += "|";
            s += fctVariantText(args[i]);
        }
        aufrufe.push_back(s + ")");
        argumente.push_back(args);
        return rueckgaben[m];
    }
};

struct Modell {
    std::shared_ptr<FakeObjekt> app = std::make_shared<FakeObjekt>();
    std::shared_ptr<FakeObjekt> dok = std::make_shared<FakeObjekt>();
    Modell() {
        app->eigenschaften["ActiveDocument"] = Variant::fromObject(dok);
        dok->rueckgaben["GetVariable"] = Variant::fromInt(1);
    }
};

// The getters and the calls as such go through real COM in tests/windows;
// here what that run does not pin down: how values are typed for the host.
TEST(AutomationFake, DokumentAufrufe) {
    Modell m;
    auto d = fctAcadAnwendung(m.app)->ActiveDocument();
    EXPECT_EQ(d->GetVariable("attreq"), "1");
    d->SetVariable("attreq", "0");
    d->SetVariable("CLAYER", "Armaturen");
    EXPECT_EQ(m.dok->aufrufe,
              (std::vector<std::string>{"GetVariable(attreq)", "SetVariable(attreq|0)",
                                        "SetVariable(CLAYER|Armaturen)"}));
    // Integer variables go as integers, names as text.
    EXPECT_EQ(m.dok->argumente[1][1].type, Variant::Type::Integer);
    EXPECT_EQ(m.dok->argumente[2][1].type, Variant::Type::String);
    // The program's menu goes to the host's MenuGroups collection.
    auto menues = std::make_shared<FakeObjekt>();
    m.app->eigenschaften["MenuGroups"] = Variant::fromObject(menues);
    fctAcadAnwendung(m.app)->MenuGroupsLoad("c:\\t\\tessara.mnu");
    EXPECT_EQ(menues->aufrufe, std::vector<std::string>{"Load(c:\\t\\tessara.mnu)"});
}

// The layer manager reads the Layers collection item by item; a switch may
// come as a Boolean or as an integer.
TEST(AutomationFake, LayersSammlung) {
    Modell m;
    auto layers = std::make_shared<FakeObjekt>();
    auto layer = std::make_shared<FakeObjekt>();
    m.dok->eigenschaften["Layers"] = Variant::fromObject(layers);
    layers->eigenschaften["Count"] = Variant::fromInt(1);
    layers->rueckgaben["Item"] = Variant::fromObject(layer);
    layer->eigenschaften = {
        {"Name", Variant::fromString("Wände")},      {"Color", Variant::fromInt(5)},
        {"Linetype", Variant::fromString("DASHED")}, {"LayerOn", Variant::fromBool(false)},
        {"Freeze", Variant::fromBool(true)},         {"Lock", Variant::fromInt(-1)}};
    const auto l = fctAcadAnwendung(m.app)->ActiveDocument()->Layers();
    EXPECT_EQ(l, (std::vector<typLayer>{{"Wände", 5, "DASHED", false, true, true}}));
    EXPECT_EQ(layers->aufrufe, std::vector<std::string>{"Item(0)"});
    layer->eigenschaften.erase("Lock");
    EXPECT_THROW(fctAcadAnwendung(m.app)->ActiveDocument()->Layers(), AcadFehler);
}

TEST(AutomationFake, FehlerDesHostsWirdAcadFehlerMitNummer) {
    Modell m;
    m.dok->wirftBei = "SendCommand";
    auto d = fctAcadAnwendung(m.app)->ActiveDocument();
    try {
        d->SendCommand("x");
        FAIL() << "no error";
    } catch (const AcadFehler& e) {
        EXPECT_EQ(e.nummer(), -2147418111);
        EXPECT_STREQ(e.what(), "Aufruf abgelehnt");
    }
    m.app->eigenschaften["ActiveDocument"] = Variant();  // no drawing open
    EXPECT_THROW(fctAcadAnwendung(m.app)->ActiveDocument(), AcadFehler);
}

TEST(AutomationFake, VariantText) {
    EXPECT_EQ(fctVariantText(Variant::fromDouble(0.5)), "0.5");
    EXPECT_EQ(fctVariantText(Variant::fromBool(true)), "-1");
    EXPECT_EQ(fctVariantText(Variant::fromDoubles({1, 2.5, 0})), "1,2.5,0");
    EXPECT_EQ(fctVariantText(Variant()), "");
    EXPECT_THROW(fctVariantText(Variant::fromObject(std::make_shared<FakeObjekt>())), AcadFehler);
}

}  // namespace
}  // namespace tessara::test
