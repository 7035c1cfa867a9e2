#pragma once
// The code table "txtPrefix.txt" that ships with the program: 42875 distinct
// 3-character codes, one a line. The table names Folder directories and ends
// every block number, so each code must be a valid directory and file name.
#include <string>
#include <vector>

namespace tessara {

constexpr int kCodeTabelleLaenge = 42875;

// The codes in table order: first "000" .. "999", so that the first thousand
// slots and Folders carry their own number, then the remaining codes over
// 0-9 and A-Z in ascending order, leaving out the device names Windows
// reserves ("AUX", "CON", "NUL", "PRN"), which cannot name a directory.
std::vector<std::string> fctCodeTabelleErzeugen();
// The file's content: every code followed by CR LF.
std::string fctCodeTabelleText();

}  // namespace tessara
