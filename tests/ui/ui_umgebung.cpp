#include "ui_umgebung.h"

#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QSignalSpy>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>

#include "frisches_verzeichnis.h"
#include "platform/environment.h"
#include "startup/einstellungen.h"
#include "ui/frm_blockverwaltung.h"

namespace tessara::uitest {

namespace {

// The application lives from before the first test to after the last; the
// test list is written without it, so listing needs no display.
class QtUmgebung : public ::testing::Environment {
  public:
    void SetUp() override { app_ = std::make_unique<QApplication>(argc_, argv_); }
    void TearDown() override { app_.reset(); }

  private:
    int argc_ = 1;
    char name_[8] = "test_ui";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> app_;
};

const auto* const umgebung = ::testing::AddGlobalTestEnvironment(new QtUmgebung);

}  // namespace

void FensterTest::SetUp() {
    wurzel = tessara::test::frischesVerzeichnis("ui");
    const std::string basis = platform::programPath(wurzel.string()) + "\\";
    z.strCTemp = basis;
    z.strErrorDatei = basis + "fehler.txt";
    plattform.registry = &registry;
    z.plattform = &plattform;
}

void FensterTest::TearDown() {
    std::error_code ec;
    std::filesystem::remove_all(wurzel, ec);
}

std::string FensterTest::protokoll() const {
    return tessara::test::dateiInhalt(wurzel / "fehler.txt");
}

namespace {

const std::filesystem::path& demoVorlage() {
    static const std::filesystem::path vorlage = [] {
        auto p = std::filesystem::temp_directory_path() /
                 ("tessara_ui_demo_" + std::to_string(::getpid()));
        std::filesystem::remove_all(p);
        const std::string befehl =
            std::string(TESSARA_CLI) + " make-demo-library " + p.string() + " >/dev/null";
        EXPECT_EQ(std::system(befehl.c_str()), 0);
        return p;
    }();
    return vorlage;
}

}  // namespace

void HauptfensterTest::SetUp() {
    FensterTest::SetUp();
    std::filesystem::copy(demoVorlage(), wurzel / "bib", std::filesystem::copy_options::recursive);
    bib = platform::programPath((wurzel / "bib").string());
    z.strAppPfad = platform::programPath(std::string(TESSARA_BINARY_DIR) + "/app");
    z.strIniDatei = z.strCTemp + "Tessara9.0.ini";
    z.strSprache = "deutsch";
    z.benutzer = &benutzer;
    plattform.desktop = &desktop;
    IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "DbVerzeichnis0", bib);
    IniSetValue(z, z.strIniDatei, "MsgboxAnzeigen", "AcadVerbindung", "1");
}

void HauptfensterTest::TearDown() {
    fenster.reset();
    FensterTest::TearDown();
}

FrmBlockverwaltung& HauptfensterTest::hauptfensterLaden(const typSetupWerte& w) {
    SetupInRegistrierdatenbankSpeichern(z, w);
    fenster = std::make_unique<FrmBlockverwaltung>(z, cad);
    QSignalSpy gemalt(fenster.get(), &FrmBlockverwaltung::seiteGemalt);
    fenster->laden();
    EXPECT_TRUE(gemalt.count() > 0 || gemalt.wait(10000));
    return *fenster;
}

void bildschirmfoto(QWidget* fenster, const QString& name) {
    const QString verzeichnis = QStringLiteral(TESSARA_BINARY_DIR) + "/screenshots";
    ASSERT_TRUE(QDir().mkpath(verzeichnis));
    const QString datei = verzeichnis + "/" + name + ".png";
    ASSERT_TRUE(fenster->grab().save(datei)) << datei.toStdString();
}

std::string testdatenProgrammPfad(const std::string& relativ) {
    return platform::programPath(std::string(TESSARA_TESTDATA) + "/" + relativ);
}

}  // namespace tessara::uitest
