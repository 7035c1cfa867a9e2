#include "platform/win32/com_automation.h"

#include <windows.h>
// windows.h first: the OLE headers build on it.
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>

#include "platform/win32/utf16.h"

namespace platform {
namespace {

using win32::toUtf8;
using win32::toWide;

// VB's numbers for the two failures a late-bound program meets most.
constexpr long kCannotCreateObject = 429;  // "ActiveX component can't create object"
constexpr long kNoSuchMember = 438;        // "Object doesn't support this property or method"

std::string systemText(HRESULT hr) {
    wchar_t* buf = nullptr;
    DWORD n = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, static_cast<DWORD>(hr), 0, reinterpret_cast<LPWSTR>(&buf), 0, nullptr);
    std::string text = n ? toUtf8(std::wstring_view(buf, n)) : std::string();
    if (buf) LocalFree(buf);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.pop_back();
    if (text.empty()) {
        char hex[32];
        wsprintfA(hex, "HRESULT 0x%08lX", static_cast<unsigned long>(hr));
        text = hex;
    }
    return text;
}

// Owns one VARIANT.
struct VariantHolder {
    VARIANT v;
    VariantHolder() { VariantInit(&v); }
    ~VariantHolder() { VariantClear(&v); }
    VariantHolder(const VariantHolder&) = delete;
    VariantHolder& operator=(const VariantHolder&) = delete;
};

Variant fromVariant(VARIANT& raw);

// COM interfaces have no virtual destructors: objects end through Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
// The receiving end of one subscription: the source calls its Invoke, which
// hands the event on. It is detached when the subscription ends, so that a
// source calling late, or the stub of a host that died and never releases
// it, finds nothing to call.
class EventSink final : public IDispatch {
  public:
    EventSink(const IID& iid, AutomationEventHandler handler)
        : iid_(iid), handler_(std::make_shared<AutomationEventHandler>(std::move(handler))) {}
    void detach() { handler_.reset(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        // The source asks for its own event interface: a dispinterface,
        // which this IDispatch serves.
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
            IsEqualIID(iid, iid_)) {
            *out = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&refs_));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG n = InterlockedDecrement(&refs_);
        if (n == 0) delete this;
        return static_cast<ULONG>(n);
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* n) override {
        if (n) *n = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*,
                                     EXCEPINFO*, UINT*) override {
        // A copy: the handler may end this very subscription.
        const auto handler = handler_;
        if (!handler) return S_OK;
        std::vector<Variant> args;
        for (UINT i = params ? params->cArgs : 0; i-- > 0;) {
            try {
                args.push_back(fromVariant(params->rgvarg[i]));
            } catch (const AutomationError&) {
                args.emplace_back();  // an argument of a type this program does not read
            }
        }
        try {
            (*handler)(id, args);
        } catch (...) {
            // Nothing may unwind into the host's call; the handler reports
            // its own failures.
        }
        return S_OK;
    }

  private:
    IID iid_;
    std::shared_ptr<AutomationEventHandler> handler_;
    LONG refs_ = 1;
};
#pragma GCC diagnostic pop

class ComEvents : public AutomationEvents {
  public:
    ComEvents(IConnectionPoint* point, EventSink* sink, DWORD cookie)
        : point_(point), sink_(sink), cookie_(cookie) {}
    ~ComEvents() override {
        sink_->detach();
        // A host that has died answers with an error at once; there is
        // nothing left to undo then.
        point_->Unadvise(cookie_);
        // Drops the references that the host's side still holds on the sink.
        CoDisconnectObject(sink_, 0);
        sink_->Release();
        point_->Release();
    }
    ComEvents(const ComEvents&) = delete;
    ComEvents& operator=(const ComEvents&) = delete;

  private:
    IConnectionPoint* point_;
    EventSink* sink_;
    DWORD cookie_;
};

class ComObject : public AutomationObject {
  public:
    explicit ComObject(IDispatch* d) : disp_(d) {}  // takes over one reference
    ~ComObject() override {
        if (disp_) disp_->Release();
    }
    IDispatch* dispatch() const { return disp_; }

    Variant get(const std::string& property, const std::vector<Variant>& args) override {
        WORD flags = DISPATCH_PROPERTYGET;
        if (!args.empty()) flags |= DISPATCH_METHOD;  // "Item(key)" is either, as VB allows
        return invoke(property, flags, args, nullptr);
    }
    void put(const std::string& property, const Variant& value) override {
        std::vector<Variant> args{value};
        invoke(property,
               value.type == Variant::Type::Object ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT,
               args, nullptr);
    }
    Variant call(const std::string& method, const std::vector<Variant>& args) override {
        return invoke(method, DISPATCH_METHOD | DISPATCH_PROPERTYGET, args, nullptr);
    }
    std::unique_ptr<AutomationEvents> connectEvents(const std::string& interfaceId,
                                                    AutomationEventHandler handler) override;

  private:
    Variant invoke(const std::string& name, WORD flags, const std::vector<Variant>& args, void*);
    IDispatch* disp_;
};

void toVariant(const Variant& in, VARIANT& out) {
    VariantInit(&out);
    switch (in.type) {
        case Variant::Type::Empty:
            break;
        case Variant::Type::Bool:
            out.vt = VT_BOOL;
            out.boolVal = in.boolean ? VARIANT_TRUE : VARIANT_FALSE;
            break;
        case Variant::Type::Integer:
            out.vt = VT_I4;
            out.lVal = in.integer;
            break;
        case Variant::Type::Double:
            out.vt = VT_R8;
            out.dblVal = in.number;
            break;
        case Variant::Type::String: {
            std::wstring w = toWide(in.text);
            out.vt = VT_BSTR;
            out.bstrVal = SysAllocStringLen(w.data(), static_cast<UINT>(w.size()));
            break;
        }
        case Variant::Type::Object: {
            auto* com = dynamic_cast<ComObject*>(in.object.get());
            if (in.object && !com)
                throw AutomationError("Only COM objects can be passed to a COM object", 13);
            out.vt = VT_DISPATCH;
            out.pdispVal = com ? com->dispatch() : nullptr;
            if (out.pdispVal) out.pdispVal->AddRef();
            break;
        }
        case Variant::Type::DoubleArray: {
            SAFEARRAY* sa = SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(in.doubles.size()));
            if (!sa) throw AutomationError("Out of memory", 7);
            double* data = nullptr;
            if (SUCCEEDED(SafeArrayAccessData(sa, reinterpret_cast<void**>(&data)))) {
                std::copy(in.doubles.begin(), in.doubles.end(), data);
                SafeArrayUnaccessData(sa);
            }
            out.vt = VT_ARRAY | VT_R8;
            out.parray = sa;
            break;
        }
    }
}

Variant fromArray(SAFEARRAY* sa, VARTYPE element) {
    if (!sa || SafeArrayGetDim(sa) != 1) throw AutomationError("Unsupported array", 13);
    LONG lo = 0, hi = -1;
    SafeArrayGetLBound(sa, 1, &lo);
    SafeArrayGetUBound(sa, 1, &hi);
    std::vector<double> values;
    for (LONG i = lo; i <= hi; ++i) {
        VariantHolder item;
        if (element == VT_VARIANT) {
            if (FAILED(SafeArrayGetElement(sa, &i, &item.v)))
                throw AutomationError("Bad array", 13);
        } else {
            item.v.vt = element;
            if (FAILED(SafeArrayGetElement(sa, &i, &item.v.llVal)))
                throw AutomationError("Bad array", 13);
        }
        if (FAILED(VariantChangeType(&item.v, &item.v, 0, VT_R8)))
            throw AutomationError("Type mismatch", 13);
        values.push_back(item.v.dblVal);
    }
    return Variant::fromDoubles(std::move(values));
}

Variant fromVariant(VARIANT& raw) {
    VariantHolder copy;
    VARIANT* v = &raw;
    if (raw.vt & VT_BYREF) {
        if (FAILED(VariantCopyInd(&copy.v, &raw))) throw AutomationError("Type mismatch", 13);
        v = &copy.v;
    }
    if (v->vt & VT_ARRAY) return fromArray(v->parray, static_cast<VARTYPE>(v->vt & VT_TYPEMASK));
    switch (v->vt) {
        case VT_EMPTY:
        case VT_NULL:
            return {};
        case VT_BOOL:
            return Variant::fromBool(v->boolVal != VARIANT_FALSE);
        case VT_I1:
            return Variant::fromInt(v->cVal);
        case VT_UI1:
            return Variant::fromInt(v->bVal);
        case VT_I2:
            return Variant::fromInt(v->iVal);
        case VT_UI2:
            return Variant::fromInt(v->uiVal);
        case VT_I4:
            return Variant::fromInt(v->lVal);
        case VT_INT:
            return Variant::fromInt(v->intVal);
        case VT_BSTR:
            return Variant::fromString(
                v->bstrVal ? toUtf8(std::wstring_view(v->bstrVal, SysStringLen(v->bstrVal)))
                           : std::string());
        case VT_DISPATCH:
            if (!v->pdispVal) return {};
            v->pdispVal->AddRef();
            return Variant::fromObject(std::make_shared<ComObject>(v->pdispVal));
        case VT_UNKNOWN: {
            IDispatch* d = nullptr;
            if (!v->punkVal ||
                FAILED(v->punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&d))))
                return {};
            return Variant::fromObject(std::make_shared<ComObject>(d));
        }
        default: {
            VariantHolder d;
            if (FAILED(VariantChangeType(&d.v, v, 0, VT_R8)))
                throw AutomationError("Type mismatch", 13);
            return Variant::fromDouble(d.v.dblVal);
        }
    }
}

Variant ComObject::invoke(const std::string& name, WORD flags, const std::vector<Variant>& args,
                          void*) {
    std::wstring wname = toWide(name);
    LPOLESTR names[1] = {wname.data()};
    DISPID id = 0;
    HRESULT hr = disp_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr))
        throw AutomationError("Object doesn't support this property or method", kNoSuchMember);

    // IDispatch takes the arguments last to first.
    std::vector<VARIANT> vargs(args.size());
    struct Clear {
        std::vector<VARIANT>& v;
        ~Clear() {
            for (auto& a : v) VariantClear(&a);
        }
    } clear{vargs};
    for (std::size_t i = 0; i < args.size(); ++i) toVariant(args[i], vargs[args.size() - 1 - i]);

    DISPPARAMS params{};
    params.rgvarg = vargs.empty() ? nullptr : vargs.data();
    params.cArgs = static_cast<UINT>(vargs.size());
    DISPID putId = DISPID_PROPERTYPUT;
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
        params.rgdispidNamedArgs = &putId;
        params.cNamedArgs = 1;
    }
    VariantHolder result;
    EXCEPINFO info{};
    UINT badArg = 0;
    hr =
        disp_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, &result.v, &info, &badArg);
    if (hr == DISP_E_MEMBERNOTFOUND && (flags & DISPATCH_PROPERTYPUTREF)) {
        // Some servers take objects by value only.
        hr = disp_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &params,
                           &result.v, &info, &badArg);
    }
    if (FAILED(hr)) {
        std::string text;
        long number = hr;
        if (hr == DISP_E_EXCEPTION) {
            if (info.pfnDeferredFillIn) info.pfnDeferredFillIn(&info);
            if (info.bstrDescription) text = toUtf8(info.bstrDescription);
            number = info.scode ? info.scode : info.wCode;
            if (!info.scode && info.wCode == 0) number = hr;
        }
        if (info.bstrDescription) SysFreeString(info.bstrDescription);
        if (info.bstrSource) SysFreeString(info.bstrSource);
        if (info.bstrHelpFile) SysFreeString(info.bstrHelpFile);
        if (text.empty()) text = systemText(number);
        throw AutomationError(text, number);
    }
    return fromVariant(result.v);
}

std::unique_ptr<AutomationEvents> ComObject::connectEvents(const std::string& interfaceId,
                                                           AutomationEventHandler handler) {
    IID iid;
    std::wstring text = toWide(interfaceId);
    if (FAILED(IIDFromString(text.data(), &iid)))
        throw AutomationError("Invalid interface identifier: " + interfaceId, 5);
    IConnectionPointContainer* container = nullptr;
    IConnectionPoint* point = nullptr;
    if (SUCCEEDED(disp_->QueryInterface(IID_IConnectionPointContainer,
                                        reinterpret_cast<void**>(&container))) &&
        container) {
        if (FAILED(container->FindConnectionPoint(iid, &point))) point = nullptr;
        container->Release();
    }
    if (!point) throw AutomationError("Object doesn't support events", kNoSuchMember);
    auto* sink = new EventSink(iid, std::move(handler));
    DWORD cookie = 0;
    const HRESULT hr = point->Advise(static_cast<IDispatch*>(sink), &cookie);
    if (FAILED(hr)) {
        sink->detach();
        CoDisconnectObject(sink, 0);
        sink->Release();
        point->Release();
        throw AutomationError(systemText(hr), hr);
    }
    return std::make_unique<ComEvents>(point, sink, cookie);
}

CLSID classOf(const std::string& progId) {
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(toWide(progId).c_str(), &clsid)))
        throw AutomationError("ActiveX component can't create object", kCannotCreateObject);
    return clsid;
}

}  // namespace

ComAutomationHost::ComAutomationHost() {
    HRESULT hr = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    // S_FALSE: already initialised on this thread, which still needs the
    // matching uninitialise; RPC_E_CHANGED_MODE: someone chose otherwise.
    uninitialize_ = SUCCEEDED(hr);
}

ComAutomationHost::~ComAutomationHost() {
    if (uninitialize_) CoUninitialize();
}

std::shared_ptr<AutomationObject> ComAutomationHost::getActiveObject(const std::string& progId) {
    CLSID clsid = classOf(progId);
    IUnknown* unknown = nullptr;
    if (FAILED(GetActiveObject(clsid, nullptr, &unknown)) || !unknown)
        throw AutomationError("ActiveX component can't create object", kCannotCreateObject);
    IDispatch* d = nullptr;
    HRESULT hr = unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&d));
    unknown->Release();
    if (FAILED(hr) || !d) throw AutomationError(systemText(hr), hr);
    return std::make_shared<ComObject>(d);
}

std::shared_ptr<AutomationObject> ComAutomationHost::createObject(const std::string& progId) {
    CLSID clsid = classOf(progId);
    IDispatch* d = nullptr;
    HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER | CLSCTX_INPROC_SERVER,
                                  IID_IDispatch, reinterpret_cast<void**>(&d));
    if (FAILED(hr) || !d)
        throw AutomationError("ActiveX component can't create object", kCannotCreateObject);
    return std::make_shared<ComObject>(d);
}

}  // namespace platform
