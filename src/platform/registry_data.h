#pragma once
// The registry's content as a value: keys under the two hives, each with its
// string and 32-bit values in the order they were first written. Names
// compare case-insensitively and keep the spelling of their first writer,
// as the Windows registry does. The memory registry holds one; the file
// registry loads one, changes it and writes it back in .reg-like text.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/case_fold.h"
#include "platform/registry.h"

namespace platform {

struct RegistryValue {
    enum class Type { String, Dword };
    std::string name;  // "" is the key's default value ("@" in the file)
    Type type = Type::String;
    std::string text;
    std::uint32_t dword = 0;
};

class RegistryData {
  public:
    bool keyExists(Hive hive, std::string_view key) const;
    // Creates the key and its parents. An empty path is the hive itself,
    // which always exists; values are never stored there.
    bool createKey(Hive hive, std::string_view key);
    const RegistryValue* find(Hive hive, std::string_view key, std::string_view name) const;
    // Creates the key as needed and replaces a value of either type.
    bool put(Hive hive, std::string_view key, RegistryValue value);
    bool erase(Hive hive, std::string_view key, std::string_view name);
    std::vector<std::string> valueNames(Hive hive, std::string_view key) const;
    // Full key paths ("HKEY_CURRENT_USER\Software\…") in sorted order.
    std::vector<std::string> keyPaths() const;

    // Text form: "[HKEY_CURRENT_USER\Software\Vendel]", then one line per
    // value, "\"name\"=\"text\"" or "\"name\"=dword:0000002a". Reading skips
    // every line it cannot understand, so a damaged file yields what is
    // still legible and junk yields nothing.
    std::string serialize() const;
    static RegistryData parse(std::string_view text);

    static std::string hiveName(Hive hive);
    // "Software\\Vendel\\" → "Software\Vendel": separators at the ends and
    // doubled ones are dropped, as the program sometimes composes them so.
    static std::string normalizeKey(std::string_view key);

  private:
    struct Key {
        std::string path;  // full path with the hive, spelling of the creator
        std::vector<RegistryValue> values;
    };
    Key* findKey(Hive hive, std::string_view key);
    const Key* findKey(Hive hive, std::string_view key) const;
    Key& makeKey(const std::string& fullPath);

    std::map<std::string, Key, CaseInsensitiveLess> keys_;
};

}  // namespace platform
