#pragma once
// Table cases kept in data files beside the tests rather than in the code:
// one case a line, fields separated by "|", blank lines and lines starting
// with "#" skipped. Inside a field \r \n \t \0 \\ \| and \xHH stand for the
// bytes the file cannot hold as they are.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace tessara::test {

// The cases of tests/<relativ>; a missing or empty file fails the test.
inline std::vector<std::vector<std::string>> tabelle(const std::string& relativ) {
    std::ifstream in(std::string(TESSARA_SOURCE_DIR) + "/tests/" + relativ, std::ios::binary);
    std::vector<std::vector<std::string>> faelle;
    for (std::string zeile; std::getline(in, zeile);) {
        if (zeile.empty() || zeile[0] == '#') continue;
        std::vector<std::string> felder(1);
        for (std::size_t i = 0; i < zeile.size(); ++i) {
            const char c = zeile[i];
            if (c == '|') {
                felder.emplace_back();
            } else if (c != '\\' || i + 1 == zeile.size()) {
                felder.back() += c;
            } else if (const char e = zeile[++i]; e == 'x') {
                felder.back() += static_cast<char>(std::stoi(zeile.substr(i + 1, 2), nullptr, 16));
                i += 2;
            } else {
                felder.back() += e == 'r'   ? '\r'
                                 : e == 'n' ? '\n'
                                 : e == 't' ? '\t'
                                 : e == '0' ? '\0'
                                            : e;
            }
        }
        faelle.push_back(std::move(felder));
    }
    EXPECT_FALSE(faelle.empty()) << "no cases in tests/" << relativ;
    return faelle;
}

}  // namespace tessara::test
