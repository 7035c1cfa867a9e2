#include "platform/win32/win32_registry.h"

#include <windows.h>

#include <cstring>

#include "platform/registry_data.h"
#include "platform/win32/utf16.h"

namespace platform {
namespace {

using win32::toUtf8;
using win32::toWide;

HKEY root(Hive hive) { return hive == Hive::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

// The machine-wide entries were written by the earlier 32-bit program and its
// installer, so they live in the 32-bit view of the local machine's hive
// (Wow6432Node on 64-bit Windows); the current user's "Software" is shared.
constexpr REGSAM kView = KEY_WOW64_32KEY;

class Key {
  public:
    Key(Hive hive, const std::string& path, REGSAM access, bool create) {
        std::wstring w = toWide(RegistryData::normalizeKey(path));
        access |= kView;
        LONG r = create ? RegCreateKeyExW(root(hive), w.c_str(), 0, nullptr, 0, access, nullptr,
                                          &h_, nullptr)
                        : RegOpenKeyExW(root(hive), w.c_str(), 0, access, &h_);
        if (r != ERROR_SUCCESS) h_ = nullptr;
    }
    ~Key() {
        if (h_) RegCloseKey(h_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    explicit operator bool() const { return h_ != nullptr; }
    HKEY get() const { return h_; }

  private:
    HKEY h_ = nullptr;
};

// Reads a value's type and raw bytes.
bool query(Hive hive, const std::string& key, const std::string& name, DWORD& type,
           std::wstring& data) {
    Key k(hive, key, KEY_QUERY_VALUE, false);
    if (!k) return false;
    std::wstring wname = toWide(name);
    DWORD size = 0;
    if (RegQueryValueExW(k.get(), wname.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
        return false;
    data.assign(size / sizeof(wchar_t) + 1, L'\0');
    DWORD got = static_cast<DWORD>(data.size() * sizeof(wchar_t));
    if (RegQueryValueExW(k.get(), wname.c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(data.data()), &got) != ERROR_SUCCESS)
        return false;
    if (type == REG_DWORD) {
        data.resize(2);  // the four bytes as two UTF-16 units
        return got == 4;
    }
    data.resize(got / sizeof(wchar_t));
    return true;
}

}  // namespace

bool Win32Registry::keyExists(Hive hive, const std::string& key) {
    return static_cast<bool>(Key(hive, key, KEY_READ, false));
}

bool Win32Registry::createKey(Hive hive, const std::string& key) {
    return static_cast<bool>(Key(hive, key, KEY_WRITE, true));
}

std::optional<std::string> Win32Registry::readString(Hive hive, const std::string& key,
                                                     const std::string& name) {
    DWORD type = 0;
    std::wstring data;
    if (!query(hive, key, name, type, data) || (type != REG_SZ && type != REG_EXPAND_SZ))
        return std::nullopt;
    // The stored terminator (one or several) is not part of the value.
    while (!data.empty() && data.back() == L'\0') data.pop_back();
    return toUtf8(data);
}

std::optional<std::uint32_t> Win32Registry::readDword(Hive hive, const std::string& key,
                                                      const std::string& name) {
    DWORD type = 0;
    std::wstring data;
    if (!query(hive, key, name, type, data) || type != REG_DWORD) return std::nullopt;
    std::uint32_t v = 0;
    std::memcpy(&v, data.data(), 4);
    return v;
}

bool Win32Registry::writeString(Hive hive, const std::string& key, const std::string& name,
                                const std::string& value) {
    if (RegistryData::normalizeKey(key).empty()) return false;
    Key k(hive, key, KEY_SET_VALUE, true);
    if (!k) return false;
    std::wstring w = toWide(value);
    return RegSetValueExW(k.get(), toWide(name).c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(w.c_str()),
                          static_cast<DWORD>((w.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

bool Win32Registry::writeDword(Hive hive, const std::string& key, const std::string& name,
                               std::uint32_t value) {
    if (RegistryData::normalizeKey(key).empty()) return false;
    Key k(hive, key, KEY_SET_VALUE, true);
    if (!k) return false;
    DWORD v = value;
    return RegSetValueExW(k.get(), toWide(name).c_str(), 0, REG_DWORD,
                          reinterpret_cast<const BYTE*>(&v), sizeof v) == ERROR_SUCCESS;
}

bool Win32Registry::deleteValue(Hive hive, const std::string& key, const std::string& name) {
    Key k(hive, key, KEY_SET_VALUE, false);
    return k && RegDeleteValueW(k.get(), toWide(name).c_str()) == ERROR_SUCCESS;
}

std::vector<std::string> Win32Registry::valueNames(Hive hive, const std::string& key) {
    std::vector<std::string> names;
    Key k(hive, key, KEY_QUERY_VALUE, false);
    if (!k) return names;
    DWORD count = 0, longest = 0;
    if (RegQueryInfoKeyW(k.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count,
                         &longest, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        return names;
    std::wstring buf(longest + 2, L'\0');
    for (DWORD i = 0; i < count; ++i) {
        DWORD len = static_cast<DWORD>(buf.size());
        if (RegEnumValueW(k.get(), i, buf.data(), &len, nullptr, nullptr, nullptr, nullptr) ==
            ERROR_SUCCESS)
            names.push_back(toUtf8(std::wstring_view(buf.data(), len)));
    }
    return names;
}

bool Win32Registry::deleteKeyTree(Hive hive, const std::string& key) {
    std::string k = RegistryData::normalizeKey(key);
    if (k.empty()) return false;  // never a whole hive
    {
        Key tree(hive, k, DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE, false);
        if (!tree || RegDeleteTreeW(tree.get(), nullptr) != ERROR_SUCCESS) return false;
    }
    return RegDeleteKeyExW(root(hive), toWide(k).c_str(), kView, 0) == ERROR_SUCCESS;
}

}  // namespace platform
