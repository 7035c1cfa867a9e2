// A fake AutoCAD automation server for the tests under wine: real AutoCAD
// cannot run here, so this local server stands in for "AutoCAD.Application"
// over real COM. It answers the members the CAD bridge uses with fixed
// values of an AutoCAD 2015, fires AutoCAD's application and drawing events
// through connection points, and appends every call it receives to
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
#include <olectl.h>
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

class Objekt;

// An outgoing interface of an object: the receivers that advised it, to whom
// the events go. It lives as long as its object and counts that object's
// references.
class Verbindungspunkt : public IConnectionPoint {
  public:
    Verbindungspunkt(Objekt& besitzer, const IID& iid) : besitzer_(besitzer), iid_(iid) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** aus) override {
        if (!aus) return E_POINTER;
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IConnectionPoint)) {
            *aus = static_cast<IConnectionPoint*>(this);
            AddRef();
            return S_OK;
        }
        *aus = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
        *iid = iid_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** c) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* empfaenger, DWORD* nummer) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD nummer) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }
    // Calls every receiver; one that advises or unadvises meanwhile does not
    // disturb the round.
    void feuern(DISPID id, const std::string& name, std::vector<VARIANT>& args);

  private:
    Objekt& besitzer_;
    IID iid_;
    std::map<DWORD, IDispatch*> empfaenger_;
    DWORD naechste_ = 1;
};

// One automation object: its members by name, each answering with the
// arguments in call order (IDispatch hands them over last to first), and
// the outgoing interfaces it fires events through.
class Objekt : public IDispatch, public IConnectionPointContainer {
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
        if (IsEqualIID(iid, IID_IConnectionPointContainer) && !punkte_.empty()) {
            *aus = static_cast<IConnectionPointContainer*>(this);
            AddRef();
            return S_OK;
        }
        *aus = nullptr;
        return E_NOINTERFACE;
    }
    const std::string& name() const { return name_; }
    Verbindungspunkt* quelle(const IID& iid) {
        punkte_.push_back(std::make_unique<Verbindungspunkt>(*this, iid));
        punkte_iids_.push_back(iid);
        return punkte_.back().get();
    }
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** aus) override {
        if (!aus) return E_POINTER;
        *aus = nullptr;
        for (std::size_t i = 0; i < punkte_.size(); ++i) {
            if (IsEqualIID(iid, punkte_iids_[i])) {
                *aus = punkte_[i].get();
                (*aus)->AddRef();
                return S_OK;
            }
        }
        return CONNECT_E_NOCONNECTION;
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
    std::vector<std::unique_ptr<Verbindungspunkt>> punkte_;
    std::vector<IID> punkte_iids_;
    long zaehler_ = 1;
};

ULONG Verbindungspunkt::AddRef() { return besitzer_.AddRef(); }
ULONG Verbindungspunkt::Release() { return besitzer_.Release(); }

HRESULT Verbindungspunkt::GetConnectionPointContainer(IConnectionPointContainer** c) {
    return besitzer_.QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(c));
}

HRESULT Verbindungspunkt::Advise(IUnknown* empfaenger, DWORD* nummer) {
    if (!empfaenger || !nummer) return E_POINTER;
    // The receiver is asked for the event interface, as AutoCAD asks; here,
    // with no type library registered to marshal it between processes, its
    // IDispatch serves as well, since every event is dispatched.
    IDispatch* d = nullptr;
    if (FAILED(empfaenger->QueryInterface(iid_, reinterpret_cast<void**>(&d))) || !d) {
        d = nullptr;
        if (FAILED(empfaenger->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&d))) || !d)
            return CONNECT_E_CANNOTCONNECT;
    }
    *nummer = naechste_++;
    empfaenger_[*nummer] = d;
    schreib(besitzer_.name() + ".Advise");
    return S_OK;
}

HRESULT Verbindungspunkt::Unadvise(DWORD nummer) {
    const auto it = empfaenger_.find(nummer);
    if (it == empfaenger_.end()) return CONNECT_E_NOCONNECTION;
    IDispatch* d = it->second;
    empfaenger_.erase(it);
    schreib(besitzer_.name() + ".Unadvise");
    d->Release();
    return S_OK;
}

void Verbindungspunkt::feuern(DISPID id, const std::string& name, std::vector<VARIANT>& args) {
    std::vector<IDispatch*> alle;
    for (const auto& [nummer, d] : empfaenger_) {
        d->AddRef();
        alle.push_back(d);
    }
    if (alle.empty()) return;
    schreib("EREIGNIS " + besitzer_.name() + "." + name);
    // IDispatch takes the arguments last to first.
    std::vector<VARIANT> umgekehrt(args.rbegin(), args.rend());
    DISPPARAMS p{umgekehrt.empty() ? nullptr : umgekehrt.data(), nullptr,
                 static_cast<UINT>(umgekehrt.size()), 0};
    for (IDispatch* d : alle) {
        // A receiver that has gone answers with an error; the others still hear.
        d->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &p, nullptr, nullptr,
                  nullptr);
        d->Release();
    }
}

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
    Objekt* saetze = nullptr;
    Objekt* werkzeug = nullptr;
    Verbindungspunkt* anwendungsEreignisse = nullptr;
    // The open drawings, the first one's window title "Zeichnung1.dwg".
    std::vector<Objekt*> dokumente;
    std::map<Objekt*, Verbindungspunkt*> dokumentEreignisse;
    Objekt* aktiv = nullptr;
};

// AutoCAD's outgoing interfaces, _DAcadApplicationEvents and
// _DAcadDocumentEvents, and the numbers of the events the fake fires, as
// AutoCAD's type library declares them.
constexpr IID kAnwendungsEreignisse = {
    0x2974a76e, 0xa19b, 0x11d1, {0xa2, 0xb0, 0x08, 0x00, 0x09, 0xdc, 0x63, 0x9a}};
constexpr IID kDokumentEreignisse = {
    0x976858e1, 0x0b7b, 0x11d0, {0x89, 0xdf, 0x00, 0x80, 0x5f, 0xc2, 0xfb, 0xba}};
constexpr DISPID kBeginQuit = 0x08, kEndOpen = 0x16, kActivate = 0x0C, kBeginClose = 0x21;
constexpr UINT kEreignisNachricht = WM_APP + 1;

// An event goes out from the message loop after the call that caused it has
// returned, as AutoCAD tells of a drawing once it is open.
struct Ereignis {
    Verbindungspunkt* punkt;
    DISPID id;
    std::string name;
    std::wstring datei;  // EndOpen's argument
};

void ereignisSenden(Verbindungspunkt* punkt, DISPID id, std::string name, std::wstring datei = {}) {
    punkt->AddRef();
    PostMessageW(
        fenster, kEreignisNachricht, 0,
        reinterpret_cast<LPARAM>(new Ereignis{punkt, id, std::move(name), std::move(datei)}));
}

void ereignisFeuern(Ereignis& e) {
    std::vector<VARIANT> args;
    VARIANT_BOOL abbrechen = VARIANT_FALSE;  // BeginQuit's "Cancel", never set by this program
    VARIANT v;
    VariantInit(&v);
    if (e.id == kEndOpen) {
        v.vt = VT_BSTR;
        v.bstrVal = SysAllocString(e.datei.c_str());
        args.push_back(v);
    } else if (e.id == kBeginQuit) {
        v.vt = VT_BOOL | VT_BYREF;
        v.pboolVal = &abbrechen;
        args.push_back(v);
    }
    e.punkt->feuern(e.id, e.name, args);
    for (auto& a : args) VariantClear(&a);
    e.punkt->Release();
}

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

// A drawing: its members answer for the whole session (the system
// variables, selection sets and command-line answers are the host's), its
// title and full name are its own.
Objekt* dokumentBauen(Modell& m, const std::wstring& voll) {
    auto* dokument = new Objekt("Document");
    const std::wstring titel = voll.substr(voll.find_last_of(L'\\') + 1);
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
    dokument->mitglied(L"SelectionSets",
                       [&m](const auto&, VARIANT* e) { return objektZurueck(e, m.saetze); });
    dokument->mitglied(L"Utility",
                       [&m](const auto&, VARIANT* e) { return objektZurueck(e, m.werkzeug); });
    dokument->mitglied(L"WindowTitle", [titel](const auto&, VARIANT* e) {
        text(e, titel);
        return S_OK;
    });
    dokument->mitglied(L"hwnd", [](const auto&, VARIANT* e) {
        zahl(e, static_cast<LONG>(reinterpret_cast<LONG_PTR>(fenster)));
        return S_OK;
    });
    dokument->mitglied(L"FullName", [voll](const auto&, VARIANT* e) {
        text(e, voll);
        return S_OK;
    });
    auto* ereignisse = m.dokumentEreignisse[dokument] = dokument->quelle(kDokumentEreignisse);
    dokument->mitglied(L"Activate", [&m, dokument, ereignisse](const auto&, VARIANT*) {
        m.aktiv = dokument;
        ereignisSenden(ereignisse, kActivate, "Activate");
        return S_OK;
    });
    // The first drawing stays open in the model, so that the calls after a
    // Close still find one.
    dokument->mitglied(L"Close", [&m, dokument, ereignisse](const auto&, VARIANT*) {
        ereignisSenden(ereignisse, kBeginClose, "BeginClose");
        if (dokument != m.dokumente.front()) {
            std::erase(m.dokumente, dokument);
            if (m.aktiv == dokument) m.aktiv = m.dokumente.back();
        }
        return S_OK;
    });
    m.dokumente.push_back(dokument);
    m.aktiv = dokument;
    return dokument;
}

Objekt* modellBauen(Modell& m) {
    auto* saetze = m.saetze = new Objekt("SelectionSets");
    saetze->mitglied(L"Add", [&m](const auto& args, VARIANT* e) {
        const std::wstring name = gross(argText(args, 0));
        if (m.auswahlsaetze.count(name)) return DISP_E_EXCEPTION;  // AutoCAD refuses a name in use
        return objektZurueck(e, m.auswahlsaetze[name] = auswahlsatz(m, name));
    });
    saetze->mitglied(L"Item", [&m](const auto& args, VARIANT* e) {
        const auto it = m.auswahlsaetze.find(gross(argText(args, 0)));
        return it == m.auswahlsaetze.end() ? DISP_E_EXCEPTION : objektZurueck(e, it->second);
    });
    // The user's answers on the command line.
    auto* werkzeug = m.werkzeug = new Objekt("Utility");
    werkzeug->mitglied(L"GetString", [](const auto&, VARIANT* e) {
        text(e, L"j");
        return S_OK;
    });
    // The user's picks take turns between two corners, as a window is picked.
    werkzeug->mitglied(L"GetPoint", [n = 0](const auto&, VARIANT* e) mutable {
        punkt(e, n++ % 2 ? L"320.5,240,0" : L"120.5,80,0");
        return S_OK;
    });

    m.variablen = {{L"FILEDIA", L"1"},         {L"ATTREQ", L"1"},
                   {L"ORTHOMODE", L"1"},       {L"CMDECHO", L"1"},
                   {L"CMDACTIVE", L"0"},       {L"EXPERT", L"0"},
                   {L"EXTMIN", L"10,20,0"},    {L"EXTMAX", L"410,317,0"},
                   {L"INSBASE", L"12.5,20,0"}, {L"DWGPREFIX", m.verzeichnis + L"\\Zeichnungen\\"}};

    dokumentBauen(m, m.verzeichnis + L"\\Zeichnungen\\Zeichnung1.dwg");
    auto* dokumente = new Objekt("Documents");
    dokumente->mitglied(L"Count", [&m](const auto&, VARIANT* e) {
        zahl(e, static_cast<LONG>(m.dokumente.size()));
        return S_OK;
    });
    dokumente->mitglied(L"Item", [&m](const auto& args, VARIANT* e) {
        const long i = _wtol(argText(args, 0).c_str());
        if (i < 0 || static_cast<std::size_t>(i) >= m.dokumente.size()) return DISP_E_EXCEPTION;
        return objektZurueck(e, m.dokumente[static_cast<std::size_t>(i)]);
    });
    // Opening tells the application's receivers (EndOpen), then the new
    // drawing's own (Activate), as it becomes the active one.
    dokumente->mitglied(L"Open", [&m](const auto& args, VARIANT* e) {
        const std::wstring voll = argText(args, 0);
        Objekt* d = dokumentBauen(m, voll);
        ereignisSenden(m.anwendungsEreignisse, kEndOpen, "EndOpen", voll);
        ereignisSenden(m.dokumentEreignisse[d], kActivate, "Activate");
        return objektZurueck(e, d);
    });
    // MenuGroups.Load adds a menu group; the fake keeps none.
    auto* menues = new Objekt("MenuGroups");
    menues->mitglied(L"Load", [](const auto&, VARIANT*) { return S_OK; });

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
                  [&m](const auto&, VARIANT* e) { return objektZurueck(e, m.aktiv); });
    app->mitglied(L"MenuGroups",
                  [menues](const auto&, VARIANT* e) { return objektZurueck(e, menues); });
    app->mitglied(L"Preferences", [einstellungen](const auto&, VARIANT* e) {
        return objektZurueck(e, einstellungen);
    });
    m.anwendungsEreignisse = app->quelle(kAnwendungsEreignisse);
    // BeginQuit goes out before the loop ends: the quit message comes after
    // every posted one.
    app->mitglied(L"Quit", [&m](const auto&, VARIANT*) {
        ereignisSenden(m.anwendungsEreignisse, kBeginQuit, "BeginQuit");
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
    if (msg == kEreignisNachricht) {
        std::unique_ptr<Ereignis> e(reinterpret_cast<Ereignis*>(l));
        ereignisFeuern(*e);
        return 0;
    }
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
    if (SUCCEEDED(hr))
        hr = RegisterActiveObject(static_cast<IDispatch*>(app), clsid, ACTIVEOBJECT_STRONG, &aktiv);
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
