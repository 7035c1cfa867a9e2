#include "platform/memory/fake_automation.h"

namespace platform {
namespace {

[[noreturn]] void noSuchMember() {
    throw AutomationError("Object doesn't support this property or method", 438);
}

[[noreturn]] void cannotCreate() {
    throw AutomationError("ActiveX component can't create object", 429);
}

}  // namespace

Variant FakeAutomationObject::get(const std::string& property, const std::vector<Variant>& args) {
    log.push_back("get " + property);
    if (auto m = methods.find(property); m != methods.end()) return m->second(args);
    if (!args.empty()) noSuchMember();
    auto p = properties.find(property);
    if (p == properties.end()) noSuchMember();
    return p->second;
}

void FakeAutomationObject::put(const std::string& property, const Variant& value) {
    log.push_back("put " + property);
    properties[property] = value;
}

Variant FakeAutomationObject::call(const std::string& method, const std::vector<Variant>& args) {
    log.push_back("call " + method);
    auto m = methods.find(method);
    if (m == methods.end()) noSuchMember();
    return m->second(args);
}

std::shared_ptr<AutomationObject> FakeAutomationHost::getActiveObject(const std::string& progId) {
    auto it = running.find(progId);
    if (it == running.end() || !it->second) cannotCreate();
    return it->second;
}

std::shared_ptr<AutomationObject> FakeAutomationHost::createObject(const std::string& progId) {
    auto it = creatable.find(progId);
    if (it == creatable.end()) cannotCreate();
    auto obj = it->second();
    if (!obj) cannotCreate();
    return obj;
}

}  // namespace platform
