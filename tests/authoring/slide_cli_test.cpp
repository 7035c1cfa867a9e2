// tessara-cli render-slide and slide-info.
#include <gtest/gtest.h>

#include <QImage>
#include <algorithm>

#include "slide_test_data.h"
#include "tabelle.h"
#include "temp_verzeichnis.h"

using slidetest::lauf;
using slidetest::testdaten;

class SlideCli : public slidetest::TempVerzeichnis {};

TEST_F(SlideCli, RenderSlideFromLibraryAndFile) {
    auto png = (wurzel / "a.png").string();
    ASSERT_EQ(
        lauf("render-slide '" + testdaten("mylib.slb") + "(SLIDE1)' '" + png + "' --size 220x150"),
        0);
    QImage bild(QString::fromStdString(png));
    ASSERT_FALSE(bild.isNull());
    EXPECT_EQ(bild.size(), QSize(220, 150));
    // The example's white diagonal passes the centre.
    bool weiss = false;
    for (int dy = -2; dy <= 2; ++dy)
        for (int dx = -2; dx <= 2; ++dx) weiss |= qGreen(bild.pixel(110 + dx, 75 + dy)) > 200;
    EXPECT_TRUE(weiss);

    auto png2 = (wurzel / "b.png").string();
    ASSERT_EQ(lauf("render-slide '" + testdaten("slide_kz.sld") + "' '" + png2 + "' --light"), 0);
    QImage zwei(QString::fromStdString(png2));
    EXPECT_EQ(zwei.size(), QSize(400, 300));
    EXPECT_EQ(qRed(zwei.pixel(0, 0)), 255);  // light background
}

TEST_F(SlideCli, RenderSlideErrors) {
    auto png = (wurzel / "a.png").string();
    std::string text;
    EXPECT_EQ(lauf("render-slide '" + testdaten("mylib.slb") + "(FEHLT)' '" + png + "'", &text), 1);
    EXPECT_NE(text.find("FEHLT"), std::string::npos);
    EXPECT_EQ(lauf("render-slide '" + testdaten("slide_kz.sld") + "' '" + png + "' --size 0x10"),
              2);
    EXPECT_EQ(lauf("render-slide '" + testdaten("slide_kz.sld") + "' '" + png + "' --size gross"),
              2);
    EXPECT_EQ(lauf("render-slide '" + testdaten("slide_kz.sld") + "'"), 2);
    EXPECT_FALSE(std::filesystem::exists(png));
}

TEST_F(SlideCli, SlideInfoDescribesSlidesAndLibraries) {
    std::string text;
    ASSERT_EQ(lauf("slide-info '" + testdaten("mylib.slb") + "'", &text), 0);
    EXPECT_NE(text.find("SLIDE1 140 "), std::string::npos) << text;
    ASSERT_EQ(lauf("slide-info '" + testdaten("slide_kz.sld") + "'", &text), 0);
    EXPECT_NE(text.find("level 2 little-endian"), std::string::npos) << text;
}

TEST_F(SlideCli, MakeDemoLibraryListsTheBlocksAndCataloguesThem) {
    std::string text;
    const std::string mdb = "'" + (wurzel / "demo/dbTessara.mdb").string() + "' ";
    ASSERT_EQ(lauf("make-demo-library '" + (wurzel / "demo").string() + "'", &text), 0);
    EXPECT_NE(text.find("000;Armaturen und Flansche;0000000;Absperrventil;000\\00000000.slb;1"),
              std::string::npos)
        << text;
    EXPECT_GE(std::count(text.begin(), text.end(), '\n'), 151);
    EXPECT_TRUE(std::filesystem::is_regular_file(wurzel / "demo/000/00000000.slb"));
    EXPECT_TRUE(std::filesystem::is_regular_file(wurzel / "demo/000/Block/00000000.dwg"));

    // The title block's wipeout leaves the background: its lines and text
    // show, not a white box (a fifth of the picture).
    const auto png = (wurzel / "schriftfeld.png").string();
    ASSERT_EQ(lauf("render-slide '" + (wurzel / "demo/003/00300010.slb").string() + "(0A)' '" +
                   png + "'"),
              0);
    QImage bild(QString::fromStdString(png));
    int weiss = 0;
    for (int y = 0; y < bild.height(); ++y)
        for (int x = 0; x < bild.width(); ++x) weiss += qGray(bild.pixel(x, y)) > 200;
    EXPECT_GT(weiss, 500);
    EXPECT_LT(weiss, bild.width() * bild.height() / 20);

    for (const auto& f : tessara::test::tabelle("authoring/golden/demo_bibliothek.txt")) {
        ASSERT_EQ(lauf("sql " + mdb + "\"" + f.at(0) + "\"", &text), 0);
        EXPECT_EQ(text, f.at(1));
    }
}

TEST_F(SlideCli, DwgPreviewWritesThePictureAsPng) {
    const std::string saat = std::string(TESSARA_SOURCE_DIR) + "/fuzz/seeds/dwg_preview/",
                      png = (wurzel / "a.png").string();
    std::string text;
    EXPECT_EQ(lauf("dwg-preview " + saat + "bmp2004.dwg " + png, &text), 0);
    EXPECT_EQ(text, "AC1018 BMP 6x4\n");
    EXPECT_EQ(QImage(QString::fromStdString(png)).pixel(5, 3), qRgb(255, 200, 0));
    EXPECT_EQ(lauf("dwg-preview " + saat + "ohne2018.dwg " + png, &text), 1);
    EXPECT_EQ(text, saat + "ohne2018.dwg: the drawing carries no preview\n");
    EXPECT_EQ(lauf("dwg-preview " + png, &text), 2);
}
