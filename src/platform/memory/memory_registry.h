#pragma once
// A registry held in memory, for tests and for runs that must not touch the
// real one.
#include "platform/registry.h"
#include "platform/registry_data.h"

namespace platform {

class MemoryRegistry : public Registry {
  public:
    bool keyExists(Hive hive, const std::string& key) override;
    bool createKey(Hive hive, const std::string& key) override;
    std::optional<std::string> readString(Hive hive, const std::string& key,
                                          const std::string& name) override;
    std::optional<std::uint32_t> readDword(Hive hive, const std::string& key,
                                           const std::string& name) override;
    bool writeString(Hive hive, const std::string& key, const std::string& name,
                     const std::string& value) override;
    bool writeDword(Hive hive, const std::string& key, const std::string& name,
                    std::uint32_t value) override;
    bool deleteValue(Hive hive, const std::string& key, const std::string& name) override;
    std::vector<std::string> valueNames(Hive hive, const std::string& key) override;

    // Makes every later write and key creation fail, as a registry without
    // write access does (a locked-down local machine hive, say).
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
    RegistryData& data() { return data_; }
    const RegistryData& data() const { return data_; }

  private:
    RegistryData data_;
    bool readOnly_ = false;
};

}  // namespace platform
