#include "platform/posix/file_registry.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace platform {
namespace {

// Files beyond this are not a registry the program wrote; reading them whole
// would only cost memory.
constexpr std::uintmax_t kMaxFileSize = 16u << 20;

class FileLock {
  public:
    explicit FileLock(const std::string& path) {
        fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd_ >= 0) {
            while (::flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
            }
        }
    }
    ~FileLock() {
        if (fd_ >= 0) ::close(fd_);  // closing releases the lock
    }
    bool held() const { return fd_ >= 0; }

  private:
    int fd_ = -1;
};

bool writeAll(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

FileRegistry::FileRegistry(std::string filePath) : path_(std::move(filePath)) {}

std::string FileRegistry::defaultPath() {
    std::string base;
    if (const char* x = std::getenv("XDG_CONFIG_HOME"); x && *x) {
        base = x;
    } else {
        const char* home = std::getenv("HOME");
        base = std::string(home && *home ? home : "/tmp") + "/.config";
    }
    return base + "/tessara/registry.reg";
}

RegistryData FileRegistry::load() const {
    std::error_code ec;
    auto size = std::filesystem::file_size(path_, ec);
    if (ec || size > kMaxFileSize) return {};
    std::ifstream in(path_, std::ios::binary);
    if (!in) return {};
    std::ostringstream text;
    text << in.rdbuf();
    return RegistryData::parse(text.str());
}

template <typename Change>
bool FileRegistry::update(Change change) {
    std::error_code ec;
    auto dir = std::filesystem::path(path_).parent_path();
    if (!dir.empty()) std::filesystem::create_directories(dir, ec);
    FileLock lock(path_ + ".lock");
    if (!lock.held()) return false;

    RegistryData data = load();
    bool changed = false;
    if (!change(data, changed)) return false;
    if (!changed) return true;

    std::string tmp = path_ + ".tmp." + std::to_string(::getpid());
    int fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) return false;
    bool ok = writeAll(fd, data.serialize()) && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok) ok = ::rename(tmp.c_str(), path_.c_str()) == 0;
    if (!ok) ::unlink(tmp.c_str());
    return ok;
}

bool FileRegistry::keyExists(Hive hive, const std::string& key) {
    return load().keyExists(hive, key);
}

bool FileRegistry::createKey(Hive hive, const std::string& key) {
    return update([&](RegistryData& d, bool& changed) {
        if (d.keyExists(hive, key)) return true;
        changed = d.createKey(hive, key);
        return changed;
    });
}

std::optional<std::string> FileRegistry::readString(Hive hive, const std::string& key,
                                                    const std::string& name) {
    RegistryData d = load();
    const RegistryValue* v = d.find(hive, key, name);
    if (!v || v->type != RegistryValue::Type::String) return std::nullopt;
    return v->text;
}

std::optional<std::uint32_t> FileRegistry::readDword(Hive hive, const std::string& key,
                                                     const std::string& name) {
    RegistryData d = load();
    const RegistryValue* v = d.find(hive, key, name);
    if (!v || v->type != RegistryValue::Type::Dword) return std::nullopt;
    return v->dword;
}

bool FileRegistry::writeString(Hive hive, const std::string& key, const std::string& name,
                               const std::string& value) {
    return update([&](RegistryData& d, bool& changed) {
        changed = d.put(hive, key, RegistryValue{name, RegistryValue::Type::String, value, 0});
        return changed;
    });
}

bool FileRegistry::writeDword(Hive hive, const std::string& key, const std::string& name,
                              std::uint32_t value) {
    return update([&](RegistryData& d, bool& changed) {
        changed = d.put(hive, key, RegistryValue{name, RegistryValue::Type::Dword, {}, value});
        return changed;
    });
}

bool FileRegistry::deleteValue(Hive hive, const std::string& key, const std::string& name) {
    return update([&](RegistryData& d, bool& changed) {
        changed = d.erase(hive, key, name);
        return changed;
    });
}

std::vector<std::string> FileRegistry::valueNames(Hive hive, const std::string& key) {
    return load().valueNames(hive, key);
}

}  // namespace platform
