#pragma once
// The registry as the program uses it: string and 32-bit values under
// backslash-separated key paths in the current user's or the local machine's
// hive. Key and value names compare case-insensitively, as on Windows.
// Backends: win32/ (the real registry), posix/ (a file under the user's
// configuration directory with the same key paths and value types), memory/.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

enum class Hive { CurrentUser, LocalMachine };

class Registry {
  public:
    virtual ~Registry() = default;

    virtual bool keyExists(Hive hive, const std::string& key) = 0;
    // Creates the key and every missing parent; true when it exists afterwards.
    virtual bool createKey(Hive hive, const std::string& key) = 0;

    // Empty optional when the key or value is missing or of the other type.
    virtual std::optional<std::string> readString(Hive hive, const std::string& key,
                                                  const std::string& name) = 0;
    virtual std::optional<std::uint32_t> readDword(Hive hive, const std::string& key,
                                                   const std::string& name) = 0;

    // Creates the key as needed; false when the value could not be written.
    virtual bool writeString(Hive hive, const std::string& key, const std::string& name,
                             const std::string& value) = 0;
    virtual bool writeDword(Hive hive, const std::string& key, const std::string& name,
                            std::uint32_t value) = 0;

    virtual bool deleteValue(Hive hive, const std::string& key, const std::string& name) = 0;
    virtual std::vector<std::string> valueNames(Hive hive, const std::string& key) = 0;
};

}  // namespace platform
