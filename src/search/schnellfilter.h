#pragma once
// The quick filter of the main window: the Blocks of the library whose block
// number, View names or attributes M0..M9 contain a typed text, compared
// without regard to case with umlauts and ß folded as Jet folds them.
//
// The rows are read once per library into a snapshot that a worker scans
// without touching the database; a scan looks at a cancel flag between short
// stretches of rows and hands its hits over in small batches, so that a new
// keystroke never waits for an old scan.
#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/connection.h"

namespace tessara {

struct typSchnellZeile {
    std::string Block;
    long OrdnerID = 0;
    std::string SlideLib;
    std::array<std::string, 5> BlkName;
    std::string M0;
    // Block number, View names and M0..M9, folded, each behind a separator
    // that no typed text holds, so a hit never spans two columns.
    std::string gefaltet;
};

using SchnellSchnappschuss = std::vector<typSchnellZeile>;

// Reads the Block records of the block table, ordered by block number.
// Throws the database's error (the caller runs it under its handler).
std::shared_ptr<const SchnellSchnappschuss> fctSchnellSchnappschussLesen(
    db::Connection& con, const std::string& strTabelle);

// The same from the database at strDb (program path) through a connection
// of its own, so that a worker reads while the window's connection goes on
// serving the window. Throws the database's error.
std::shared_ptr<const SchnellSchnappschuss> fctSchnellSchnappschussLesen(
    const std::string& strDb, const std::string& strTabelle);

// The text folded for comparison (UTF-8 of Jet's case folding); control
// characters are dropped, so a typed text never meets a separator.
std::string fctSchnellfilterFalten(std::string_view text);

bool fctSchnellfilterPasst(const typSchnellZeile& zeile, const std::string& strGefaltet);

// Scans the snapshot for the folded text and hands the positions of the hits
// to liefern in ascending order, in batches: the first batch as soon as it
// holds ersterStapel hits, then every stapel hits, and the rest at the end.
// Returns false when abgebrochen turned true before the end (nothing more is
// handed over then). An empty text matches nothing.
bool fctSchnellfilterScannen(const SchnellSchnappschuss& zeilen, const std::string& strGefaltet,
                             const std::atomic<bool>& abgebrochen,
                             const std::function<void(std::vector<std::size_t>)>& liefern,
                             std::size_t ersterStapel = 50, std::size_t stapel = 500);

}  // namespace tessara
