#pragma once
// AutoCAD's object model over the platform's late-bound automation: on
// Windows the IDispatch of "AutoCAD.Application", in tests a fake object.
#include <memory>

#include "cad/acad_automation.h"
#include "platform/automation.h"

namespace tessara {

// GetObject/CreateObject through the platform; every failure of the host
// becomes an AcadFehler with the host's description and number.
class AcadUeberAutomation : public AcadAutomation {
  public:
    explicit AcadUeberAutomation(platform::AutomationHost& host) : host_(host) {}
    std::shared_ptr<AcadAnwendung> laufendesObjekt(const std::string& progId) override;
    std::shared_ptr<AcadAnwendung> neuesObjekt(const std::string& progId) override;

  private:
    platform::AutomationHost& host_;
};

// The application object of a connected host.
std::shared_ptr<AcadAnwendung> fctAcadAnwendung(std::shared_ptr<platform::AutomationObject> app);

// A variant as the program reads it into a string: numbers in decimal text,
// booleans as -1 and 0, a point as its coordinates joined by ",".
std::string fctVariantText(const platform::Variant& v);

}  // namespace tessara
