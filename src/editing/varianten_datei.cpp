#include "editing/varianten_datei.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "authoring/datei_layout.h"
#include "startup/zeichensatz.h"

namespace tessara {

// A record, little-endian throughout:
//   bytes   0 ..  47  Variant name, Windows-1252, NUL-padded
//   bytes  48 ..  95  Variant file name, Windows-1252, NUL-padded
//   bytes  96 ..  97  int16 View, 0 .. 4
//   bytes  98 ..  99  int16 number of Insertion points set, 0 .. 6
//   bytes 100 .. 243  points A .. F, each X, Y, Z as IEEE float64
//   bytes 244 .. 247  reserved, zero
namespace {

constexpr std::size_t kTextLaenge = 48;
constexpr std::size_t kAnsicht = 96, kAnzahl = 98, kPunkte = 100;

void text(std::string& satz, std::size_t an, const std::string& utf8) {
    const std::string ansi = fctUtf8NachAnsi(utf8);
    std::memcpy(satz.data() + an, ansi.data(), std::min(ansi.size(), kTextLaenge));
}

std::string text(std::string_view satz, std::size_t an) {
    std::string_view t = satz.substr(an, kTextLaenge);
    t = t.substr(0, t.find('\0'));
    return fctAnsiNachUtf8(t);
}

template <class T>
void zahl(std::string& satz, std::size_t an, T wert) {
    auto bits =
        std::bit_cast<std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint16_t>>(wert);
    for (std::size_t i = 0; i < sizeof(T); ++i) satz[an + i] = static_cast<char>(bits >> (8 * i));
}

template <class T>
T zahl(std::string_view satz, std::size_t an) {
    std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint16_t> bits = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        bits |= static_cast<decltype(bits)>(static_cast<unsigned char>(satz[an + i])) << (8 * i);
    return std::bit_cast<T>(bits);
}

}  // namespace

std::string fctVariantenSatzDatei(const std::string& ordnerNr, const std::string& blockNr) {
    return fctVariantenVerzeichnis(ordnerNr) + blockNr + ".dat";
}

std::string fctVariantenSaetzeBytes(const std::vector<typVariantenSatz>& saetze) {
    std::string bytes;
    for (const auto& s : saetze) {
        std::string satz(kVariantenSatzLaenge, '\0');
        text(satz, 0, s.name);
        text(satz, kTextLaenge, s.datei);
        zahl<std::int16_t>(satz, kAnsicht, static_cast<std::int16_t>(s.ansicht));
        std::int16_t n = 0;
        for (int i = 0; i < 6; ++i)
            if (s.punkte[i].gesetzt()) n = static_cast<std::int16_t>(i + 1);
        zahl<std::int16_t>(satz, kAnzahl, n);
        for (int i = 0; i < n; ++i) {
            const auto& p = s.punkte[i];
            int a = 0;
            for (const std::string* t : {&p.x, &p.y, &p.z})
                zahl<double>(satz, kPunkte + (i * 3 + a++) * 8, fctKoordinate(*t).value_or(0.0));
        }
        bytes += satz;
    }
    return bytes;
}

std::optional<std::vector<typVariantenSatz>> fctVariantenSaetzeLesen(std::string_view bytes) {
    if (bytes.size() % kVariantenSatzLaenge != 0) return std::nullopt;
    std::vector<typVariantenSatz> saetze;
    for (std::size_t an = 0; an < bytes.size(); an += kVariantenSatzLaenge) {
        const std::string_view satz = bytes.substr(an, kVariantenSatzLaenge);
        typVariantenSatz s;
        s.name = text(satz, 0);
        s.datei = text(satz, kTextLaenge);
        s.ansicht = zahl<std::int16_t>(satz, kAnsicht);
        const int n = zahl<std::int16_t>(satz, kAnzahl);
        if (s.ansicht < 0 || s.ansicht > 4 || n < 0 || n > 6) return std::nullopt;
        for (int i = 0; i < n; ++i) {
            auto& p = s.punkte[i];
            int a = 0;
            for (std::string* t : {&p.x, &p.y, &p.z})
                *t = fctKoordinateText(zahl<double>(satz, kPunkte + (i * 3 + a++) * 8));
        }
        saetze.push_back(std::move(s));
    }
    return saetze;
}

}  // namespace tessara
