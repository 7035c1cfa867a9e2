#pragma once
// What a shell command prints on standard output, and how it ended: the
// command-line tools and outside readers (mdb-export, sqlite3) the tests run.
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace tessara::test {

// Its standard output; *code is its exit status, -1 when it did not run or
// did not end by itself.
inline std::string befehlsAusgabe(const std::string& befehl, int* code = nullptr) {
    std::string text;
    FILE* p = ::popen(befehl.c_str(), "r");
    if (code) *code = -1;
    if (!p) return text;
    char puffer[4096];
    for (std::size_t n; (n = std::fread(puffer, 1, sizeof puffer, p)) > 0;) text.append(puffer, n);
    const int status = ::pclose(p);
    if (code) *code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return text;
}

}  // namespace tessara::test
