#include "authoring/slide_library.h"

#include <algorithm>
#include <cstring>

#include "platform/environment.h"

namespace tessara::slide {
namespace {

constexpr char kLibId[] = "AutoCAD Slide Library 1.0\r\n\x1a";  // then 4 NULs: 32 bytes
constexpr std::size_t kLibIdLen = 28;
constexpr std::size_t kHeader = 32;
constexpr std::size_t kEntry = 36;

std::string upper(std::string s) {
    for (char& c : s)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return s;
}

}  // namespace

SlideLibrary SlideLibrary::read(std::vector<std::uint8_t> data) {
    if (data.size() < kHeader || std::memcmp(data.data(), kLibId, kLibIdLen) != 0)
        throw SlideError("not an AutoCAD slide library (identification missing)");
    SlideLibrary lib;
    std::size_t pos = kHeader;
    while (true) {
        if (data.size() - pos < kEntry) {
            // A directory whose closing entry is missing is cut off, unless
            // the data simply ends with the last full entry's slide; both are
            // unreadable as a library.
            throw SlideError("slide library directory truncated at byte " + std::to_string(pos));
        }
        if (data[pos] == 0) break;
        const char* name = reinterpret_cast<const char*>(&data[pos]);
        std::size_t len = 0;
        while (len < 32 && name[len] != 0) ++len;
        if (len == 32)
            throw SlideError("slide library entry name not terminated at byte " +
                             std::to_string(pos));
        LibraryEntry e;
        e.name.assign(name, len);
        e.address = std::uint32_t(data[pos + 32]) | std::uint32_t(data[pos + 33]) << 8 |
                    std::uint32_t(data[pos + 34]) << 16 | std::uint32_t(data[pos + 35]) << 24;
        if (e.address < pos + kEntry || e.address >= data.size())
            throw SlideError("slide library entry \"" + e.name + "\" points outside the file");
        lib.entries_.push_back(std::move(e));
        pos += kEntry;
    }
    const std::size_t directoryEnd = pos + kEntry;
    // Sizes: up to the next slide in address order, the last one to the end.
    std::vector<std::uint32_t> starts;
    for (auto& e : lib.entries_) {
        if (e.address < directoryEnd)
            throw SlideError("slide library entry \"" + e.name + "\" points into the directory");
        starts.push_back(e.address);
    }
    std::sort(starts.begin(), starts.end());
    for (auto& e : lib.entries_) {
        auto next = std::upper_bound(starts.begin(), starts.end(), e.address);
        std::uint32_t end = next == starts.end() ? static_cast<std::uint32_t>(data.size()) : *next;
        e.size = end - e.address;
    }
    lib.data_ = std::move(data);
    return lib;
}

SlideLibrary SlideLibrary::readFile(const std::string& nativePath) {
    try {
        return read(readFileBytes(nativePath));
    } catch (const SlideError& e) {
        std::string what = e.what();
        if (what.rfind(nativePath, 0) == 0) throw;
        throw SlideError(nativePath + ": " + what);
    }
}

const LibraryEntry* SlideLibrary::find(const std::string& name) const {
    std::string key = upper(name);
    for (const auto& e : entries_)
        if (upper(e.name) == key) return &e;
    return nullptr;
}

std::span<const std::uint8_t> SlideLibrary::slideBytes(const std::string& name) const {
    const LibraryEntry* e = find(name);
    if (!e) throw SlideError("slide \"" + name + "\" not in the library");
    return {data_.data() + e->address, e->size};
}

Slide SlideLibrary::slide(const std::string& name) const {
    auto bytes = slideBytes(name);
    try {
        return readSlide(bytes);
    } catch (const SlideError& e) {
        throw SlideError("slide \"" + name + "\" in the library: " + e.what());
    }
}

std::vector<std::uint8_t> writeSlideLibrary(const std::vector<LibraryInput>& slides) {
    std::vector<std::string> seen;
    for (const auto& s : slides) {
        if (s.name.empty() || s.name.size() > kMaxEntryName)
            throw SlideError("slide name \"" + s.name + "\" must have 1 to 31 characters");
        if (s.name.find('\0') != std::string::npos)
            throw SlideError("slide name contains a NUL character");
        std::string key = upper(s.name);
        if (std::find(seen.begin(), seen.end(), key) != seen.end())
            throw SlideError("slide name \"" + s.name + "\" occurs twice");
        seen.push_back(key);
        try {
            (void)readSlide(s.slideBytes);
        } catch (const SlideError& e) {
            throw SlideError("slide \"" + s.name + "\": " + e.what());
        }
    }
    std::vector<std::uint8_t> out(kHeader, 0);
    std::memcpy(out.data(), kLibId, kLibIdLen);
    std::size_t address = kHeader + (slides.size() + 1) * kEntry;
    for (const auto& s : slides) {
        if (address > 0xFFFFFFFFu) throw SlideError("slide library too large");
        std::uint8_t entry[kEntry] = {};
        std::memcpy(entry, s.name.data(), s.name.size());
        auto a = static_cast<std::uint32_t>(address);
        entry[32] = a & 0xFF;
        entry[33] = (a >> 8) & 0xFF;
        entry[34] = (a >> 16) & 0xFF;
        entry[35] = (a >> 24) & 0xFF;
        out.insert(out.end(), entry, entry + kEntry);
        address += s.slideBytes.size();
    }
    out.insert(out.end(), kEntry, 0);
    for (const auto& s : slides) out.insert(out.end(), s.slideBytes.begin(), s.slideBytes.end());
    return out;
}

Bildname fctBildnameZerlegen(const std::string& bildname) {
    if (!bildname.empty() && bildname.back() == ')') {
        auto open = bildname.rfind('(');
        if (open != std::string::npos && open > 0)
            return {bildname.substr(0, open),
                    bildname.substr(open + 1, bildname.size() - open - 2)};
    }
    return {bildname, {}};
}

Slide fctDiaLaden(const std::string& bildname) {
    Bildname b = fctBildnameZerlegen(bildname);
    std::string native = platform::nativePath(b.datei);
    try {
        if (b.eintrag.empty()) return readSlide(readFileBytes(native));
        return SlideLibrary::read(readFileBytes(native)).slide(b.eintrag);
    } catch (const SlideError& e) {
        throw SlideError(bildname + ": " + e.what());
    }
}

}  // namespace tessara::slide
