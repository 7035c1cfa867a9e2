// The boxes speak the user's language: their buttons are captioned from the
// caption file, not with Qt's English.
#include "ui/qt_benutzer.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include "captions/beschriftung.h"
#include "platform/environment.h"
#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

class QtBenutzerTest : public FensterTest {};

TEST_F(QtBenutzerTest, KnoepfeTragenDieBeschriftungDerSprache) {
    z.strAppPfad = platform::programPath(std::string(TESSARA_BINARY_DIR) + "/app");
    QtBenutzer benutzer;
    benutzer.setBeschriftung([this](const std::string& k) { return fctBeschriftung(z, k); });
    for (const auto& [sprache, erwartet] :
         {std::pair<std::string, QStringList>{"deutsch", {"Ja", "Nein", "Abbrechen"}},
          {"englisch", {"Yes", "No", "Cancel"}}}) {
        z.strSprache = sprache;
        QStringList gesehen;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            for (auto knopf : {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel})
                gesehen << box->button(knopf)->text();
            box->button(QMessageBox::No)->click();
        });
        EXPECT_EQ(benutzer.meldung("Speichern?", "Frage", Symbol::Frage, Knoepfe::JaNeinAbbrechen),
                  Antwort::Nein);
        EXPECT_EQ(gesehen, erwartet) << sprache;
    }
    EXPECT_EQ(protokoll(), "");
}

}  // namespace
}  // namespace tessara::uitest
