#pragma once
// AutoCAD slide libraries (.slb): a 32-byte identification, a directory of
// 36-byte entries (NUL-terminated name in 32 bytes, 4-byte address low byte
// first) ended by an entry with an empty name, then the slides, each a
// complete slide file. Also the picture notation of the navigation model,
// library & "(" & entry & ")".
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "authoring/slide.h"

namespace tessara::slide {

constexpr std::size_t kMaxEntryName = 31;

struct LibraryEntry {
    std::string name;
    std::uint32_t address = 0;  // offset of the slide in the file
    std::uint32_t size = 0;     // bytes up to the next slide or the end of the file
};

class SlideLibrary {
  public:
    // Reads the directory; every address must point at a slide inside the
    // data. Throws SlideError otherwise. Slides are decoded on demand.
    static SlideLibrary read(std::vector<std::uint8_t> data);
    static SlideLibrary readFile(const std::string& nativePath);

    const std::vector<LibraryEntry>& entries() const { return entries_; }
    // Lookup ignores case, as AutoCAD does ("0a" finds "0A").
    const LibraryEntry* find(const std::string& name) const;
    // The bytes of one slide, and the slide decoded. Throw SlideError for a
    // name that is not in the directory.
    std::span<const std::uint8_t> slideBytes(const std::string& name) const;
    Slide slide(const std::string& name) const;

  private:
    std::vector<std::uint8_t> data_;
    std::vector<LibraryEntry> entries_;
};

// The bytes of a library holding the given slides in the given order. Names
// are stored as given; each must be 1..31 characters, and no two may differ
// only in case. Every slide must itself be readable. Throws SlideError.
struct LibraryInput {
    std::string name;
    std::vector<std::uint8_t> slideBytes;
};
std::vector<std::uint8_t> writeSlideLibrary(const std::vector<LibraryInput>& slides);

// A picture name as the navigation model hands it to a slot: either a slide
// file, or a library followed by the entry in parentheses,
// "c:\lib\000\00000000.slb(0A)".
struct Bildname {
    std::string datei;    // the file, in the form it was given
    std::string eintrag;  // the entry, empty for a single slide file
};
Bildname fctBildnameZerlegen(const std::string& bildname);

// Loads the slide a picture name refers to; the file part goes through
// platform::nativePath. Throws SlideError with the picture name in the text.
Slide fctDiaLaden(const std::string& bildname);

}  // namespace tessara::slide
