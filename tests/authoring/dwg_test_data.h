#pragma once
// Drawings made for the tests by the published layout of the file header's
// image address and the image section: a version string, the section's
// address at 0x0D, and at that address the start sentinel, the section's
// size, the picture entries (type, address, size), the pictures and the end
// sentinel. Only what the preview reader looks at is filled in.
#include <QBuffer>
#include <QImage>
#include <cstdint>
#include <string>
#include <vector>

namespace dwgtest {

using Bytes = std::vector<std::uint8_t>;
struct Bild {
    std::uint8_t typ;  // 1 header data, 2 BMP, 3 WMF, 6 PNG
    Bytes daten;
};
constexpr std::uint32_t kAbschnitt = 0x40;  // where zeichnung() puts the image section

inline void le32(Bytes& b, std::size_t at, std::uint32_t v) {
    if (b.size() < at + 4) b.resize(at + 4);
    for (int i = 0; i < 4; ++i) b[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
}

inline Bytes zeichnung(const std::vector<Bild>& bilder, const std::string& version = "AC1018") {
    Bytes d(version.begin(), version.end());
    le32(d, 0x0D, kAbschnitt);
    d.resize(kAbschnitt);
    d.insert(d.end(), {0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28, 0x9D, 0x57, 0xCA, 0x3F, 0x9D,
                       0x44, 0x10, 0x2B});
    const std::size_t groesse = d.size();
    d.resize(d.size() + 4);
    d.push_back(static_cast<std::uint8_t>(bilder.size()));
    std::size_t eintrag = d.size(), adresse = eintrag + 9 * bilder.size();
    d.resize(adresse);
    for (const auto& b : bilder) {
        d[eintrag] = b.typ;
        le32(d, eintrag + 1, static_cast<std::uint32_t>(adresse));
        le32(d, eintrag + 5, static_cast<std::uint32_t>(b.daten.size()));
        d.insert(d.end(), b.daten.begin(), b.daten.end());
        eintrag += 9;
        adresse += b.daten.size();
    }
    le32(d, groesse, static_cast<std::uint32_t>(d.size() - groesse - 4));
    d.insert(d.end(), {0xE0, 0xDA, 0x92, 0xF8, 0x2B, 0xC9, 0xD7, 0xD7, 0x62, 0xA8, 0x35, 0xC0, 0x62,
                       0xBB, 0xEF, 0xD4});
    d.resize(d.size() + 32);  // the drawing's other sections follow
    return d;
}

// An 8-bit DIB without file header, as the drawing stores it: w x h pixels
// of colour index 5, the colour table giving index 5 the colour farbe.
inline Bytes dib(int w, int h, QRgb farbe) {
    const int zeile = (w + 3) / 4 * 4;
    Bytes b;
    le32(b, 0, 40);
    le32(b, 4, static_cast<std::uint32_t>(w));
    le32(b, 8, static_cast<std::uint32_t>(h));
    b.resize(40);
    b[12] = 1;  // planes
    b[14] = 8;  // bits per pixel
    le32(b, 20, static_cast<std::uint32_t>(zeile * h));
    Bytes tabelle(4 * 256);
    tabelle[4 * 5] = static_cast<std::uint8_t>(qBlue(farbe));
    tabelle[4 * 5 + 1] = static_cast<std::uint8_t>(qGreen(farbe));
    tabelle[4 * 5 + 2] = static_cast<std::uint8_t>(qRed(farbe));
    b.insert(b.end(), tabelle.begin(), tabelle.end());
    b.resize(b.size() + static_cast<std::size_t>(zeile * h), 5);
    return b;
}

inline Bytes png(int w, int h, QRgb farbe) {
    QImage bild(w, h, QImage::Format_RGB32);
    bild.fill(farbe);
    QByteArray a;
    QBuffer puffer(&a);
    puffer.open(QIODevice::WriteOnly);
    bild.save(&puffer, "PNG");
    return Bytes(a.begin(), a.end());
}

}  // namespace dwgtest
