#pragma once
// A stand-in for AutoCAD's automation server, which cannot run here: it
// answers from fields the test sets and records every call in order.
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cad/acad_automation.h"

namespace tessara::test {

struct FakeAcadLog {
    std::vector<std::string> eintraege;  // "SendCommand:...", "SetVariable:name=wert", ...
};

class FakeDokument : public AcadDokument {
  public:
    explicit FakeDokument(std::shared_ptr<FakeAcadLog> log) : log_(std::move(log)) {}
    std::map<std::string, std::string> variablen{
        {"filedia", "1"}, {"attreq", "1"}, {"orthomode", "1"}, {"CMDECHO", "1"}, {"DWGPREFIX", ""}};
    std::string titel = "Zeichnung1.dwg";
    bool geschlossen = false;
    bool closeWirft = false;
    int sendCommandWirftAb = -1;  // the n-th SendCommand (0-based) throws

    std::string GetVariable(const std::string& name) override {
        log_->eintraege.push_back("GetVariable:" + name);
        return variablen[name];
    }
    void SetVariable(const std::string& name, const std::string& wert) override {
        log_->eintraege.push_back("SetVariable:" + name + "=" + wert);
        variablen[name] = wert;
    }
    void SendCommand(const std::string& text) override {
        if (sendCommandWirftAb >= 0 && gesendet_++ >= sendCommandWirftAb)
            throw AcadFehler("Aufruf wurde vom Aufgerufenen abgelehnt.", -2147418111);
        log_->eintraege.push_back("SendCommand:" + text);
        if (beiBefehl) beiBefehl(text);
    }
    // The host doing what a command asks (writing a drawing or a slide).
    std::function<void(const std::string&)> beiBefehl;
    bool auswahlWirft = false;
    std::vector<typLayer> layers;  // the Layers collection
    std::vector<typLayer> Layers() override { return layers; }
    std::string WindowTitle() override { return titel; }
    std::uintptr_t hwnd() override { return 0x4711; }
    void Close() override {
        if (closeWirft) throw AcadFehler("Zeichnung ist beschäftigt", 5);
        geschlossen = true;
    }
    // Objects the user picks at each selection, in turn; past the end: none.
    std::vector<long> auswahlen;
    std::vector<std::string> antworten;  // GetString answers in turn; past the end: ""
    std::vector<std::string> punkte;     // GetPoint answers in turn
    long AuswahlAmBildschirm(const std::string& satz) override {
        log_->eintraege.push_back("Auswahl:" + satz);
        if (auswahlWirft) throw AcadFehler("Auswahl fehlgeschlagen", -2145320928);
        return gewaehlt_ < auswahlen.size() ? auswahlen[gewaehlt_++] : 0;
    }
    void AuswahlAusblenden(const std::string& satz) override {
        log_->eintraege.push_back("Ausblenden:" + satz);
    }
    std::string GetString(const std::string& prompt) override {
        log_->eintraege.push_back("GetString:" + prompt);
        return gefragt_ < antworten.size() ? antworten[gefragt_++] : std::string();
    }
    std::string GetPoint(const std::string& prompt) override {
        log_->eintraege.push_back("GetPoint:" + prompt);
        return gepickt_ < punkte.size() ? punkte[gepickt_++] : std::string("0,0,0");
    }

  private:
    std::shared_ptr<FakeAcadLog> log_;
    int gesendet_ = 0;
    std::size_t gewaehlt_ = 0, gefragt_ = 0, gepickt_ = 0;
};

class FakeAnwendung : public AcadAnwendung {
  public:
    explicit FakeAnwendung(std::shared_ptr<FakeAcadLog> protokoll)
        : log(std::move(protokoll)), dokument(std::make_shared<FakeDokument>(log)) {}
    std::shared_ptr<FakeAcadLog> log;
    std::shared_ptr<FakeDokument> dokument;
    std::string version = "16.1s (LMS Tech)";
    std::string caption = "AutoCAD 2005 - [Zeichnung1.dwg]";
    std::string pfad = "C:\\Programme\\AutoCAD 2005";
    std::string supportPfad;
    long dokumente = 1;
    bool supportGelesen = false;

    std::string Version() override { return version; }
    std::string Caption() override { return caption; }
    std::string Name() override { return "AutoCAD"; }
    std::string Path() override { return pfad; }
    long DocumentsCount() override { return dokumente; }
    std::shared_ptr<AcadDokument> ActiveDocument() override {
        if (dokumente == 0) throw AcadFehler("Kein Dokument", 91);
        return dokument;
    }
    std::string SupportPath() override {
        supportGelesen = true;
        return supportPfad;
    }
    void MenuGroupsLoad(const std::string& datei) override {
        log->eintraege.push_back("MenuGroups.Load:" + datei);
    }

    AcadEreignisEmpfaenger empfaenger;
    bool EreignisseAbonnieren(AcadEreignisEmpfaenger e) override {
        empfaenger = std::move(e);
        return true;
    }
    void EreignisseAbbestellen() override { empfaenger = nullptr; }
    // The host raising an event; a receiver may unsubscribe while it runs.
    void ausloesen(AcadEreignis e, const std::string& datei = {}) {
        if (auto f = empfaenger) f(e, datei);
    }
};

class FakeAutomation : public AcadAutomation {
  public:
    std::shared_ptr<FakeAnwendung> laufend;  // null: no host running
    std::shared_ptr<FakeAnwendung> neu;      // what CreateObject gives; null: fails
    int erzeugt = 0;

    std::shared_ptr<AcadAnwendung> laufendesObjekt(const std::string& progId) override {
        if (progId != "AutoCAD.Application" || !laufend)
            throw AcadFehler("ActiveX-Komponente kann kein Objekt erstellen.", 429);
        return laufend;
    }
    std::shared_ptr<AcadAnwendung> neuesObjekt(const std::string& progId) override {
        ++erzeugt;
        if (progId != "AutoCAD.Application" || !neu)
            throw AcadFehler("ActiveX-Komponente kann kein Objekt erstellen.", 429);
        return neu;
    }
};

}  // namespace tessara::test
