// tessara-cli render-slide and slide-info.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <QImage>
#include <cstdio>

#include "slide_test_daten.h"
#include "temp_verzeichnis.h"

using slidetest::testdaten;

namespace {
int lauf(const std::string& argumente, std::string* ausgabe = nullptr) {
    std::string befehl = std::string("'") + TESSARA_CLI + "' " + argumente + " 2>&1";
    FILE* p = popen(befehl.c_str(), "r");
    if (!p) return -1;
    char puffer[512];
    std::string text;
    while (fgets(puffer, sizeof puffer, p)) text += puffer;
    int status = pclose(p);
    if (ausgabe) *ausgabe = text;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
}  // namespace

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

TEST_F(SlideCli, MakeDemoLibraryListsTheBlocks) {
    std::string text;
    ASSERT_EQ(lauf("make-demo-library '" + (wurzel / "demo").string() + "'", &text), 0);
    EXPECT_NE(text.find("000;Armaturen und Flansche;0000000;Absperrventil;000\\00000000.slb;1"),
              std::string::npos)
        << text;
    EXPECT_TRUE(std::filesystem::is_regular_file(wurzel / "demo/000/00000000.slb"));
}
