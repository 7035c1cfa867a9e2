// The preview picture a drawing carries, on drawings made by the published
// layout (dwg_test_data.h): read from bytes and from a file alike, decoded,
// and refused with a reason when the header or image section is damaged.
#include "authoring/dwg_preview.h"

#include <gtest/gtest.h>

#include <functional>

#include "dwg_test_data.h"
#include "temp_verzeichnis.h"
#include "ui/dwg_preview_image.h"

using namespace tessara;
using dwgtest::Bytes;
using dwgtest::zeichnung;

class DwgVorschau : public slidetest::TempVerzeichnis {
  protected:
    std::string alsDatei(const Bytes& d) {
        return datei("z.dwg", std::string(d.begin(), d.end())).string();
    }
};

TEST_F(DwgVorschau, ReadsTheBmpOrPngPictureAndPrefersPng) {
    const QRgb rot = qRgb(200, 0, 0), gruen = qRgb(0, 180, 0), blau = qRgb(0, 0, 255);
    Bytes ohneAbschnitt(0x40);
    std::copy_n("AC1018", 6, ohneAbschnitt.begin());
    struct Fall {
        const char* name;
        Bytes d;
        bool bild;
        dwg::Vorschau::Art art = dwg::Vorschau::Art::Bmp;
        QSize groesse{};
        QRgb farbe = 0;
    };
    const Fall faelle[] = {
        {"BMP, 2004",
         zeichnung({{1, Bytes(8, 0)}, {2, dwgtest::dib(7, 3, rot)}}),
         true,
         dwg::Vorschau::Art::Bmp,
         {7, 3},
         rot},
        {"PNG, 2013",
         zeichnung({{6, dwgtest::png(5, 4, gruen)}}, "AC1027"),
         true,
         dwg::Vorschau::Art::Png,
         {5, 4},
         gruen},
        {"both, 2018",
         zeichnung({{2, dwgtest::dib(3, 3, rot)}, {3, Bytes(10, 1)}, {6, dwgtest::png(6, 2, blau)}},
                   "AC1032"),
         true,
         dwg::Vorschau::Art::Png,
         {6, 2},
         blau},
        {"metafile only, 2007", zeichnung({{1, Bytes(8, 0)}, {3, Bytes(10, 1)}}, "AC1021"), false},
        {"no entries, 2010", zeichnung({}, "AC1024"), false},
        {"no image section", ohneAbschnitt, false},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.name);
        const auto v = dwg::fctVorschauLesen(f.d);
        const auto ausDatei = dwg::fctVorschauLesenDatei(alsDatei(f.d));
        ASSERT_EQ(v.has_value(), f.bild);
        ASSERT_EQ(ausDatei.has_value(), f.bild);
        if (!f.bild) continue;
        EXPECT_EQ(ausDatei->bild, v->bild);
        EXPECT_EQ(v->art, f.art);
        EXPECT_EQ(v->version, std::string(f.d.begin(), f.d.begin() + 6));
        if (f.art == dwg::Vorschau::Art::Bmp) {  // the file header: size, and pixels (index 5)
            const auto le32 = [&](int at) {
                return *reinterpret_cast<const quint32*>(&v->bild[at]);
            };
            EXPECT_EQ(le32(2), v->bild.size());
            EXPECT_EQ(v->bild.at(le32(10)), 5);
        }
        const QImage bild = ui::fctZeichnungVorschauDecodieren(*v);
        EXPECT_EQ(bild.size(), f.groesse);
        EXPECT_EQ(bild.pixel(0, 0), f.farbe);
        EXPECT_EQ(bild.pixel(f.groesse.width() - 1, f.groesse.height() - 1), f.farbe);
    }
}

TEST_F(DwgVorschau, DamagedDrawingsAreRefusedWithAReason) {
    // The BMP drawing's section: sentinel at 0x40, size 0x50, count 0x54,
    // the entry's type 0x55, address 0x56, size 0x5A, the DIB from 0x5E.
    const Bytes gut = zeichnung({{2, dwgtest::dib(4, 4, qRgb(1, 2, 3))}});
    const auto mit = [&](std::function<void(Bytes&)> aendern) {
        Bytes d = gut;
        aendern(d);
        return d;
    };
    const struct {
        Bytes d;
        const char* grund;
    } faelle[] = {
        {{}, "not a drawing of a known version (\"\")"},
        {mit([](Bytes& d) { d[5] = '9'; }), "known version (\"AC1019\")"},
        {mit([](Bytes& d) { d.resize(0x0F); }), "inside the file header"},
        {mit([](Bytes& d) { dwgtest::le32(d, 0x0D, 1u << 20); }),
         "inside the image section's start"},
        {mit([](Bytes& d) { d[0x40] ^= 0xFF; }), "no image section at 64"},
        {mit([](Bytes& d) { dwgtest::le32(d, 0x50, 1u << 30); }), "inside the image section's end"},
        {mit([](Bytes& d) { d[d.size() - 40] ^= 1; }), "without its end sentinel"},
        {mit([](Bytes& d) { d.resize(0x80); }), "inside the image section's end"},
        {mit([](Bytes& d) { d[0x54] = 200; }), "too small for its entries"},
        {mit([](Bytes& d) { dwgtest::le32(d, 0x5A, 5000); }), "entry 0 outside"},
        {mit([](Bytes& d) { dwgtest::le32(d, 0x56, 0x50); }), "entry 0 outside"},
        {mit([](Bytes& d) { dwgtest::le32(d, 0x5E, 99); }), "header of 99 bytes"},
        {mit([](Bytes& d) { dwgtest::le32(d, 0x5E + 32, 1000); }), "more than 256"},
        {zeichnung({{6, Bytes(20, 'x')}}), "without the PNG signature"},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.grund);
        const std::string pfad = alsDatei(f.d);
        for (int ausDatei = 0; ausDatei < 2; ++ausDatei) {
            try {
                ausDatei ? dwg::fctVorschauLesenDatei(pfad) : dwg::fctVorschauLesen(f.d);
                ADD_FAILURE() << "read";
            } catch (const dwg::DwgError& e) {
                EXPECT_NE(std::string(e.what()).find(f.grund), std::string::npos) << e.what();
                if (ausDatei) {
                    EXPECT_EQ(std::string(e.what()).rfind(pfad, 0), 0u) << e.what();
                }
            }
        }
    }
    EXPECT_THROW(dwg::fctVorschauLesenDatei(alsDatei({}) + ".fehlt"), dwg::DwgError);
}
