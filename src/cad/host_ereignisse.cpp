#include "cad/host_ereignisse.h"

#include "authoring/dateien_operationen.h"
#include "startup/fehler_log.h"

namespace tessara {

clsHostEreignisse::clsHostEreignisse(ProgrammZustand& z, CadVerbindung& v, Beobachter beobachter)
    : z_(z),
      v_(v),
      beobachter_(std::move(beobachter)),
      selbst_(std::make_shared<clsHostEreignisse*>(this)) {}

clsHostEreignisse::~clsHostEreignisse() {
    selbst_.reset();
    if (!app_) return;
    try {
        app_->EreignisseAbbestellen();
    } catch (const AcadFehler&) {
        // a host already gone cannot be told
    }
}

bool clsHostEreignisse::abonnieren() {
    if (z_.bytOhneWithEvent != 0) return false;
    if (app_ && app_ == v_.acadApp) return true;
    Prozedur p(z_, "clsHostEreignisse.abonnieren");
    if (app_) {
        p.step("altes Abonnement beenden");
        try {
            app_->EreignisseAbbestellen();
        } catch (const AcadFehler&) {
        }
        app_.reset();
    }
    if (!v_.acadApp) return false;
    p.step("Ereignisse abonnieren");
    std::weak_ptr<clsHostEreignisse*> w = selbst_;
    try {
        if (!v_.acadApp->EreignisseAbonnieren([w](AcadEreignis e, const std::string& datei) {
                if (auto s = w.lock()) (*s)->ereignis(e, datei);
            }))
            return false;
    } catch (const AcadFehler& e) {
        p.fehler(e.what(), e.nummer(), true);
        return false;
    }
    app_ = v_.acadApp;
    aktiv_.booHostBeendet = false;
    aktiveLesen();
    melden();
    return true;
}

void clsHostEreignisse::aktiveLesen() {
    Prozedur p(z_, "clsHostEreignisse.aktiveLesen");
    aktiv_ = typAktiveZeichnung{};
    if (!app_) return;
    try {
        p.step("ActiveDocument");
        if (app_->DocumentsCount() == 0) return;
        auto dok = app_->ActiveDocument();
        aktiv_.strTitel = dok->WindowTitle();
        p.step("DWGPREFIX");
        aktiv_.strVerzeichnis = dok->GetVariable("DWGPREFIX");
    } catch (const AcadFehler& e) {
        // A host busy with a modal dialog refuses calls: the title stays as
        // far as it was read.
        p.fehler(e.what(), e.nummer(), true);
    }
    if (!aktiv_.strVerzeichnis.empty())
        aktiv_.booSchreibgeschuetzt = fctReadOnlyMitVerzeichnis(z_, aktiv_.strVerzeichnis);
}

void clsHostEreignisse::melden() {
    if (beobachter_) beobachter_(aktiv_);
}

void clsHostEreignisse::ereignis(AcadEreignis e, const std::string& strDatei) {
    subDebugLog(z_, "Host-Ereignis " + std::to_string(static_cast<int>(e)) + ": " + strDatei);
    switch (e) {
        case AcadEreignis::DokumentGeoeffnet:
        case AcadEreignis::DokumentAktiviert:
            aktiveLesen();
            break;
        case AcadEreignis::DokumentGeschlossen:
            // The host activates the next drawing after this one has gone
            // and says so; until then there is none.
            aktiv_ = typAktiveZeichnung{};
            break;
        case AcadEreignis::AnwendungEnde: {
            // Kept alive to the end of this call: the host is calling.
            auto gehend = std::move(app_);
            if (v_.acadApp == gehend) v_.acadApp.reset();
            v_.typAcadVersionInfo = AcadVersionInfo{};
            v_.bytNurFenster = 0;
            aktiv_ = typAktiveZeichnung{};
            aktiv_.booHostBeendet = true;
            try {
                if (gehend) gehend->EreignisseAbbestellen();
            } catch (const AcadFehler&) {
            }
            break;
        }
    }
    melden();
}

}  // namespace tessara
