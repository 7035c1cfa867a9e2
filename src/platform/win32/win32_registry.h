#pragma once
// The Windows registry. Values of type REG_SZ and REG_EXPAND_SZ read as
// strings, REG_DWORD as 32-bit numbers; everything else reads as missing.
// Key paths are passed as the program composes them; separators at the ends
// and doubled ones are dropped first, as the other backends do.
#include "platform/registry.h"

namespace platform {

class Win32Registry : public Registry {
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

    // Removes a key with everything below it (tests clean up with it).
    bool deleteKeyTree(Hive hive, const std::string& key);
};

}  // namespace platform
