// AutoCAD's object model over the late-bound automation interface, against
// fake automation objects (AutoCAD's COM server cannot run here).
#include "cad/acad_ueber_automation.h"

#include <gtest/gtest.h>

#include <map>

#include "cad/cad_verbindung.h"
#include "cad_umgebung.h"

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
        if (p == wirftBei) throw AutomationError("Automatisierungsfehler", -2147417848);
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

class FakeHost : public platform::AutomationHost {
  public:
    std::shared_ptr<FakeObjekt> laufend;
    std::vector<std::string> gefragt;
    std::shared_ptr<AutomationObject> getActiveObject(const std::string& progId) override {
        gefragt.push_back("GetObject " + progId);
        if (!laufend) throw AutomationError("ActiveX-Komponente kann kein Objekt erstellen.", 429);
        return laufend;
    }
    std::shared_ptr<AutomationObject> createObject(const std::string& progId) override {
        gefragt.push_back("CreateObject " + progId);
        throw AutomationError("ActiveX-Komponente kann kein Objekt erstellen.", 429);
    }
};

struct Modell {
    std::shared_ptr<FakeObjekt> app = std::make_shared<FakeObjekt>();
    std::shared_ptr<FakeObjekt> dok = std::make_shared<FakeObjekt>();
    std::shared_ptr<FakeObjekt> docs = std::make_shared<FakeObjekt>();
    std::shared_ptr<FakeObjekt> pref = std::make_shared<FakeObjekt>();
    std::shared_ptr<FakeObjekt> files = std::make_shared<FakeObjekt>();
    Modell() {
        app->eigenschaften = {{"Version", Variant::fromString("17.1s (LMS Tech)")},
                              {"Caption", Variant::fromString("AutoCAD 2008 - [Zeichnung1.dwg]")},
                              {"Name", Variant::fromString("AutoCAD")},
                              {"Path", Variant::fromString("C:\\Programme\\AutoCAD 2008")},
                              {"Documents", Variant::fromObject(docs)},
                              {"ActiveDocument", Variant::fromObject(dok)},
                              {"Preferences", Variant::fromObject(pref)}};
        docs->eigenschaften["Count"] = Variant::fromInt(2);
        pref->eigenschaften["Files"] = Variant::fromObject(files);
        files->eigenschaften["SupportPath"] = Variant::fromString("c:\\a;c:\\b");
        dok->eigenschaften = {{"WindowTitle", Variant::fromString("Zeichnung1.dwg")},
                              {"hwnd", Variant::fromInt(0x2040)}};
        dok->rueckgaben["GetVariable"] = Variant::fromInt(1);
    }
};

TEST(AutomationFake, AnwendungUndDokument) {
    Modell m;
    auto a = fctAcadAnwendung(m.app);
    EXPECT_EQ(a->Version(), "17.1s (LMS Tech)");
    EXPECT_EQ(a->Caption(), "AutoCAD 2008 - [Zeichnung1.dwg]");
    EXPECT_EQ(a->Path(), "C:\\Programme\\AutoCAD 2008");
    EXPECT_EQ(a->DocumentsCount(), 2);
    EXPECT_EQ(a->SupportPath(), "c:\\a;c:\\b");
    auto d = a->ActiveDocument();
    EXPECT_EQ(d->WindowTitle(), "Zeichnung1.dwg");
    EXPECT_EQ(d->hwnd(), 0x2040u);
    EXPECT_EQ(d->GetVariable("attreq"), "1");
    d->SetVariable("attreq", "0");
    d->SetVariable("CLAYER", "Armaturen");
    d->SendCommand("._attedit (entlast)");
    d->Close();
    EXPECT_EQ(m.dok->aufrufe,
              (std::vector<std::string>{"GetVariable(attreq)", "SetVariable(attreq|0)",
                                        "SetVariable(CLAYER|Armaturen)",
                                        "SendCommand(._attedit (entlast))", "Close()"}));
    // Integer variables go as integers, names as text.
    EXPECT_EQ(m.dok->argumente[1][1].type, Variant::Type::Integer);
    EXPECT_EQ(m.dok->argumente[2][1].type, Variant::Type::String);
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

class AutomationFakeVerbindung : public CadUmgebung {};

TEST_F(AutomationFakeVerbindung, AcadConnectUeberDenHost) {
    Modell m;
    FakeHost host;
    host.laufend = m.app;
    AcadUeberAutomation automation(host);
    v.automation = &automation;
    desktop.addWindow("AutoCAD 2008 - [Zeichnung1.dwg]");
    bool lt = false;
    ASSERT_TRUE(ACAD_Connect(z, v, false, true, lt));
    EXPECT_EQ(v.typAcadVersionInfo.strACadVersion, "AutoCAD 2008");
    EXPECT_EQ(v.typAcadVersionInfo.strAcadTitel, "AutoCAD 2008 ");
    EXPECT_EQ(host.gefragt, std::vector<std::string>{"GetObject AutoCAD.Application"});

    // No host running: the title route, and no new instance is created.
    host.laufend.reset();
    v = CadVerbindung{};
    v.automation = &automation;
    EXPECT_FALSE(ACAD_Connect(z, v, true, true, lt));
    EXPECT_EQ(host.gefragt.size(), 2u);
}

}  // namespace
}  // namespace tessara::test
