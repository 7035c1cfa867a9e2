#pragma once
// Automation objects for tests: properties kept in a table, methods (and
// indexed properties) answered by handlers, every access logged, and a host
// whose running and creatable objects the test registers. Unknown members
// fail with VB's error 438, unknown program identifiers with 429, as late
// binding against a real server does.
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/automation.h"
#include "platform/case_fold.h"

namespace platform {

class FakeAutomationObject : public AutomationObject {
  public:
    using Handler = std::function<Variant(const std::vector<Variant>&)>;

    std::map<std::string, Variant, CaseInsensitiveLess> properties;
    // Methods, and properties read with index arguments ("Item").
    std::map<std::string, Handler, CaseInsensitiveLess> methods;
    // "get Name", "put Name", "call Name", in order.
    std::vector<std::string> log;

    Variant get(const std::string& property, const std::vector<Variant>& args = {}) override;
    void put(const std::string& property, const Variant& value) override;
    Variant call(const std::string& method, const std::vector<Variant>& args = {}) override;
};

class FakeAutomationHost : public AutomationHost {
  public:
    std::map<std::string, std::shared_ptr<AutomationObject>, CaseInsensitiveLess> running;
    // Factories for CreateObject; each call makes what the factory makes.
    std::map<std::string, std::function<std::shared_ptr<AutomationObject>()>, CaseInsensitiveLess>
        creatable;

    std::shared_ptr<AutomationObject> getActiveObject(const std::string& progId) override;
    std::shared_ptr<AutomationObject> createObject(const std::string& progId) override;
};

}  // namespace platform
