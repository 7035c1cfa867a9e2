#pragma once
// What the window tests share: one QApplication for the whole run, a program
// state over the memory registry with its error log in a fresh directory,
// and screenshots for a person to look at.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QString>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <memory>

#include "cad/cad_verbindung.h"
#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"
#include "ui/frm_blockverwaltung.h"

namespace tessara::uitest {

class FensterTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    // The error log's text (empty when nothing went wrong).
    std::string protokoll() const;
    // A child of a window by object name; fails the test when missing.
    template <class T>
    T* kind(QObject* in, const QString& name) {
        auto* w = in->template findChild<T*>(name);
        EXPECT_NE(w, nullptr) << name.toStdString();
        return w;
    }
    // Types into a box as an input method would (QTest types only ASCII keys).
    void eintippen(QWidget* in, const char* feld, const QString& text) {
        auto* e = kind<QLineEdit>(in, QString::fromUtf8(feld));
        e->clear();
        e->insert(text);
    }
    void klicken(QWidget* in, const char* knopf) {
        QTest::mouseClick(kind<QAbstractButton>(in, QString::fromUtf8(knopf)), Qt::LeftButton);
    }
    // Runs `bedienen` on the modal window of type T the next call opens.
    template <class T, class Bedienen>
    static void sobaldOffen(Bedienen bedienen) {
        QTimer::singleShot(0, [bedienen] {
            auto* f = qobject_cast<T*>(QApplication::activeModalWidget());
            ASSERT_NE(f, nullptr);
            bedienen(f);
        });
    }

    std::filesystem::path wurzel;
    platform::MemoryRegistry registry;
    platform::Platform plattform;
    ProgrammZustand z;
};

// The main window on a copy of the demo library (made once a run by
// tessara-cli), with a Settings file naming it and the box about the CAD
// connection switched off.
class HauptfensterTest : public FensterTest {
  protected:
    void SetUp() override;
    void TearDown() override;
    // Stores the setup values, makes the window and runs its load until its
    // first Page is painted.
    FrmBlockverwaltung& hauptfensterLaden(const typSetupWerte& w = {});

    std::string bib;  // the library directory, program form
    SkriptBenutzer benutzer;
    platform::MemoryDesktop desktop;
    CadVerbindung cad;
    std::unique_ptr<FrmBlockverwaltung> fenster;
};

// build/screenshots/<name>.png; fails the test when it cannot be written.
void bildschirmfoto(QWidget* fenster, const QString& name);

// A file of the shared test data in the program's path form.
std::string testdatenProgrammPfad(const std::string& relativ);

}  // namespace tessara::uitest
