#pragma once
// The registry of a system without one: one text file per user, by default
// $XDG_CONFIG_HOME/tessara/registry.reg (~/.config/tessara/registry.reg),
// holding both hives with the same key paths and value types as on Windows.
// Every change re-reads the file under an exclusive lock, applies itself and
// replaces the file through a temporary file and a rename, so concurrent
// processes do not lose each other's values and a crash never leaves a
// half-written file. A damaged file reads as far as it is legible.
#include <string>

#include "platform/registry.h"
#include "platform/registry_data.h"

namespace platform {

class FileRegistry : public Registry {
  public:
    // `filePath` is a native path; its directory is created on first write.
    explicit FileRegistry(std::string filePath = defaultPath());

    static std::string defaultPath();
    const std::string& filePath() const { return path_; }

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

  private:
    RegistryData load() const;
    // Runs `change` on the file's current content under the lock and stores
    // the result when it reports a change.
    template <typename Change>
    bool update(Change change);

    std::string path_;
};

}  // namespace platform
