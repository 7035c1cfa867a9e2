#pragma once
// The bundle of operating-system services handed to the program. The entry
// point owns the backends; tests assemble memory backends.
namespace platform {

class Registry;
class Environment;
class Desktop;
class Clock;
class InstanceChannel;

struct Platform {
    Registry* registry = nullptr;
    Environment* environment = nullptr;
    Desktop* desktop = nullptr;
    Clock* clock = nullptr;
    InstanceChannel* instance = nullptr;
};

}  // namespace platform
