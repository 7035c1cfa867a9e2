// Two workstations on one library file: two processes create 100 Folders and
// 100 Pages each at the same time. Every row must be there exactly once,
// every Folder code distinct, the file sound for our checker and mdbtools.
// Both racers see the same highest key and so want the same code; the loser
// must take the next free one, not fail and not duplicate.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include "befehl.h"
#include "bibliothek.h"
#include "jet/store/file_lock.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/seiten_verwaltung.h"
#include "platform/environment.h"

namespace tessara::orgtest {
namespace {

constexpr int kJeProzess = 100;

using test::befehlsAusgabe;

using Nebenlaeufig = Bibliothek;

TEST_F(Nebenlaeufig, TwoOpenLibrariesCreateFoldersAndPagesAtOnce) {
    // As two workstations with the window open: each process keeps its
    // library open for the whole run.
    modell.reset();
    pid_t kinder[2];
    for (int k = 0; k < 2; ++k) {
        kinder[k] = ::fork();
        ASSERT_GE(kinder[k], 0);
        if (kinder[k] > 0) continue;
        int fehler = 0;
        oeffnen();
        const std::string p = k == 0 ? "A" : "B";
        for (int i = 1; i <= kJeProzess; ++i) {
            fehler += !fctOrdnerNeu(z, *modell, p + std::to_string(i));
            fehler += !fctSeiteNeu(z, *modell, std::to_string(i + 1 + k * kJeProzess),
                                   p + std::to_string(i));
        }
        std::fflush(stdout);
        ::_exit(fehler > 0 ? 1 : 0);
    }
    for (pid_t kind : kinder) {
        int status = 0;
        ASSERT_EQ(::waitpid(kind, &status, 0), kind);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
    // 1 + 2 × kJeProzess Folders "A<i>"/"B<i>" with distinct codes, Pages
    // 1 .. 1 + 2 × kJeProzess of Folder "000", each once, and a file both
    // checkers read.
    const auto ordner = zeilen("SELECT OrdnerNr, Ordnername FROM tblOrdner ORDER BY Nr");
    ASSERT_EQ(ordner.size(), 1u + 2 * kJeProzess);
    std::set<std::string> codes, namen;
    for (const auto& zeile : ordner) {
        codes.insert(zeile.substr(0, 3));
        namen.insert(zeile.substr(4));
    }
    EXPECT_EQ(codes.size(), ordner.size()) << "a code was given twice";
    EXPECT_EQ(namen.size(), ordner.size()) << "a Folder was created twice";
    for (int i = 1; i <= kJeProzess; ++i)
        for (const char* p : {"A", "B"}) EXPECT_TRUE(namen.count(p + std::to_string(i))) << p << i;

    const auto seiten = zeilen("SELECT SeitenNr, SeitenName FROM tblSeiten WHERE NrTblOrdner = 1");
    std::set<std::string> nummern;
    for (const auto& s : seiten) nummern.insert(s.substr(0, s.find('|')));
    EXPECT_EQ(seiten.size(), 1u + 2 * kJeProzess);
    EXPECT_EQ(nummern.size(), seiten.size()) << "a Page number was written twice";

    int rc = -1;
    const std::string pfad = platform::nativePath(db);
    EXPECT_EQ(befehlsAusgabe(std::string(TESSARA_CLI) + " check '" + pfad + "' 2>&1", &rc),
              "no faults found\n");
    EXPECT_EQ(rc, 0);
    for (const char* t : {"tblOrdner", "tblSeiten"}) {
        const std::string csv = befehlsAusgabe("mdb-export '" + pfad + "' " + t, &rc);
        EXPECT_EQ(rc, 0) << t;
        EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 2 + 2 * kJeProzess) << t;
    }
}

// The command line speaks English whatever the program's language: a
// refusal through the error handler comes without its German "Fehler: ",
// and a rename of a Folder that is not there names it.
TEST_F(Nebenlaeufig, CommandLineRefusalsAreInEnglish) {
    const std::string pfad = platform::nativePath(db), cli = TESSARA_CLI;
    jet::os::File datei(pfad, jet::os::OpenMode::ReadWrite);
    ASSERT_TRUE(jet::filelock::lock(datei, jet::filelock::kWriterByte,
                                    jet::filelock::Mode::Exclusive, false));
    int rc = 0;
    EXPECT_EQ(
        befehlsAusgabe("TESSARA_LOCK_WAIT=0 '" + cli + "' folder add '" + pfad + "' Neu 2>&1", &rc),
        "tessara-cli folder add: Could not update; currently locked.\n");
    EXPECT_EQ(befehlsAusgabe("'" + cli + "' folder rename '" + pfad + "' Nix Neu 2>&1"),
              "tessara-cli folder rename: no folder named 'Nix'\n");
    EXPECT_EQ(rc, 1);
}

}  // namespace
}  // namespace tessara::orgtest
