#pragma once
// File changes that belong together (the files of a Block moved to another
// slot, sent to the trash, renamed with a Variant) either all happen or none
// does: every change made is remembered with its way back, and a failure
// takes them back, the last first. A catalogue row that goes with the files
// is written only after every file change worked, and the changes are kept
// only once that row is written.
#include <functional>
#include <string>
#include <vector>

#include "startup/programm_zustand.h"

namespace tessara {

class DateiUmzug {
  public:
    explicit DateiUmzug(ProgrammZustand& z) : z_(z) {}
    // Whatever was not kept goes back.
    ~DateiUmzug() { rueckgaengig(); }
    DateiUmzug(const DateiUmzug&) = delete;
    DateiUmzug& operator=(const DateiUmzug&) = delete;

    // Moves one file (program paths), making the target's directory when it
    // is missing. False when it could not: the target exists, the file is
    // locked, a directory is write-protected.
    bool verschieben(const std::string& von, const std::string& nach);
    // Copies one file the same way; a target that exists is refused rather
    // than overwritten, so a take-back never deletes a file it did not make.
    bool kopieren(const std::string& von, const std::string& nach);
    // Writes the bytes as the file's new content; the old content (or the
    // file's absence) is what a take-back restores.
    bool schreiben(const std::string& datei, const std::string& bytes);

    // Takes every change back, the last first; true when all came back.
    bool rueckgaengig();
    // The changes stand; nothing is taken back any more.
    void behalten() { zurueck_.clear(); }

  private:
    ProgrammZustand& z_;
    std::vector<std::function<bool()>> zurueck_;
};

// The whole content of a file (program path); false when it cannot be read.
bool fctDateiLesen(const std::string& datei, std::string& bytes);

}  // namespace tessara
