#include "platform/win32/com_entry_server.h"

#include <windows.h>
// windows.h first: the OLE headers build on it.
#include <ole2.h>
#include <oleauto.h>

#include <deque>

#include "platform/win32/utf16.h"

namespace platform {

namespace {
using win32::toUtf8;
using win32::toWide;
}  // namespace

struct ComEntryServer::State {
    std::vector<std::wstring> methods;
    std::deque<InstanceMessage> queue;
    bool open = true;  // false once the program no longer takes calls
    DWORD cookie = 0;  // of CoRegisterClassObject
    bool uninitialize = false;
};

namespace {

// COM interfaces have no virtual destructors: these objects end through
// their own Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// The one object every client gets. COM holds references to it beyond the
// server's life; what it shares with the server is held by a shared_ptr.
class EntryObject : public IDispatch {
  public:
    explicit EntryObject(std::shared_ptr<ComEntryServer::State> s) : s_(std::move(s)) {}
    virtual ~EntryObject() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch)) {
            *out = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++refs_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long n = --refs_;
        if (n == 0) delete this;
        return static_cast<ULONG>(n);
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override {
        if (!n) return E_POINTER;
        *n = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        if (!names || !ids || count < 1) return E_INVALIDARG;
        for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
        // Late binding ignores case, as VBA and AutoLISP spell names as they like.
        for (std::size_t k = 0; k < s_->methods.size(); ++k)
            if (_wcsicmp(names[0], s_->methods[k].c_str()) == 0) {
                ids[0] = static_cast<DISPID>(k + 1);
                return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
            }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* p,
                                     VARIANT* result, EXCEPINFO*, UINT* argErr) override {
        if (id < 1 || static_cast<std::size_t>(id) > s_->methods.size())
            return DISP_E_MEMBERNOTFOUND;
        if (!(flags & DISPATCH_METHOD)) return DISP_E_MEMBERNOTFOUND;
        if (p && p->cNamedArgs > 0) return DISP_E_NONAMEDARGS;
        if (!s_->open) return RPC_E_SERVERCALL_RETRYLATER;
        InstanceMessage m{toUtf8(s_->methods[id - 1]), {}};
        // IDispatch hands the arguments over last to first.
        for (UINT i = p ? p->cArgs : 0; i-- > 0;) {
            VARIANT text;
            VariantInit(&text);
            if (FAILED(VariantChangeType(&text, &p->rgvarg[i], VARIANT_ALPHABOOL, VT_BSTR))) {
                if (argErr) *argErr = i;
                return DISP_E_TYPEMISMATCH;
            }
            m.arguments.push_back(
                toUtf8(std::wstring_view(text.bstrVal, SysStringLen(text.bstrVal))));
            VariantClear(&text);
        }
        s_->queue.push_back(std::move(m));
        if (result) {
            VariantInit(result);
            result->vt = VT_BOOL;
            result->boolVal = VARIANT_TRUE;
        }
        return S_OK;
    }

  private:
    std::shared_ptr<ComEntryServer::State> s_;
    long refs_ = 1;
};

class Factory : public IClassFactory {
  public:
    explicit Factory(std::shared_ptr<ComEntryServer::State> s) : s_(std::move(s)) {}
    virtual ~Factory() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
            *out = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++refs_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long n = --refs_;
        if (n == 0) delete this;
        return static_cast<ULONG>(n);
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        if (outer) return CLASS_E_NOAGGREGATION;
        auto* o = new EntryObject(s_);
        const HRESULT hr = o->QueryInterface(iid, out);
        o->Release();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    std::shared_ptr<ComEntryServer::State> s_;
    long refs_ = 1;
};

#pragma GCC diagnostic pop

bool setDefault(HKEY root, const std::wstring& key, const std::wstring& value) {
    HKEY k = nullptr;
    if (RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &k, nullptr) !=
        ERROR_SUCCESS)
        return false;
    const LONG r =
        RegSetValueExW(k, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                       static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(k);
    return r == ERROR_SUCCESS;
}

}  // namespace

bool registerComClassForUser(const std::string& progId, const std::string& clsid,
                             const std::string& exePath) {
    const std::wstring id = toWide(progId), cls = toWide(clsid);
    auto schreiben = [&](HKEY root, const std::wstring& classes) {
        return setDefault(root, classes + id, id) &&
               setDefault(root, classes + id + L"\\CLSID", cls) &&
               setDefault(root, classes + L"CLSID\\" + cls, id) &&
               setDefault(root, classes + L"CLSID\\" + cls + L"\\ProgID", id) &&
               setDefault(root, classes + L"CLSID\\" + cls + L"\\LocalServer32",
                          L"\"" + toWide(exePath) + L"\"");
    };
    if (!schreiben(HKEY_CURRENT_USER, L"Software\\Classes\\")) return false;
    // Windows shows the user's classes in HKEY_CLASSES_ROOT; a system that
    // does not (wine) finds the class only where it looks itself.
    HKEY k = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, (id + L"\\CLSID").c_str(), 0, KEY_READ, &k) ==
        ERROR_SUCCESS) {
        RegCloseKey(k);
        return true;
    }
    return schreiben(HKEY_CLASSES_ROOT, L"");
}

std::unique_ptr<ComEntryServer> ComEntryServer::start(const std::string& progId,
                                                      const std::string& clsid,
                                                      const std::vector<std::string>& methods) {
    CLSID id;
    std::wstring text = toWide(clsid);
    if (FAILED(CLSIDFromString(text.data(), &id))) return nullptr;
    const HRESULT init = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (FAILED(init) && init != RPC_E_CHANGED_MODE) return nullptr;
    const bool uninitialize = SUCCEEDED(init);

    wchar_t exe[MAX_PATH * 2];
    const DWORD n = GetModuleFileNameW(nullptr, exe, static_cast<DWORD>(std::size(exe)));
    // Without the registration a running program still serves clients that
    // found the class some other way (the setup program registers it too).
    if (n > 0 && n < std::size(exe))
        registerComClassForUser(progId, clsid, toUtf8(std::wstring_view(exe, n)));

    auto s = std::make_shared<State>();
    for (const auto& m : methods) s->methods.push_back(toWide(m));
    auto* f = new Factory(s);
    DWORD cookie = 0;
    const HRESULT hr =
        CoRegisterClassObject(id, f, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &cookie);
    f->Release();
    if (FAILED(hr)) {
        if (uninitialize) CoUninitialize();
        return nullptr;
    }
    s->cookie = cookie;
    s->uninitialize = uninitialize;
    return std::unique_ptr<ComEntryServer>(new ComEntryServer(std::move(s)));
}

ComEntryServer::~ComEntryServer() {
    state_->open = false;
    CoRevokeClassObject(state_->cookie);
    if (state_->uninitialize) CoUninitialize();
}

std::vector<InstanceMessage> ComEntryServer::receive() {
    std::vector<InstanceMessage> r(state_->queue.begin(), state_->queue.end());
    state_->queue.clear();
    return r;
}

}  // namespace platform
