// The CAD bridge's automation route over real COM under wine: the program's
// own AcadUeberAutomation over ComAutomationHost and the Win32 desktop,
// against fake_acad_server.exe (a fake, since real AutoCAD cannot run here),
// registered in the test's wine prefix as "AutoCAD.Application" with a
// LocalServer32 that COM starts. The server logs every call it receives.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include "acad_server_kennung.h"
#include "authoring/code_tabelle.h"
#include "authoring/slide_library.h"
#include "cad/acad_ueber_automation.h"
#include "cad/block_einfuegen.h"
#include "cad/cad_verbindung.h"
#include "cad/menue_dateien.h"
#include "db/jet_opener.h"
#include "editing/block_befehle.h"
#include "library/bibliothek_sitzung.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "platform/win32/com_automation.h"
#include "platform/win32/utf16.h"
#include "platform/win32/win32_desktop.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::test {
namespace {

using platform::win32::toUtf8;
using platform::win32::toWide;

std::string lesen(const std::wstring& datei) {
    std::ifstream f(std::filesystem::path(datei), std::ios::binary);
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
}

std::wstring eigenesVerzeichnis() {
    wchar_t puffer[MAX_PATH] = {};
    const DWORD n = GetModuleFileNameW(nullptr, puffer, MAX_PATH);
    std::wstring pfad(puffer, n);
    return pfad.substr(0, pfad.find_last_of(L"\\/"));
}

bool schluesselSetzen(const std::wstring& schluessel, const std::wstring& wert) {
    HKEY k = nullptr;
    if (RegCreateKeyExW(HKEY_CLASSES_ROOT, schluessel.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                        &k, nullptr) != ERROR_SUCCESS)
        return false;
    const bool ok =
        RegSetValueExW(k, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(wert.c_str()),
                       static_cast<DWORD>((wert.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
    RegCloseKey(k);
    return ok;
}

class AcadUeberComMitFakeServer : public ::testing::Test {
  protected:
    static std::wstring verzeichnis;

    static void SetUpTestSuite() {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        verzeichnis = std::wstring(temp) + L"tessara_acad_com";
        CreateDirectoryW(verzeichnis.c_str(), nullptr);
        CreateDirectoryW((verzeichnis + L"\\Fonts").c_str(), nullptr);
        DeleteFileW((verzeichnis + L"\\aufrufe.log").c_str());
        // The registration an AutoCAD setup leaves: the program identifier
        // names the class, the class names the server that COM starts.
        const std::wstring clsid = kFakeAcadClsidText;
        ASSERT_TRUE(schluesselSetzen(L"AutoCAD.Application\\CLSID", clsid));
        ASSERT_TRUE(schluesselSetzen(L"CLSID\\" + clsid + L"\\LocalServer32",
                                     L"\"" + eigenesVerzeichnis() +
                                         L"\\fake_acad_server.exe\" --verzeichnis \"" +
                                         verzeichnis + L"\""));
    }
    static void TearDownTestSuite() {
        serverBeenden();
        RegDeleteTreeW(HKEY_CLASSES_ROOT, L"AutoCAD.Application");
        RegDeleteTreeW(HKEY_CLASSES_ROOT, (std::wstring(L"CLSID\\") + kFakeAcadClsidText).c_str());
    }
    // Application.Quit, then until the running object is gone.
    static bool serverBeenden() {
        platform::ComAutomationHost host;
        const auto ende = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        try {
            host.getActiveObject(kAcadProgId)->call("Quit");
        } catch (const platform::AutomationError&) {
            return true;
        }
        while (std::chrono::steady_clock::now() < ende) {
            try {
                host.getActiveObject(kAcadProgId);
            } catch (const platform::AutomationError&) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    void SetUp() override {
        plattform.desktop = &desktop;
        z.plattform = &plattform;
        z.benutzer = &benutzer;
        v.automation = &acad;
    }
    // A running server; the log's later lines are this test's calls.
    void serverLaeuft() {
        ASSERT_TRUE(fctAcadObjektHolen(z, v, false)) << protokoll();
        protokollAnfang = protokoll().size();
    }
    std::string protokoll() const { return lesen(verzeichnis + L"\\aufrufe.log"); }
    // Lets COM deliver the host's calls, as the program's event loop does,
    // until the condition holds; false when the host stays silent.
    static bool pumpenBis(const std::function<bool()>& fertig) {
        const auto ende = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (MSG msg; !fertig(); MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT)) {
            if (std::chrono::steady_clock::now() > ende) return false;
            while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
        }
        return true;
    }
    std::string neueAufrufe() const { return protokoll().substr(protokollAnfang); }

    platform::ComAutomationHost com;
    AcadUeberAutomation acad{com};
    platform::Win32Desktop desktop;
    platform::Platform plattform;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    CadVerbindung v;
    std::size_t protokollAnfang = 0;
};

std::wstring AcadUeberComMitFakeServer::verzeichnis;

TEST_F(AcadUeberComMitFakeServer, CreateObjectStartetDenServerUeberLocalServer32) {
    ASSERT_TRUE(serverBeenden()) << "a server from before did not end";
    protokollAnfang = protokoll().size();
    EXPECT_FALSE(fctAcadObjektHolen(z, v, true)) << "nothing runs, nothing is started";
    ASSERT_TRUE(fctAcadObjektHolen(z, v, false)) << protokoll();
    EXPECT_EQ(v.acadApp->Name(), "AutoCAD");
    EXPECT_EQ(neueAufrufe(), "START -Embedding\nBEREIT\nERZEUGT\nApplication.Name\n");
}

TEST_F(AcadUeberComMitFakeServer, VerbindetUndFuegtUeberDieBefehlszeileEin) {
    serverLaeuft();
    bool lt = false;
    ASSERT_TRUE(ACAD_Connect(z, v, false, true, lt));
    EXPECT_EQ(v.typAcadVersionInfo.strACadVersion, "AutoCAD 2015");
    EXPECT_EQ(v.typAcadVersionInfo.strAcadTitel, "AutoCAD 2015 ");
    // The host's window came forward by its caption, in another process.
    const HWND host = FindWindowW(L"TessaraFakeAcad", nullptr);
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(v.typAcadVersionInfo.lngAcadHwnd, reinterpret_cast<platform::WindowHandle>(host));

    EinfuegeAnfrage a;
    a.strBibliothek = "c:\\Bib\\";
    typEinfuegeAuftrag auftrag;
    auftrag.block.Block = "0010A";
    auftrag.block.OrdnerNr = "001";
    auftrag.block.BlkName[0] = "Ventil";
    auftrag.block.Layer = "Armaturen";
    a.auftraege = {auftrag};
    a.optionen.checkBlock = 1;
    const auto r = fctBlockEinfuegen(z, v, typCadEinstellungen{}, a);
    EXPECT_EQ(r.eingefuegt, 1);
    EXPECT_FALSE(r.booFehler);
    EXPECT_EQ(neueAufrufe(), lesen(toWide(TESSARA_WINDOWS_GOLDEN) + L"\\acad_com_einfuegen.txt"));
}

TEST_F(AcadUeberComMitFakeServer, AcadStartFindetDieDateiImSuchpfadDesHosts) {
    serverLaeuft();
    const std::wstring datei = verzeichnis + L"\\Fonts\\frei2.sld";
    std::ofstream(std::filesystem::path(datei)) << "Slide";
    EXPECT_EQ(ACAD_Start(z, v, "frei2.sld"), toUtf8(datei));
}

TEST_F(AcadUeberComMitFakeServer, DokumentSchliessenRuftCloseAuf) {
    serverLaeuft();
    EXPECT_TRUE(fctAcadDokumentSchliessen(z, v));
    EXPECT_EQ(neueAufrufe(), "Application.ActiveDocument\nDocument.Close\n");
}

// "Neu" on the full-AutoCAD route over real COM: the objects picked into
// "SS6" (an old set of the name goes first), the drawing and the slide
// written by the host, the slide adjusted by hiding objects and by a window
// of two picked corners, the library built and the record written into a
// fresh library. The host's calls, in order, are the golden file.
TEST_F(AcadUeberComMitFakeServer, NeuerBlockUeberDieAutomation) {
    serverLaeuft();
    namespace fs = std::filesystem;
    fs::remove_all("c:\\tessara_bib");
    fs::create_directories("c:\\tessara_bib");
    fs::create_directories("c:\\tessara_prog");
    std::ofstream("c:\\tessara_prog\\txtPrefix.txt", std::ios::binary) << fctCodeTabelleText();
    z.strAppPfad = "c:\\tessara_prog";
    z.strIniDatei = "c:\\tessara_prog\\Tessara9.0.ini";
    z.strCTemp = "c:\\tessara_temp\\";
    BibliothekSitzung s(z, db::jetOpener(platform::nativePath));
    ASSERT_TRUE(s.modell().fctCodeTabelleLesen("c:\\tessara_prog\\txtPrefix.txt"));
    ASSERT_EQ(s.fctOeffnen("c:\\tessara_bib\\dbTessara.mdb").lngMeldung, 0);
    s.setup().longAbfrageBlocknameBeimErzeugen = 0;
    benutzer.gedrueckt = {Benutzer::kKnopfElementeAusblenden, Benutzer::kKnopfFenster};
    const std::string nr = s.modell().seitenSlots().at(0).strBlockNr;
    EXPECT_NE(BlockBefehle(z, s).fctNeu(NeuArt::Block, v), kNichtsGeaendert) << neueAufrufe();
    EXPECT_TRUE(s.modell().seitenSlots().at(0).booBelegt);
    const auto bib = slide::SlideLibrary::readFile("c:\\tessara_bib\\000\\" + nr + "0.slb");
    ASSERT_EQ(bib.entries().size(), 1u);
    EXPECT_EQ(bib.entries()[0].name, "0A");
    EXPECT_TRUE(fs::exists("c:\\tessara_bib\\000\\Block\\" + nr + "0.dwg"));
    EXPECT_FALSE(fs::exists("c:\\tessara_temp\\TessaraNeu"));
    EXPECT_EQ(neueAufrufe(), lesen(toWide(TESSARA_WINDOWS_GOLDEN) + L"\\acad_com_block_neu.txt"));
}

// The host's events over real COM, driven through the host's own methods
// (Open, Close, Activate, Quit): application and drawing events reach the
// receiver in the host's order, on the subscribing thread; the host quits
// while subscribed, and unsubscribing from it afterwards returns.
TEST_F(AcadUeberComMitFakeServer, HostEreignisseInReihenfolgeBisZumEnde) {
    serverLaeuft();
    std::vector<std::string> gehoert;
    const DWORD faden = GetCurrentThreadId();
    ASSERT_TRUE(v.acadApp->EreignisseAbonnieren([&](AcadEreignis e, const std::string& datei) {
        EXPECT_EQ(GetCurrentThreadId(), faden);
        gehoert.push_back(std::to_string(static_cast<int>(e)) + " " + datei);
    }));
    auto app = com.getActiveObject(kAcadProgId);
    auto dokumente = app->get("Documents").object;
    dokumente->call("Open", {platform::Variant::fromString("c:\\Pläne\\B.dwg")});
    app->get("ActiveDocument").object->call("Close");
    dokumente->call("Item", {platform::Variant::fromInt(0)}).object->call("Activate");
    app->call("Quit");
    ASSERT_TRUE(pumpenBis([&] { return gehoert.size() >= 5; })) << neueAufrufe();
    EXPECT_EQ(gehoert, (std::vector<std::string>{
                           "0 c:\\Pläne\\B.dwg", "1 c:\\Pläne\\B.dwg", "2 c:\\Pläne\\B.dwg",
                           "1 " + toUtf8(verzeichnis) + "\\Zeichnungen\\Zeichnung1.dwg", "3 "}));
    ASSERT_TRUE(serverBeenden());
    v.acadApp->EreignisseAbbestellen();
}

// The program's menu goes to the host through MenuGroups.Load, its
// AutoLISP file through the command line.
TEST_F(AcadUeberComMitFakeServer, MenueDateienUeberMenuGroupsGeladen) {
    serverLaeuft();
    std::filesystem::create_directories("c:\\tessara_prog");
    z.strAppPfad = "c:\\tessara_prog";
    z.strExeName = "tessara.exe";
    ASSERT_TRUE(fctMenueDateienLaden(z, v));
    EXPECT_EQ(neueAufrufe(),
              "Application.MenuGroups\n"
              "MenuGroups.Load(\"c:\\tessara_prog\\tessara.mnu\")\n"
              "Application.ActiveDocument\n"
              "Document.SendCommand(\"(load \"c:\\\\tessara_prog\\\\tessara.mnl\") \")\n");
}

// After unsubscribing, the host's receivers are gone (its log shows each
// Unadvise) and a drawing activated again tells nobody. A host killed while
// subscribed is let go without waiting.
TEST_F(AcadUeberComMitFakeServer, AbbestellenBeendetDieEreignisse) {
    serverLaeuft();
    int gehoert = 0;
    ASSERT_TRUE(
        v.acadApp->EreignisseAbonnieren([&](AcadEreignis, const std::string&) { ++gehoert; }));
    auto app = com.getActiveObject(kAcadProgId);
    app->get("ActiveDocument").object->call("Activate");
    ASSERT_TRUE(pumpenBis([&] { return gehoert == 1; })) << neueAufrufe();
    v.acadApp->EreignisseAbbestellen();
    app->get("ActiveDocument").object->call("Activate");
    app->get("Name");  // the host has sent what it posted before answering
    pumpenBis([] { return true; });
    EXPECT_EQ(gehoert, 1);
    EXPECT_EQ(neueAufrufe(), lesen(toWide(TESSARA_WINDOWS_GOLDEN) + L"\\acad_com_ereignisse.txt"));
    ASSERT_TRUE(v.acadApp->EreignisseAbonnieren([&](AcadEreignis, const std::string&) {}));
    DWORD pid = 0;
    GetWindowThreadProcessId(FindWindowW(L"TessaraFakeAcad", nullptr), &pid);
    const HANDLE host = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, pid);
    ASSERT_NE(host, nullptr);
    TerminateProcess(host, 9);
    WaitForSingleObject(host, INFINITE);
    CloseHandle(host);
    v.acadApp->EreignisseAbbestellen();
}

}  // namespace
}  // namespace tessara::test
