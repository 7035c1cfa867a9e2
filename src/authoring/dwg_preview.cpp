#include "authoring/dwg_preview.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <functional>

#include "platform/files.h"

namespace tessara::dwg {
namespace {

using Bytes = std::vector<std::uint8_t>;
// Reads n bytes at a file address; fewer when the file ends before.
using Leser = std::function<Bytes(std::uint64_t adresse, std::size_t n)>;

constexpr std::array<std::uint8_t, 16> kAnfang = {0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28,
                                                  0x9D, 0x57, 0xCA, 0x3F, 0x9D, 0x44, 0x10, 0x2B};
constexpr std::array<std::uint8_t, 16> kEnde = {0xE0, 0xDA, 0x92, 0xF8, 0x2B, 0xC9, 0xD7, 0xD7,
                                                0x62, 0xA8, 0x35, 0xC0, 0x62, 0xBB, 0xEF, 0xD4};
// Release 13, 14, 2000, 2004, 2007, 2010, 2013, 2018: every version with the
// image address at 0x0D.
constexpr const char* kVersionen[] = {"AC1012", "AC1014", "AC1015", "AC1018",
                                      "AC1021", "AC1024", "AC1027", "AC1032"};
constexpr std::uint8_t kBmp = 2, kPng = 6;
// Far beyond any thumbnail AutoCAD writes; a larger size is a damaged entry.
constexpr std::uint32_t kGroessteBild = 64u << 20;

std::uint32_t le32(const std::uint8_t* p) {
    return std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16 |
           std::uint32_t(p[3]) << 24;
}

void le32Setzen(std::uint8_t* p, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(v >> (8 * i));
}

Bytes genau(const Leser& lesen, std::uint64_t adresse, std::size_t n, const char* was) {
    Bytes b = lesen(adresse, n);
    if (b.size() != n)
        throw DwgError(std::string("file ends inside the ") + was + " at " +
                       std::to_string(adresse));
    return b;
}

// A DIB as stored in the drawing, with the BMP file header in front whose
// pixel offset follows from the DIB's own header and colour table.
Bytes bmpDatei(const Bytes& dib) {
    if (dib.size() < 16) throw DwgError("BMP picture shorter than its header");
    const std::uint32_t kopf = le32(dib.data());
    std::uint32_t farben = 0;
    if (kopf == 12) {  // OS/2 core header: 3-byte colour entries
        const unsigned bits = dib[10] | dib[11] << 8;
        if (bits <= 8) farben = 3u << bits;
    } else if (kopf == 40 || kopf == 52 || kopf == 56 || kopf == 108 || kopf == 124) {
        if (dib.size() < 40) throw DwgError("BMP picture shorter than its header");
        const unsigned bits = dib[14] | dib[15] << 8;
        const std::uint32_t benutzt = le32(dib.data() + 32);
        if (benutzt > 256) throw DwgError("BMP colour table of more than 256 entries");
        if (bits <= 8)
            farben = 4 * (benutzt ? benutzt : 1u << std::min(bits, 8u));
        else
            farben = 4 * benutzt;
        // Bit masks follow the plain 40-byte header (BI_BITFIELDS).
        if (kopf == 40 && le32(dib.data() + 16) == 3) farben += 12;
    } else {
        throw DwgError("BMP picture with a header of " + std::to_string(kopf) + " bytes");
    }
    const std::uint64_t pixel = 14ull + kopf + farben;
    if (pixel > 14ull + dib.size()) throw DwgError("BMP colour table beyond the picture");
    Bytes datei(14 + dib.size());
    datei[0] = 'B';
    datei[1] = 'M';
    le32Setzen(&datei[2], static_cast<std::uint32_t>(datei.size()));
    le32Setzen(&datei[10], static_cast<std::uint32_t>(pixel));
    std::copy(dib.begin(), dib.end(), datei.begin() + 14);
    return datei;
}

std::optional<Vorschau> lesenMit(const Leser& lesen) {
    const Bytes kopf = lesen(0, 0x11);
    Vorschau v;
    v.version.assign(kopf.begin(), kopf.begin() + std::min<std::size_t>(6, kopf.size()));
    if (std::none_of(std::begin(kVersionen), std::end(kVersionen),
                     [&](const char* k) { return v.version == k; })) {
        std::string gezeigt;
        for (char c : v.version) gezeigt += (c >= 0x20 && c < 0x7F) ? c : '?';
        throw DwgError("not a drawing of a known version (\"" + gezeigt + "\")");
    }
    if (kopf.size() < 0x11) throw DwgError("file ends inside the file header");
    const std::uint32_t adresse = le32(&kopf[0x0D]);
    if (adresse == 0) return std::nullopt;

    const Bytes start = genau(lesen, adresse, 21, "image section's start");
    if (!std::equal(kAnfang.begin(), kAnfang.end(), start.begin()))
        throw DwgError("no image section at " + std::to_string(adresse));
    const std::uint32_t groesse = le32(&start[16]);
    const std::uint64_t daten = std::uint64_t(adresse) + 20;  // after the sentinel and size
    const std::uint64_t ende = daten + groesse;
    const Bytes schluss = genau(lesen, ende, 16, "image section's end");
    if (!std::equal(kEnde.begin(), kEnde.end(), schluss.begin()))
        throw DwgError("image section without its end sentinel");

    const unsigned anzahl = start[20];
    if (1ull + 9ull * anzahl > groesse) throw DwgError("image section too small for its entries");
    const Bytes eintraege = genau(lesen, daten + 1, 9u * anzahl, "image section's entries");
    std::optional<std::pair<std::uint8_t, std::uint64_t>> gewaehlt;  // type, entry
    for (unsigned i = 0; i < anzahl; ++i) {
        const std::uint8_t* e = &eintraege[9u * i];
        const std::uint64_t von = le32(e + 1), n = le32(e + 5);
        if (e[0] != kBmp && e[0] != kPng) continue;
        if (von < daten + 1 + 9ull * anzahl || von + n > ende || n == 0 || n > kGroessteBild)
            throw DwgError("picture entry " + std::to_string(i) + " outside the image section");
        if (!gewaehlt || e[0] == kPng) gewaehlt = {{e[0], i}};
    }
    if (!gewaehlt) return std::nullopt;
    const std::uint8_t* e = &eintraege[9u * gewaehlt->second];
    Bytes bild = genau(lesen, le32(e + 1), le32(e + 5), "picture");
    if (gewaehlt->first == kPng) {
        static constexpr std::uint8_t kSignatur[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
        if (bild.size() < 8 ||
            !std::equal(std::begin(kSignatur), std::end(kSignatur), bild.begin()))
            throw DwgError("PNG picture without the PNG signature");
        v.art = Vorschau::Art::Png;
        v.bild = std::move(bild);
    } else {
        v.art = Vorschau::Art::Bmp;
        v.bild = bmpDatei(bild);
    }
    return v;
}

}  // namespace

std::optional<Vorschau> fctVorschauLesen(std::span<const std::uint8_t> datei) {
    return lesenMit([datei](std::uint64_t adresse, std::size_t n) {
        if (adresse >= datei.size()) return Bytes{};
        const auto rest = datei.subspan(static_cast<std::size_t>(adresse));
        return Bytes(rest.begin(), rest.begin() + std::min(n, rest.size()));
    });
}

std::optional<Vorschau> fctVorschauLesenDatei(const std::string& nativePath) {
    std::ifstream f(platform::utf8Path(nativePath), std::ios::binary);
    if (!f) throw DwgError(nativePath + ": cannot be opened");
    try {
        return lesenMit([&f](std::uint64_t adresse, std::size_t n) {
            f.clear();
            f.seekg(static_cast<std::streamoff>(adresse));
            Bytes b(n);
            if (!f) return Bytes{};
            f.read(reinterpret_cast<char*>(b.data()), static_cast<std::streamsize>(n));
            b.resize(static_cast<std::size_t>(f.gcount()));
            return b;
        });
    } catch (const DwgError& e) {
        throw DwgError(nativePath + ": " + e.what());
    }
}

}  // namespace tessara::dwg
