#pragma once
// Late-bound automation, as VB's GetObject/CreateObject and "Object"
// variables give it: properties read and written and methods called by name,
// with a small set of argument and result types. On Windows it runs over
// IDispatch (win32/com_automation.h); tests fake AutomationObject.
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/instance_channel.h"

namespace platform {

class AutomationObject;

struct Variant {
    enum class Type { Empty, Bool, Integer, Double, String, Object, DoubleArray };

    Type type = Type::Empty;
    bool boolean = false;
    std::int32_t integer = 0;  // VT_I2, VT_I4 and the unsigned and byte forms that fit
    double number = 0;         // VT_R4, VT_R8, VT_DATE, VT_CY
    std::string text;          // UTF-8
    std::shared_ptr<AutomationObject> object;
    std::vector<double> doubles;  // a one-dimensional array, e.g. a point (x, y, z)

    Variant() = default;
    static Variant fromBool(bool v) {
        Variant r;
        r.type = Type::Bool;
        r.boolean = v;
        return r;
    }
    static Variant fromInt(std::int32_t v) {
        Variant r;
        r.type = Type::Integer;
        r.integer = v;
        return r;
    }
    static Variant fromDouble(double v) {
        Variant r;
        r.type = Type::Double;
        r.number = v;
        return r;
    }
    static Variant fromString(std::string v) {
        Variant r;
        r.type = Type::String;
        r.text = std::move(v);
        return r;
    }
    static Variant fromObject(std::shared_ptr<AutomationObject> v) {
        Variant r;
        r.type = Type::Object;
        r.object = std::move(v);
        return r;
    }
    static Variant fromDoubles(std::vector<double> v) {
        Variant r;
        r.type = Type::DoubleArray;
        r.doubles = std::move(v);
        return r;
    }
    bool isEmpty() const { return type == Type::Empty; }
};

// A failed call: the server's description and its error number (the
// HRESULT or the server's own code), as VB's Err object carries them.
class AutomationError : public std::runtime_error {
  public:
    AutomationError(const std::string& description, long number)
        : std::runtime_error(description), number_(number) {}
    long number() const { return number_; }

  private:
    long number_;
};

// One subscription to an object's outgoing events. Destroying it ends the
// subscription; after that the handler is never called again, even by a
// source that still holds on to it.
class AutomationEvents {
  public:
    virtual ~AutomationEvents() = default;
};

// An event as the source fires it: the member's number in the event
// interface and its arguments in declaration order.
using AutomationEventHandler = std::function<void(long member, const std::vector<Variant>& args)>;

class AutomationObject {
  public:
    virtual ~AutomationObject() = default;
    // A property, with index arguments if it has any ("Item", key).
    virtual Variant get(const std::string& property, const std::vector<Variant>& args = {}) = 0;
    virtual void put(const std::string& property, const Variant& value) = 0;
    virtual Variant call(const std::string& method, const std::vector<Variant>& args = {}) = 0;
    // Subscribes to the outgoing interface named by its identifier
    // ("{xxxxxxxx-...}"), as VB's WithEvents does. The handler runs on the
    // thread that subscribed, while it waits for messages. An object without
    // that interface throws error 438.
    virtual std::unique_ptr<AutomationEvents> connectEvents(const std::string& interfaceId,
                                                            AutomationEventHandler handler) {
        (void)interfaceId;
        (void)handler;
        throw AutomationError("Object doesn't support events", 438);
    }
};

class AutomationHost {
  public:
    virtual ~AutomationHost() = default;
    // GetObject(, progId): the running instance registered under the name.
    virtual std::shared_ptr<AutomationObject> getActiveObject(const std::string& progId) = 0;
    // CreateObject(progId): a new instance.
    virtual std::shared_ptr<AutomationObject> createObject(const std::string& progId) = 0;
};

// An automation class that this program offers to other programs. Calls
// are not carried out while the caller waits: each is queued with its
// method's name and its arguments as text, and the program takes them
// from its message pump, as it takes those of the instance channel.
class AutomationServer {
  public:
    virtual ~AutomationServer() = default;
    virtual std::vector<InstanceMessage> receive() = 0;
};

}  // namespace platform
