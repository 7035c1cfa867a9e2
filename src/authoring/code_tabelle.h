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

// The block number of absolute slot k: the Folder code, the decimal text of
// k / 42874 (so "0" for every slot of a real library), and the slot's code,
// entry k of the table. The divisor is part of the format of every library.
inline constexpr long kBlocknummerTeiler = 42874;
std::string fctBlocknummer(const std::string& strOrdnerNr, long k, const std::string& strCode);
// The same into a string that is already there, so that filling the numbers
// of thousands of slots allocates nothing.
void subBlocknummerSchreiben(std::string& ziel, const std::string& strOrdnerNr, long k,
                             const std::string& strCode);

}  // namespace tessara
