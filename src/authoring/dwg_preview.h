#pragma once
// The preview picture a drawing carries, read without a CAD host. From
// Release 13 on, the file header holds at 0x0D the address of an image
// section framed by two 16-byte sentinels; the section lists its pictures
// (header data, a DIB, a WMF, or since 2013 a PNG) by type, file address and
// size. The reader hands back the picture as a complete image file (a DIB
// gets the 14-byte BMP file header it is stored without), so that any image
// decoder can take it; decoding is the windows' business.
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace tessara::dwg {

// Thrown for anything that is not a readable drawing header or image
// section: unknown version, truncated data, a missing sentinel, picture
// entries that point outside the section, a picture that is no BMP or PNG.
class DwgError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Vorschau {
    enum class Art { Bmp, Png };
    Art art = Art::Bmp;
    std::string version;             // "AC1018" and so on
    std::vector<std::uint8_t> bild;  // a complete .bmp or .png file
};

// The preview of a drawing given as its bytes; none when the drawing
// carries no picture (no image section, or one with only header data or a
// metafile). A PNG is preferred over a DIB when both are present.
std::optional<Vorschau> fctVorschauLesen(std::span<const std::uint8_t> datei);
// The same from a file, reading only the header and the image section.
std::optional<Vorschau> fctVorschauLesenDatei(const std::string& nativePath);

}  // namespace tessara::dwg
