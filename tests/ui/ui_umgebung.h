#pragma once
// What the window tests share: one QApplication for the whole run, a program
// state over the memory registry with its error log in a fresh directory,
// and screenshots for a person to look at.
#include <gtest/gtest.h>

#include <QString>
#include <QWidget>
#include <filesystem>

#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "startup/programm_zustand.h"

namespace tessara::uitest {

class FensterTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    // The error log's text (empty when nothing went wrong).
    std::string protokoll() const;

    std::filesystem::path wurzel;
    platform::MemoryRegistry registry;
    platform::Platform plattform;
    ProgrammZustand z;
};

// build/screenshots/<name>.png; fails the test when it cannot be written.
void bildschirmfoto(QWidget* fenster, const QString& name);

// A file of the shared test data in the program's path form.
std::string testdatenProgrammPfad(const std::string& relativ);

}  // namespace tessara::uitest
