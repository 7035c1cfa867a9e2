#!/usr/bin/env bash
# tessara-cli.exe (the MinGW build, run under wine) against the Linux build:
# the same commands on copies of the same files must print the same bytes.
# A library on a catalogue server is refused in one line where no libpq.dll
# is to be had. Then a unit of work of the Windows build is killed in the middle of its
# commit, and the Linux build must read the file as it was before.
#
#   cli_under_wine.sh LINUX_CLI WINDOWS_CLI_EXE WINE TESTDATA_MDB_DIR
lin=$1 exe=$2 wine=$3 data=$4
. "$(dirname "$0")/wine_gemeinsam.sh"
braucht "$exe"
mkdir "$work/linux" "$work/windows"
compared=0

# Runs one command in both directories (on relative file names, so no path
# differs) and compares stdout, stderr and the exit code.
both() {
    (cd "$work/linux" && "$lin" "$@" >out 2>err; echo $? >rc)
    (cd "$work/windows" && "$wine" "$exe" "$@" >out 2>err; echo $? >rc)
    compared=$((compared + 1))
    local f
    for f in rc out err; do
        cmp -s "$work/linux/$f" "$work/windows/$f" && continue
        fail "$*: $f differs"
        diff <(head -c 2000 "$work/linux/$f") <(head -c 2000 "$work/windows/$f") | head -n 10
    done
    [ "$(cat "$work/linux/rc")" = 0 ] || fail "$*: exit $(cat "$work/linux/rc") ($(head -c 300 "$work/linux/err"))"
}

# A new prefix is made by the first run and says so on stderr.
"$wine" "$exe" --help >/dev/null 2>&1

for path in "$data"/*.mdb; do
    f=$(basename "$path")
    for d in linux windows; do cp "$path" "$work/$d/$f" && chmod u+w "$work/$d/$f"; done
    both tables "$f"
    while IFS= read -r t; do
        [ -n "$t" ] && both export "$f" "$t"
    done <<<"$(cat "$work/linux/out")"
    both schema "$f"
    both check "$f"
done

# Writing: rows added, changed and removed, indexes kept; and a catalogue
# each build creates, written to and read back.
for statement in \
    "INSERT INTO Table1 (id, otherfk1, otherfk2, data, otherfk3) VALUES (7, 1, 11, 'neu', 0)" \
    "UPDATE Table1 SET data = 'geändert' WHERE id = 2" \
    "DELETE FROM Table1 WHERE id = 0" "SELECT * FROM Table1 ORDER BY id"; do
    both sql indexTestV2000.mdb "$statement"
done
both export indexTestV2000.mdb Table1
both check indexTestV2000.mdb
both create-db katalog.mdb
both tables katalog.mdb
both sql katalog.mdb "INSERT INTO tblOrdner (OrdnerNr, Ordnername, NrTblDefMenue) VALUES ('001', 'Ventile', 1)"
both export katalog.mdb tblOrdner
both check katalog.mdb

# A library whose catalogue is on a server: without a PostgreSQL client's
# libpq.dll the Windows build says so in one line and exits.
"$lin" make-demo-library "$work/server" >/dev/null
printf '[Server]\r\nhost=127.0.0.1\r\nport=1\r\ndatabase=katalog\r\nuser=tessara\r\n' >"$work/server/dbTessara.ini"
(cd "$work/server" && "$wine" "$exe" folder list dbTessara.mdb >out 2>err; echo $? >rc)
[ "$(cat "$work/server/rc")" = 1 ] && [ "$(wc -l <"$work/server/err")" -le 1 ] &&
    grep -q "libpq.dll is neither in Tessara's program directory nor on PATH" "$work/server/err" ||
    fail "server library without libpq.dll: exit $(cat "$work/server/rc"): $(head -c 300 "$work/server/err")"

# Killed in its commit: the Windows build halts once its journal is on the
# disk, before the first page of the file is written.
cp "$work/windows/indexTestV2000.mdb" "$work/before.mdb"
(cd "$work/windows" && TESSARA_HALT_AT_STEP=journal-synced exec "$wine" "$exe" sql indexTestV2000.mdb \
    "INSERT INTO Table1 (id, otherfk1, otherfk2, data, otherfk3) VALUES (8, 1, 11, 'halb', 0)" \
    >halt.out 2>halt.err) &
pid=$!
erscheint "$work/windows/halt.err" "halted at journal-synced" 1 60
kill -9 $pid 2>/dev/null
wait $pid 2>/dev/null
if grep -q "halted at journal-synced" "$work/windows/halt.err"; then
    [ -f "$work/windows/indexTestV2000.mdb-journal" ] || fail "no journal left by the killed unit"
    (cd "$work/windows" && "$lin" export indexTestV2000.mdb Table1 >after.csv 2>after.err) ||
        fail "Linux build cannot read the file left by the killed unit: $(cat "$work/windows/after.err")"
    "$lin" export "$work/before.mdb" Table1 >"$work/before.csv"
    cmp -s "$work/before.csv" "$work/windows/after.csv" || fail "the killed unit is visible to the Linux build"
    [ ! -f "$work/windows/indexTestV2000.mdb-journal" ] || fail "the journal was not rolled back"
    cmp -s "$work/before.mdb" "$work/windows/indexTestV2000.mdb" || fail "the file is not as before the killed unit"
else
    fail "the Windows build never reached its halt ($(head -c 300 "$work/windows/halt.err"))"
fi
fertig "tessara-cli.exe under wine printed what the Linux build printed for $compared commands; a unit killed in its commit rolled back"
