// A fake AutoCAD automation server for the tests under wine: real AutoCAD
// cannot run here, so this local server stands in for "AutoCAD.Application"
// over real COM. It answers the members the CAD bridge uses with fixed
// values of an AutoCAD 2015, and appends every call it receives to
// <dir>\aufrufe.log for the test to compare.
//
//   fake_acad_server.exe --verzeichnis DIR [-Embedding]
//
// COM starts it through LocalServer32 (adding -Embedding); it registers its
// class object (for CoCreateInstance) and its application object in the
// running object table (for GetActiveObject), shows a window with the
// application's caption, and runs until Application.Quit or ten idle minutes.
#include <windows.h>
// windows.h first: the OLE headers build on it.
#include <ole2.h>
#include <oleauto.h>
#include <shellapi.h>

#include <cwchar>
#include <cwctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "acad_server_kennung.h"
#include "authoring/slide.h"
#include "platform/win32/utf16.h"

namespace {

using platform::win32::toUtf8;

constexpr const wchar_t* kCaption = L"AutoCAD 2015 - [Zeichnung1.dwg]";
constexpr UINT kLeerlaufMs = 10 * 60 * 1000;

std::ofstream protokoll;
HWND fenster = nullptr;
UINT_PTR leerlauf = 0;

void schreib(const std::string& zeile) {
    protokoll << zeile << "\n";
    protokoll.flush();
}

// Control characters in caret notation (as cat -v shows them), so that the
// carriage return ending a command stays visible in the log.
std::string sichtbar(const std::string& s) {
    std::string r;
    for (const unsigned char c : s) {
        if (c < 0x20) {
            r += '^';
            r += static_cast<char>(c + '@');
        } else {
            r += static_cast<char>(c);
        }
    }
    return r;
}

std::string argumentText(VARIANT& v) {
    if (v.vt == VT_BSTR) {
        std::string r(1, '"');
        r += sichtbar(toUtf8(v.bstrVal ? v.bstrVal : L""));
        r += '"';
        return r;
    }
    VARIANT t;
    VariantInit(&t);
    std::string r(1, '?');
    if (SUCCEEDED(VariantChangeType(&t, &v, 0, VT_BSTR))) r = toUtf8(t.bstrVal ? t.bstrVal : L"");
    VariantClear(&t);
    return r;
}

void text(VARIANT* ergebnis, const std::wstring& w) {
    if (!ergebnis) return;
    ergebnis->vt = VT_BSTR;
    ergebnis->bstrVal = SysAllocString(w.c_str());
}

void zahl(VARIANT* ergebnis, LONG n, VARTYPE typ = VT_I4) {
    if (!ergebnis) return;
    ergebnis->vt = typ;
    if (typ == VT_I2) {
        ergebnis->iVal = static_cast<SHORT>(n);
    } else {
        ergebnis->lVal = n;
    }
}

// One automation object: its members by name, each answering with the
// arguments in call order (IDispatch hands them over last to first).
class Objekt : public IDispatch {
  public:
    using Mitglied = std::function<HRESULT(const std::vector<VARIANT*>& args, VARIANT* ergebnis)>;

    explicit Objekt(std::string name) : name_(std::move(name)) {}
    virtual ~Objekt() = default;
    void mitglied(const std::wstring& name, Mitglied m) {
        namen_.push_back(name);
        mitglieder_.push_back(std::move(m));
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** aus) override {
        if (!aus) return E_POINTER;
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch)) {
            *aus = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *aus = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++zaehler_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long n = --zaehler_;
        if (n == 0) delete this;
        return static_cast<ULONG>(n);
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override {
        *n = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* namen, UINT anzahl, LCID,
                                            DISPID* ids) override {
        if (anzahl < 1) return E_INVALIDARG;
        for (UINT i = 0; i < anzahl; ++i) ids[i] = DISPID_UNKNOWN;
        // Late binding is case-insensitive, as VB spells names as it likes;
        // no member takes named arguments.
        for (std::size_t k = 0; k < namen_.size(); ++k) {
            if (_wcsicmp(namen[0], namen_[k].c_str()) == 0) {
                ids[0] = static_cast<DISPID>(k + 1);
                return anzahl == 1 ? S_OK : DISP_E_UNKNOWNNAME;
            }
        }
        schreib("UNBEKANNT " + name_ + "." + toUtf8(namen[0]));
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD art, DISPPARAMS* p,
                                     VARIANT* ergebnis, EXCEPINFO*, UINT*) override {
        if (id < 1 || static_cast<std::size_t>(id) > namen_.size()) return DISP_E_MEMBERNOTFOUND;
        if (leerlauf) SetTimer(fenster, leerlauf, kLeerlaufMs, nullptr);
        std::vector<VARIANT*> args;
        for (UINT i = p ? p->cArgs : 0; i-- > 0;) args.push_back(&p->rgvarg[i]);
        std::string zeile = name_ + "." + toUtf8(namen_[id - 1]);
        if (art & DISPATCH_PROPERTYPUT) {
            zeile += " = " + argumentText(*args.at(0));
        } else if (!args.empty()) {
            zeile += "(";
            for (std::size_t i = 0; i < args.size(); ++i)
                zeile += (i ? ", " : "") + argumentText(*args[i]);
            zeile += ")";
        }
        schreib(zeile);
        if (ergebnis) VariantInit(ergebnis);
        return mitglieder_[id - 1](args, ergebnis);
    }

  private:
    std::string name_;
    std::vector<std::wstring> namen_;
    std::vector<Mitglied> mitglieder_;
    long zaehler_ = 1;
};

HRESULT objektZurueck(VARIANT* ergebnis, Objekt* o) {
    if (!ergebnis) return S_OK;
    o->AddRef();
    ergebnis->vt = VT_DISPATCH;
    ergebnis->pdispVal = o;
    return S_OK;
}

std::wstring argText(const std::vector<VARIANT*>& args, std::size_t i) {
    if (i >= args.size()) return {};
    VARIANT t;
    VariantInit(&t);
    std::wstring r;
    if (SUCCEEDED(VariantChangeType(&t, args[i], 0, VT_BSTR)) && t.bstrVal) r = t.bstrVal;
    VariantClear(&t);
    return r;
}

// A point as AutoCAD answers it: an array of three doubles.
void punkt(VARIANT* ergebnis, const std::wstring& text) {
    if (!ergebnis) return;
    double p[3] = {};
    swscanf(text.c_str(), L"%lf,%lf,%lf", &p[0], &p[1], &p[2]);
    SAFEARRAY* sa = SafeArrayCreateVector(VT_R8, 0, 3);
    for (LONG i = 0; i < 3; ++i) SafeArrayPutElement(sa, &i, &p[i]);
    ergebnis->vt = VT_ARRAY | VT_R8;
    ergebnis->parray = sa;
}

struct Modell {
    std::wstring verzeichnis;
    // System variables as AutoCAD keeps them: integers, points ("x,y,z"),
    // and DWGPREFIX as text.
    std::map<std::wstring, std::wstring> variablen;
    std::map<std::wstring, Objekt*> auswahlsaetze;
};

std::wstring gross(std::wstring s) {
    for (auto& c : s) c = static_cast<wchar_t>(std::towupper(c));
    return s;
}

// A selection set: on SelectOnScreen the user picks two objects.
Objekt* auswahlsatz(Modell& m, const std::wstring& name) {
    auto* satz = new Objekt("SelectionSet");
    auto anzahl = std::make_shared<LONG>(0);
    satz->mitglied(L"SelectOnScreen", [anzahl](const auto&, VARIANT*) {
        *anzahl = 2;
        return S_OK;
    });
    satz->mitglied(L"Count", [anzahl](const auto&, VARIANT* e) {
        zahl(e, *anzahl);
        return S_OK;
    });
    satz->mitglied(L"Item", [anzahl](const auto& args, VARIANT* e) {
        const long i = _wtol(argText(args, 0).c_str());
        if (i < 0 || i >= *anzahl) return DISP_E_EXCEPTION;
        auto* o = new Objekt("Entity" + std::to_string(i + 1));
        o->mitglied(L"Visible", [](const auto&, VARIANT*) { return S_OK; });
        objektZurueck(e, o);
        o->Release();
        return S_OK;
    });
    satz->mitglied(L"Delete", [&m, name, satz](const auto&, VARIANT*) {
        m.auswahlsaetze.erase(name);
        satz->Release();
        return S_OK;
    });
    return satz;
}

// The commands that leave a file behind, "._-wblock path\r..." and
// "._mslide path\r...": the path runs to the carriage return. The drawing
// records the answers that follow; the slide is a real one, a cross.
void dateiBefehle(const std::wstring& text) {
    const std::wstring t = gross(text);
    for (const std::wstring befehl : {L"-WBLOCK ", L"MSLIDE "}) {
        for (auto p = t.find(befehl); p != std::wstring::npos; p = t.find(befehl, p + 1)) {
            const auto von = p + befehl.size(), bis = text.find(L'\r', von);
            const std::string pfad = toUtf8(text.substr(von, bis - von));
            try {
                if (befehl == L"MSLIDE ") {
                    tessara::slide::Slide s;
                    s.highX = 639, s.highY = 399, s.aspectRatio = 1.6;
                    s.addVector(7, {100, 100}, {540, 300});
                    s.addVector(1, {100, 300}, {540, 100});
                    tessara::slide::writeSlideFile(s, pfad);
                } else {
                    const std::string rest =
                        bis == std::wstring::npos ? "" : toUtf8(text.substr(bis + 1));
                    const std::string inhalt =
                        "FAKE ACAD ZEICHNUNG\r\nANTWORTEN " + sichtbar(rest) + "\r\n";
                    tessara::slide::writeFileBytes(
                        pfad,
                        {reinterpret_cast<const std::uint8_t*>(inhalt.data()), inhalt.size()});
                }
                schreib("DATEI " + pfad);
            } catch (const tessara::slide::SlideError& e) {
                schreib(std::string("FEHLER ") + e.what());
            }
        }
    }
}

Objekt* modellBauen(Modell& m) {
    m.variablen = {{L"FILEDIA", L"1"},         {L"ATTREQ", L"1"},
                   {L"ORTHOMODE", L"1"},       {L"CMDECHO", L"1"},
                   {L"CMDACTIVE", L"0"},       {L"EXPERT", L"0"},
                   {L"EXTMIN", L"10,20,0"},    {L"EXTMAX", L"410,317,0"},
                   {L"INSBASE", L"12.5,20,0"}, {L"DWGPREFIX", m.verzeichnis + L"\\Zeichnungen\\"}};

    auto* dokument = new Objekt("Document");
    dokument->mitglied(L"GetVariable", [&m](const auto& args, VARIANT* e) {
        const auto it = m.variablen.find(gross(argText(args, 0)));
        if (it == m.variablen.end()) return DISP_E_EXCEPTION;
        if (it->first == L"DWGPREFIX") {
            text(e, it->second);
        } else if (it->second.find(L',') != std::wstring::npos) {
            punkt(e, it->second);
        } else {
            zahl(e, _wtol(it->second.c_str()), VT_I2);
        }
        return S_OK;
    });
    dokument->mitglied(L"SetVariable", [&m](const auto& args, VARIANT*) {
        m.variablen[gross(argText(args, 0))] = argText(args, 1);
        return S_OK;
    });
    dokument->mitglied(L"SendCommand", [](const auto& args, VARIANT*) {
        dateiBefehle(argText(args, 0));
        return S_OK;
    });
    auto* saetze = new Objekt("SelectionSets");
    saetze->mitglied(L"Add", [&m](const auto& args, VARIANT* e) {
        const std::wstring name = gross(argText(args, 0));
        if (m.auswahlsaetze.count(name)) return DISP_E_EXCEPTION;  // AutoCAD refuses a name in use
        return objektZurueck(e, m.auswahlsaetze[name] = auswahlsatz(m, name));
    });
    saetze->mitglied(L"Item", [&m](const auto& args, VARIANT* e) {
        const auto it = m.auswahlsaetze.find(gross(argText(args, 0)));
        return it == m.auswahlsaetze.end() ? DISP_E_EXCEPTION : objektZurueck(e, it->second);
    });
    dokument->mitglied(L"SelectionSets",
                       [saetze](const auto&, VARIANT* e) { return objektZurueck(e, saetze); });
    // The user's answers on the command line.
    auto* werkzeug = new Objekt("Utility");
    werkzeug->mitglied(L"GetString", [](const auto&, VARIANT* e) {
        text(e, L"j");
        return S_OK;
    });
    // The user's picks take turns between two corners, as a window is picked.
    werkzeug->mitglied(L"GetPoint", [n = 0](const auto&, VARIANT* e) mutable {
        punkt(e, n++ % 2 ? L"320.5,240,0" : L"120.5,80,0");
        return S_OK;
    });
    dokument->mitglied(L"Utility",
                       [werkzeug](const auto&, VARIANT* e) { return objektZurueck(e, werkzeug); });
    dokument->mitglied(L"WindowTitle", [](const auto&, VARIANT* e) {
        text(e, L"Zeichnung1.dwg");
        return S_OK;
    });
    dokument->mitglied(L"hwnd", [](const auto&, VARIANT* e) {
        zahl(e, static_cast<LONG>(reinterpret_cast<LONG_PTR>(fenster)));
        return S_OK;
    });
    dokument->mitglied(L"Close", [](const auto&, VARIANT*) { return S_OK; });

    auto* dokumente = new Objekt("Documents");
    dokumente->mitglied(L"Count", [](const auto&, VARIANT* e) {
        zahl(e, 1);
        return S_OK;
    });

    auto* dateien = new Objekt("Files");
    dateien->mitglied(L"SupportPath", [&m](const auto&, VARIANT* e) {
        text(e, m.verzeichnis + L"\\Support;" + m.verzeichnis + L"\\Fonts");
        return S_OK;
    });
    auto* einstellungen = new Objekt("Preferences");
    einstellungen->mitglied(
        L"Files", [dateien](const auto&, VARIANT* e) { return objektZurueck(e, dateien); });

    auto* app = new Objekt("Application");
    app->mitglied(L"Version", [](const auto&, VARIANT* e) {
        text(e, L"20.0s (LMS Tech)");
        return S_OK;
    });
    app->mitglied(L"Caption", [](const auto&, VARIANT* e) {
        text(e, kCaption);
        return S_OK;
    });
    app->mitglied(L"Name", [](const auto&, VARIANT* e) {
        text(e, L"AutoCAD");
        return S_OK;
    });
    app->mitglied(L"Path", [&m](const auto&, VARIANT* e) {
        text(e, m.verzeichnis + L"\\AutoCAD 2015");
        return S_OK;
    });
    app->mitglied(L"Documents",
                  [dokumente](const auto&, VARIANT* e) { return objektZurueck(e, dokumente); });
    app->mitglied(L"ActiveDocument",
                  [dokument](const auto&, VARIANT* e) { return objektZurueck(e, dokument); });
    app->mitglied(L"Preferences", [einstellungen](const auto&, VARIANT* e) {
        return objektZurueck(e, einstellungen);
    });
    app->mitglied(L"Quit", [](const auto&, VARIANT*) {
        PostQuitMessage(0);
        return S_OK;
    });
    return app;
}

// Every CoCreateInstance gets the one running application, as AutoCAD's
// single instance answers them. It lives as long as main, so it counts no
// references.
class Fabrik : public IClassFactory {
  public:
    explicit Fabrik(IDispatch* app) : app_(app) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** aus) override {
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
            *aus = static_cast<IClassFactory*>(this);
            return S_OK;
        }
        *aus = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* aussen, REFIID iid, void** aus) override {
        if (aussen) return CLASS_E_NOAGGREGATION;
        schreib("ERZEUGT");
        return app_->QueryInterface(iid, aus);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    IDispatch* app_;
};

LRESULT CALLBACK fensterProzedur(HWND h, UINT msg, WPARAM w, LPARAM l) {
    if (msg == WM_TIMER && w == leerlauf) {
        schreib("LEERLAUF");
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(h, msg, w, l);
}

}  // namespace

int main() {
    int argc = 0;
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    Modell m;
    bool eingebettet = false;
    for (int i = 1; i < argc; ++i) {
        const std::wstring a = argv[i];
        if (a == L"--verzeichnis" && i + 1 < argc) m.verzeichnis = argv[++i];
        if (_wcsicmp(a.c_str(), L"-Embedding") == 0 || _wcsicmp(a.c_str(), L"/Embedding") == 0)
            eingebettet = true;
    }
    if (argv) LocalFree(argv);
    if (m.verzeichnis.empty()) return 2;
    protokoll.open(std::filesystem::path(m.verzeichnis + L"\\aufrufe.log"),
                   std::ios::app | std::ios::binary);
    if (!protokoll) return 1;
    schreib(eingebettet ? "START -Embedding" : "START");

    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    HINSTANCE inst = GetModuleHandleW(nullptr);
    WNDCLASSW wc{};
    wc.lpfnWndProc = fensterProzedur;
    wc.hInstance = inst;
    wc.lpszClassName = L"TessaraFakeAcad";
    RegisterClassW(&wc);
    fenster = CreateWindowExW(0, wc.lpszClassName, kCaption, WS_OVERLAPPEDWINDOW, 0, 0, 400, 300,
                              nullptr, nullptr, inst, nullptr);
    ShowWindow(fenster, SW_SHOWNOACTIVATE);
    leerlauf = SetTimer(fenster, 1, kLeerlaufMs, nullptr);

    Objekt* app = modellBauen(m);
    Fabrik fabrik(app);
    DWORD klasse = 0, aktiv = 0;
    const CLSID clsid = tessara::test::kFakeAcadClsid;
    HRESULT hr =
        CoRegisterClassObject(clsid, &fabrik, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &klasse);
    if (SUCCEEDED(hr)) hr = RegisterActiveObject(app, clsid, ACTIVEOBJECT_STRONG, &aktiv);
    if (FAILED(hr)) {
        schreib("FEHLER Registrierung");
        return 1;
    }
    schreib("BEREIT");

    MSG msg;
    while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
    RevokeActiveObject(aktiv, nullptr);
    CoRevokeClassObject(klasse);
    DestroyWindow(fenster);
    app->Release();
    CoUninitialize();
    schreib("ENDE");
    return 0;
}
