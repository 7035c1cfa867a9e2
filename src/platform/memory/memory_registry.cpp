#include "platform/memory/memory_registry.h"

namespace platform {

bool MemoryRegistry::keyExists(Hive hive, const std::string& key) {
    return data_.keyExists(hive, key);
}

bool MemoryRegistry::createKey(Hive hive, const std::string& key) {
    if (readOnly_) return data_.keyExists(hive, key);
    return data_.createKey(hive, key);
}

std::optional<std::string> MemoryRegistry::readString(Hive hive, const std::string& key,
                                                      const std::string& name) {
    const RegistryValue* v = data_.find(hive, key, name);
    if (!v || v->type != RegistryValue::Type::String) return std::nullopt;
    return v->text;
}

std::optional<std::uint32_t> MemoryRegistry::readDword(Hive hive, const std::string& key,
                                                       const std::string& name) {
    const RegistryValue* v = data_.find(hive, key, name);
    if (!v || v->type != RegistryValue::Type::Dword) return std::nullopt;
    return v->dword;
}

bool MemoryRegistry::writeString(Hive hive, const std::string& key, const std::string& name,
                                 const std::string& value) {
    if (readOnly_) return false;
    return data_.put(hive, key, RegistryValue{name, RegistryValue::Type::String, value, 0});
}

bool MemoryRegistry::writeDword(Hive hive, const std::string& key, const std::string& name,
                                std::uint32_t value) {
    if (readOnly_) return false;
    return data_.put(hive, key, RegistryValue{name, RegistryValue::Type::Dword, {}, value});
}

bool MemoryRegistry::deleteValue(Hive hive, const std::string& key, const std::string& name) {
    if (readOnly_) return false;
    return data_.erase(hive, key, name);
}

std::vector<std::string> MemoryRegistry::valueNames(Hive hive, const std::string& key) {
    return data_.valueNames(hive, key);
}

}  // namespace platform
