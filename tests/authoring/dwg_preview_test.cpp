// The preview picture a drawing carries, read and decoded, and refused with
// a reason when the header or the image section is damaged (the file reader
// is run by the cache's and tessara-cli's tests). The drawings are the fuzz
// seeds and copies of them damaged here, laid out by hand by
// the published rules: the version, the section's address 0x40 at 0x0D, and
// there the start sentinel, the section size (0x50), the entry count (0x54),
// the entries of 9 bytes from 0x55 (type, address, size), the pictures and
// the end sentinel. bmp2004.dwg: header data, then a 6 x 4 DIB of 8 bits
// whose two-entry colour table makes index 1 amber, at 0x6F. png2013.dwg:
// header data, a 3 x 2 DIB like it, a metafile, a 5 x 3 sky-blue PNG.
// ohne2018.dwg: no entries.
#include "authoring/dwg_preview.h"

#include <gtest/gtest.h>

#include <functional>

#include "authoring/slide.h"
#include "ui/dwg_preview_image.h"

using namespace tessara;
using Bytes = std::vector<std::uint8_t>;

static Bytes saat(const char* name, std::function<void(Bytes&)> aendern = {}) {
    Bytes d =
        slide::readFileBytes(std::string(TESSARA_SOURCE_DIR) + "/fuzz/seeds/dwg_preview/" + name);
    if (aendern) aendern(d);
    return d;
}
static void le32(Bytes& d, std::size_t at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) d.at(at + i) = static_cast<std::uint8_t>(v >> (8 * i));
}

TEST(DwgVorschau, ReadsThePngOrElseTheBmpPicture) {
    const QRgb amber = qRgb(255, 200, 0), himmel = qRgb(0, 200, 255);
    const std::tuple<Bytes, QSize, QRgb> faelle[] = {
        // an empty size: no picture
        {saat("png2013.dwg"), {5, 3}, himmel},
        {saat("png2013.dwg", [](Bytes& d) { d[0x70] = 3; }), {3, 2}, amber},  // PNG made WMF
        {saat("png2013.dwg", [](Bytes& d) { d[0x5E] = d[0x70] = 3; }), {}, 0},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x0D, 0); }), {}, 0},
    };
    for (const auto& [d, groesse, farbe] : faelle) {
        const auto v = dwg::fctVorschauLesen(d);
        ASSERT_EQ(v.has_value(), !groesse.isEmpty()) << d.size();
        if (!v) continue;
        if (v->art == dwg::Vorschau::Art::Bmp) {  // the file header: size, and pixels (index 1)
            const auto wert = [&](int at) {
                return *reinterpret_cast<const quint32*>(&v->bild[at]);
            };
            EXPECT_EQ(wert(2), v->bild.size());
            EXPECT_EQ(v->bild.at(wert(10)), 1);
        }
        const QImage bild = ui::fctZeichnungVorschauDecodieren(*v);
        EXPECT_EQ(bild.size(), groesse);
        EXPECT_EQ(bild.pixel(groesse.width() - 1, groesse.height() - 1), farbe);
    }
}

TEST(DwgVorschau, DamagedDrawingsAreRefusedWithAReason) {
    const std::pair<Bytes, const char*> faelle[] = {
        {{}, "not a drawing of a known version (\"\")"},
        {saat("bmp2004.dwg", [](Bytes& d) { d[5] = '9'; }), "known version (\"AC1019\")"},
        {saat("bmp2004.dwg", [](Bytes& d) { d.resize(0x0F); }), "inside the file header"},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x0D, 1u << 20); }), "section's start"},
        {saat("bmp2004.dwg", [](Bytes& d) { d[0x40] ^= 0xFF; }), "no image section at 64"},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x50, 1u << 30); }), "section's end"},
        {saat("bmp2004.dwg", [](Bytes& d) { d[d.size() - 20] ^= 1; }), "without its end sentinel"},
        {saat("bmp2004.dwg", [](Bytes& d) { d[0x54] = 200; }), "too small for its entries"},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x63, 5000); }), "entry 1 outside"},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x5F, 0x50); }), "entry 1 outside"},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x6F, 99); }), "header of 99 bytes"},
        {saat("bmp2004.dwg", [](Bytes& d) { le32(d, 0x6F + 32, 1000); }), "more than 256"},
        {saat("png2013.dwg", [](Bytes& d) { d[0xC5 + 1] = 'Q'; }), "without the PNG signature"},
    };
    for (const auto& [d, grund] : faelle)
        EXPECT_THROW(
            try { dwg::fctVorschauLesen(d); } catch (const dwg::DwgError& e) {
                EXPECT_NE(std::string(e.what()).find(grund), std::string::npos) << e.what();
                throw;
            },
            dwg::DwgError)
            << grund;
}
