#pragma once
// Copying a directory tree file by file, so that long copies show progress,
// stop on Cancel, and never overwrite: the exchange of Folders and of
// drawing directories copies into places that must not lose what is there.
#include <functional>
#include <string>
#include <vector>

namespace tessara {

// Every file below the directory, as paths relative to it in the program's
// backslash form ("Block\0010000.dwg"), in name order; empty when the
// directory is missing.
std::vector<std::string> fctBaumDateien(const std::string& strVerzeichnis);

struct typBaumUmbenennung {
    // The name a file takes in the copy (its last part only; directories keep theirs).
    std::function<std::string(const std::string& name)> name;
    // May rewrite a file's bytes on the way (rel is its relative path in the source).
    std::function<void(const std::string& rel, std::string& bytes)> inhalt;
};

// Copies the listed files from von to nach, making directories as needed.
// A file that exists at the target is an error (std::runtime_error naming
// it), as is a file that cannot be read or written. weiter is asked after
// each file; false stops the copy and answers false (the files copied so far
// stay, for the caller to remove).
bool fctBaumKopieren(const std::string& von, const std::string& nach,
                     const std::vector<std::string>& dateien, const typBaumUmbenennung& umbenennung,
                     const std::function<bool()>& weiter);

}  // namespace tessara
