#include "cad/acad_ueber_automation.h"

#include <charconv>
#include <cstdio>
#include <map>

namespace tessara {

namespace {

using platform::AutomationObject;
using platform::Variant;

template <typename F>
auto haltFehler(F&& f) -> decltype(f()) {
    try {
        return f();
    } catch (const platform::AutomationError& e) {
        throw AcadFehler(e.what(), e.number());
    }
}

std::shared_ptr<AutomationObject> objekt(const Variant& v, const char* was) {
    if (v.type != Variant::Type::Object || !v.object)
        throw AcadFehler(std::string("Objektvariable nicht festgelegt: ") + was, 91);
    return v.object;
}

// Integer system variables want an integer variant; everything else goes as text.
Variant wertVariant(const std::string& wert) {
    std::int32_t zahl = 0;
    const char* ende = wert.data() + wert.size();
    auto [p, ec] = std::from_chars(wert.data(), ende, zahl);
    if (!wert.empty() && ec == std::errc() && p == ende) return Variant::fromInt(zahl);
    return Variant::fromString(wert);
}

class Dokument : public AcadDokument {
  public:
    explicit Dokument(std::shared_ptr<AutomationObject> d) : d_(std::move(d)) {}
    std::string GetVariable(const std::string& name) override {
        return haltFehler(
            [&] { return fctVariantText(d_->call("GetVariable", {Variant::fromString(name)})); });
    }
    void SetVariable(const std::string& name, const std::string& wert) override {
        haltFehler([&] {
            d_->call("SetVariable", {Variant::fromString(name), wertVariant(wert)});
            return 0;
        });
    }
    void SendCommand(const std::string& text) override {
        haltFehler([&] {
            d_->call("SendCommand", {Variant::fromString(text)});
            return 0;
        });
    }
    std::string WindowTitle() override {
        return haltFehler([&] { return fctVariantText(d_->get("WindowTitle")); });
    }
    std::uintptr_t hwnd() override {
        return haltFehler([&] {
            const Variant v = d_->get("hwnd");
            return static_cast<std::uintptr_t>(static_cast<std::uint32_t>(v.integer));
        });
    }
    void Close() override {
        haltFehler([&] {
            d_->call("Close");
            return 0;
        });
    }
    long AuswahlAmBildschirm(const std::string& satzName) override {
        return haltFehler([&] {
            auto saetze = objekt(d_->get("SelectionSets"), "SelectionSets");
            // Add refuses a name in use; a set left by an earlier run goes first.
            try {
                objekt(saetze->call("Item", {Variant::fromString(satzName)}), "Item")
                    ->call("Delete");
            } catch (const platform::AutomationError&) {
            }
            auto satz = objekt(saetze->call("Add", {Variant::fromString(satzName)}), "Add");
            satz->call("SelectOnScreen");
            return static_cast<long>(satz->get("Count").integer);
        });
    }
    void AuswahlAusblenden(const std::string& satzName) override {
        haltFehler([&] {
            auto saetze = objekt(d_->get("SelectionSets"), "SelectionSets");
            auto satz = objekt(saetze->call("Item", {Variant::fromString(satzName)}), "Item");
            const long n = static_cast<long>(satz->get("Count").integer);
            for (long i = 0; i < n; ++i)
                objekt(satz->call("Item", {Variant::fromInt(static_cast<std::int32_t>(i))}), "Item")
                    ->put("Visible", Variant::fromBool(false));
            return 0;
        });
    }
    std::string GetString(const std::string& prompt) override {
        return haltFehler([&] {
            auto u = objekt(d_->get("Utility"), "Utility");
            return fctVariantText(
                u->call("GetString", {Variant::fromBool(false), Variant::fromString(prompt)}));
        });
    }
    std::string GetPoint(const std::string& prompt) override {
        return haltFehler([&] {
            auto u = objekt(d_->get("Utility"), "Utility");
            return fctVariantText(u->call("GetPoint", {Variant{}, Variant::fromString(prompt)}));
        });
    }

    std::vector<typLayer> Layers() override {
        return haltFehler([&] {
            auto layers = objekt(d_->get("Layers"), "Layers");
            const long n = static_cast<long>(layers->get("Count").integer);
            std::vector<typLayer> r;
            for (long i = 0; i < n; ++i) {
                auto l = objekt(
                    layers->call("Item", {Variant::fromInt(static_cast<std::int32_t>(i))}), "Item");
                typLayer t;
                t.strName = fctVariantText(l->get("Name"));
                t.intFarbe = static_cast<int>(l->get("Color").integer);
                t.strLinientyp = fctVariantText(l->get("Linetype"));
                t.booEin = wahr(l->get("LayerOn"));
                t.booGefroren = wahr(l->get("Freeze"));
                t.booGesperrt = wahr(l->get("Lock"));
                r.push_back(std::move(t));
            }
            return r;
        });
    }

  private:
    static bool wahr(const Variant& v) {
        return v.type == Variant::Type::Bool ? v.boolean : v.integer != 0;
    }
    std::shared_ptr<AutomationObject> d_;
};

// AutoCAD's outgoing interfaces, _DAcadApplicationEvents and
// _DAcadDocumentEvents, and the numbers of the members the program follows,
// as AutoCAD's type library declares them.
constexpr const char* kAnwendungsEreignisse = "{2974A76E-A19B-11D1-A2B0-080009DC639A}";
constexpr const char* kDokumentEreignisse = "{976858E1-0B7B-11D0-89DF-00805FC2FBBA}";
constexpr long kBeginQuit = 0x08, kEndOpen = 0x16;
constexpr long kActivate = 0x0C, kBeginClose = 0x21;

// One subscription to a host: its application's events and those of every
// drawing open in it. Document events are the drawing's own, so each drawing
// opened later is subscribed as its EndOpen arrives, and a drawing's
// subscription ends with its BeginClose.
struct Abonnement {
    AcadEreignisEmpfaenger empfaenger;
    std::unique_ptr<platform::AutomationEvents> anwendung;
    std::map<int, std::unique_ptr<platform::AutomationEvents>> dokumente;
    int naechstes = 0;

    void melden(AcadEreignis e, const std::string& datei) {
        // A copy: the receiver may end this subscription.
        const auto an = empfaenger;
        if (an) an(e, datei);
    }

    static void dokument(const std::shared_ptr<Abonnement>& abo,
                         const std::shared_ptr<AutomationObject>& d, const std::string& datei) {
        const int nr = abo->naechstes++;
        std::weak_ptr<Abonnement> w = abo;
        abo->dokumente[nr] =
            d->connectEvents(kDokumentEreignisse, [w, nr, datei](long id, const auto&) {
                auto a = w.lock();
                if (!a) return;
                if (id == kActivate) {
                    a->melden(AcadEreignis::DokumentAktiviert, datei);
                } else if (id == kBeginClose) {
                    auto ende = std::move(a->dokumente[nr]);
                    a->dokumente.erase(nr);
                    a->melden(AcadEreignis::DokumentGeschlossen, datei);
                }
            });
    }
};

class Anwendung : public AcadAnwendung {
  public:
    explicit Anwendung(std::shared_ptr<AutomationObject> a) : a_(std::move(a)) {}
    ~Anwendung() override { EreignisseAbbestellen(); }
    std::string Version() override { return text("Version"); }
    std::string Caption() override { return text("Caption"); }
    std::string Name() override { return text("Name"); }
    std::string Path() override { return text("Path"); }
    long DocumentsCount() override {
        return haltFehler([&] {
            auto docs = objekt(a_->get("Documents"), "Documents");
            return static_cast<long>(docs->get("Count").integer);
        });
    }
    std::shared_ptr<AcadDokument> ActiveDocument() override {
        return haltFehler([&] {
            return std::shared_ptr<AcadDokument>(
                std::make_shared<Dokument>(objekt(a_->get("ActiveDocument"), "ActiveDocument")));
        });
    }
    std::string SupportPath() override {
        return haltFehler([&] {
            auto pref = objekt(a_->get("Preferences"), "Preferences");
            auto files = objekt(pref->get("Files"), "Files");
            return fctVariantText(files->get("SupportPath"));
        });
    }
    void MenuGroupsLoad(const std::string& strMenueDatei) override {
        haltFehler([&] {
            objekt(a_->get("MenuGroups"), "MenuGroups")
                ->call("Load", {Variant::fromString(strMenueDatei)});
            return 0;
        });
    }

    bool EreignisseAbonnieren(AcadEreignisEmpfaenger empfaenger) override {
        EreignisseAbbestellen();
        auto abo = std::make_shared<Abonnement>();
        abo->empfaenger = std::move(empfaenger);
        std::weak_ptr<Abonnement> w = abo;
        try {
            abo->anwendung = a_->connectEvents(
                kAnwendungsEreignisse, [w, app = a_](long id, const std::vector<Variant>& args) {
                    auto a = w.lock();
                    if (!a) return;
                    if (id == kEndOpen) {
                        const std::string datei = args.empty() ? "" : fctVariantText(args[0]);
                        try {
                            Abonnement::dokument(
                                a, objekt(app->get("ActiveDocument"), "ActiveDocument"), datei);
                        } catch (const std::exception&) {
                            // The drawing's own events stay unheard; the
                            // opening is still told.
                        }
                        a->melden(AcadEreignis::DokumentGeoeffnet, datei);
                    } else if (id == kBeginQuit) {
                        a->melden(AcadEreignis::AnwendungEnde, "");
                    }
                });
        } catch (const platform::AutomationError& e) {
            if (e.number() == 438) return false;  // a host without events
            throw AcadFehler(e.what(), e.number());
        }
        haltFehler([&] {
            auto docs = objekt(a_->get("Documents"), "Documents");
            const long n = static_cast<long>(docs->get("Count").integer);
            for (long i = 0; i < n; ++i) {
                auto d = objekt(
                    docs->call("Item", {Variant::fromInt(static_cast<std::int32_t>(i))}), "Item");
                Abonnement::dokument(abo, d, fctVariantText(d->get("FullName")));
            }
            return 0;
        });
        abo_ = std::move(abo);
        return true;
    }
    void EreignisseAbbestellen() override {
        // Ends every subscription, each telling the host; a host that has
        // died is not waited for.
        auto abo = std::move(abo_);
        if (!abo) return;
        abo->empfaenger = nullptr;
        abo->dokumente.clear();
        abo->anwendung.reset();
    }

  private:
    std::shared_ptr<Abonnement> abo_;
    std::string text(const char* eigenschaft) {
        return haltFehler([&] { return fctVariantText(a_->get(eigenschaft)); });
    }
    std::shared_ptr<AutomationObject> a_;
};

}  // namespace

std::string fctVariantText(const Variant& v) {
    switch (v.type) {
        case Variant::Type::Empty:
            return {};
        case Variant::Type::Bool:
            return v.boolean ? "-1" : "0";
        case Variant::Type::Integer:
            return std::to_string(v.integer);
        case Variant::Type::Double: {
            char puffer[64];
            std::snprintf(puffer, sizeof puffer, "%.15g", v.number);
            return puffer;
        }
        case Variant::Type::String:
            return v.text;
        case Variant::Type::DoubleArray: {
            std::string s;
            for (std::size_t i = 0; i < v.doubles.size(); ++i) {
                if (i) s += ",";
                s += fctVariantText(Variant::fromDouble(v.doubles[i]));
            }
            return s;
        }
        case Variant::Type::Object:
            break;
    }
    throw AcadFehler("Typen unverträglich", 13);
}

std::shared_ptr<AcadAnwendung> fctAcadAnwendung(std::shared_ptr<AutomationObject> app) {
    if (!app) return nullptr;
    return std::make_shared<Anwendung>(std::move(app));
}

std::shared_ptr<AcadAnwendung> AcadUeberAutomation::laufendesObjekt(const std::string& progId) {
    return haltFehler([&] { return fctAcadAnwendung(host_.getActiveObject(progId)); });
}

std::shared_ptr<AcadAnwendung> AcadUeberAutomation::neuesObjekt(const std::string& progId) {
    return haltFehler([&] { return fctAcadAnwendung(host_.createObject(progId)); });
}

}  // namespace tessara
