#pragma once
// The part of AutoCAD's object model that the CAD bridge uses. On Windows a
// COM implementation over "AutoCAD.Application" fills it; tests use fakes.
// Every call may fail: implementations throw AcadFehler carrying the error
// description and number, which the callers trap and read as VB's Err does.
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace tessara {

class AcadFehler : public std::runtime_error {
  public:
    AcadFehler(const std::string& beschreibung, long nummer)
        : std::runtime_error(beschreibung), nummer_(nummer) {}
    long nummer() const { return nummer_; }

  private:
    long nummer_;
};

// One layer of a drawing as the layer manager keeps it: the colour is the
// AutoCAD colour index (1 to 255).
struct typLayer {
    std::string strName;
    int intFarbe = 7;
    std::string strLinientyp = "Continuous";
    bool booEin = true;
    bool booGefroren = false;
    bool booGesperrt = false;
    bool operator==(const typLayer&) const = default;
};

class AcadDokument {
  public:
    virtual ~AcadDokument() = default;
    virtual std::string GetVariable(const std::string& name) = 0;
    virtual void SetVariable(const std::string& name, const std::string& wert) = 0;
    virtual void SendCommand(const std::string& text) = 0;
    virtual std::string WindowTitle() = 0;
    virtual std::uintptr_t hwnd() = 0;
    virtual void Close() = 0;

    // SelectionSets: a new set of that name (an old one of the name goes
    // first) whose objects the user picks on screen; answers how many.
    virtual long AuswahlAmBildschirm(const std::string& satzName) = 0;
    // Makes the objects of the named set invisible (Visible = False).
    virtual void AuswahlAusblenden(const std::string& satzName) = 0;
    // Utility.GetString and Utility.GetPoint: a question on the host's
    // command line; a point answers "x,y,z".
    virtual std::string GetString(const std::string& prompt) = 0;
    virtual std::string GetPoint(const std::string& prompt) = 0;
    // The Layers collection, item by item. A document that cannot tell
    // answers as a host without the collection would (error 438).
    virtual std::vector<typLayer> Layers() {
        throw AcadFehler("Objekt unterstützt diese Eigenschaft oder Methode nicht.", 438);
    }
};

// The host's application and document events the program follows:
// EndOpen, a document's Activate and BeginClose, and BeginQuit.
enum class AcadEreignis {
    DokumentGeoeffnet,
    DokumentAktiviert,
    DokumentGeschlossen,
    AnwendungEnde
};
// The drawing the event is about, by its file name when the host names it.
using AcadEreignisEmpfaenger = std::function<void(AcadEreignis, const std::string& strDatei)>;

class AcadAnwendung {
  public:
    virtual ~AcadAnwendung() = default;
    virtual std::string Version() = 0;
    virtual std::string Caption() = 0;
    virtual std::string Name() = 0;
    virtual std::string Path() = 0;
    virtual long DocumentsCount() = 0;
    // The active drawing; throws when there is none.
    virtual std::shared_ptr<AcadDokument> ActiveDocument() = 0;
    // Preferences.Files.SupportPath
    virtual std::string SupportPath() = 0;
    // MenuGroups.Load: adds the menu file's group to the host's menus. A
    // host object without menus answers as VB does for a missing member.
    virtual void MenuGroupsLoad(const std::string& strMenueDatei) {
        throw AcadFehler(
            "Objekt unterstützt diese Eigenschaft oder Methode nicht: " + strMenueDatei, 438);
    }
    // Subscribes to the host's events; the receiver is called on the
    // program's user-interface thread. False when this host offers none.
    // One subscription at a time: a new one replaces the old.
    virtual bool EreignisseAbonnieren(AcadEreignisEmpfaenger empfaenger) {
        (void)empfaenger;
        return false;
    }
    virtual void EreignisseAbbestellen() {}
};

// GetObject / CreateObject for a program identifier such as "AutoCAD.Application".
class AcadAutomation {
  public:
    virtual ~AcadAutomation() = default;
    // The running object registered under the identifier; throws when none runs.
    virtual std::shared_ptr<AcadAnwendung> laufendesObjekt(const std::string& progId) = 0;
    // A new instance; throws when it cannot be created.
    virtual std::shared_ptr<AcadAnwendung> neuesObjekt(const std::string& progId) = 0;
};

}  // namespace tessara
