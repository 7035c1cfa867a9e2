#!/usr/bin/env bash
# clsTessaraStart over COM under wine, created as the CAD host's VBA or
# AutoLISP creates it (CreateObject "Tessara_8_5.clsTessaraStart"; here
# tessara-cli.exe tessara-start --com does it):
#  - the running tessara.exe has registered the class for its user;
#  - its operations reach the running window, requests it must refuse are
#    refused with a line in the error log, a name it does not have is an
#    error to the caller;
#  - with Tessara not running, creating the class starts it (LocalServer32).
#
#   tessara_start_under_wine.sh WINE FOLDER
#
# WINEPREFIX, WINEDEBUG, WINEDLLOVERRIDES and DISPLAY come from the caller.
set -u
wine=$1 folder=$2
[ -x "$wine" ] || { echo "FAIL: wine is missing ($wine); scripts/setup-deps installs wine64"; exit 1; }
[ -f "$folder/tessara.exe" ] || { echo "FAIL: $folder/tessara.exe is missing; make windows builds it"; exit 1; }
wineserver=$(dirname "$wine")/wineserver
command -v "$wineserver" >/dev/null || wineserver=wineserver

failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}
work=$(mktemp -d)
finish() {
    "$wineserver" -k 2>/dev/null
    rm -rf "$work"
}
trap finish EXIT

"$wine" cmd /c exit 0 >/dev/null 2>&1 || { echo "FAIL: wine does not start ($wine)"; exit 1; }
common=$WINEPREFIX/drive_c/ProgramData/Tessara
log=$common/txtErrorTessara9.0.txt
rm -rf "$common"
for k in 'HKCU\Software\Classes\Tessara_8_5.clsTessaraStart' 'HKCR\Tessara_8_5.clsTessaraStart'; do
    "$wine" reg delete "$k" /f >/dev/null 2>&1
done
mkdir -p "$work/bib" "$work/zweite" "$common"
w() { echo "Z:${1//\//\\}"; }
# No host runs here: the boxes about it, and those a refused request shows,
# switched off as a user switches them off.
printf '[AllgemeineDaten]\r\nDbVerzeichnis0=%s\r\n[MsgboxAnzeigen]\r\nAcadVerbindung=1\r\nAutoCadTitel=1\r\nKeinBlock=1\r\nTessaraBeenden=1\r\nAnfrageVerworfen=1\r\n' \
    "$(w "$work/bib")" >"$common/Tessara9.0.ini"

appears() {  # FILE TEXT [TIMES]: waits up to 120 s
    local i n
    for ((i = 0; i < 1200; i++)); do
        n=$(grep -cF -- "$2" "$1" 2>/dev/null)
        [ "${n:-0}" -ge "${3:-1}" ] && return 0
        sleep 0.1
    done
    return 1
}
klasse() {  # expected exit status, then the operation and its arguments
    local soll=$1
    shift
    timeout 180 "$wine" "$folder/tessara-cli.exe" tessara-start --com "$@" >"$work/cli.txt" 2>&1
    local ist=$?
    [ "$ist" -eq "$soll" ] || fail "tessara-start --com $1 ended with $ist, not $soll: $(head -c 300 "$work/cli.txt")"
}

"$wine" "$folder/tessara.exe" >"$work/first.txt" 2>"$work/first.err" &
appears "$work/first.txt" "bereit: " || { echo "FAIL: tessara.exe did not start"; cat "$work/first.txt" "$work/first.err" | head -n 20; exit 1; }
"$wine" reg query 'HKCR\Tessara_8_5.clsTessaraStart\CLSID' >/dev/null 2>&1 ||
    fail "tessara.exe did not register its entry class for the user"

klasse 0 StartTessara2 0010017 A
appears "$work/first.txt" "Blockanfrage: 0010017;A" || fail "StartTessara2 did not reach the window"
klasse 0 StartTessara2 "$(printf '7%.0s' {1..200})" A
appears "$log" "Anfrage verworfen: Blockname zu lang" || fail "an overlong block name was not refused"
klasse 0 ChangeDb "$(w "$work/fehlt")\\dbTessara.mdb"
appears "$log" "Anfrage verworfen: Verzeichnis fehlt" || fail "a library that is not there was not refused"
# "/" and "\" mixed, as AutoLISP paths come.
klasse 0 ChangeDb "$(w "$work")/zweite\\dbTessara.mdb"
appears "$work/first.txt" "Datenbank: $(w "$work/zweite")\\dbTessara.mdb" || fail "ChangeDb did not switch the library"
klasse 0 LBlockEinfuegen
appears "$work/first.txt" "Blockanfrage: 0010017;A" 2 || fail "LBlockEinfuegen did not insert again"
# VB's "Object doesn't support this property or method"
klasse 1 Unbekannt x
grep -qF "(438)" "$work/cli.txt" || fail "a name the class does not have was no clear error: $(cat "$work/cli.txt")"
grep -q "Blockanfrage: 777" "$work/first.txt" && fail "the refused block name was carried out"

# Tessara not running: creating the class starts it.
"$wineserver" -k
sleep 1
klasse 0 StartTessara
for ((i = 0; i < 600; i++)); do
    xdotool search --onlyvisible --name '^Tessara' >/dev/null 2>&1 && break
    sleep 0.2
done
xdotool search --onlyvisible --name '^Tessara' >/dev/null 2>&1 || fail "creating the class did not start Tessara"

[ "$failures" -eq 0 ] || import -window root "$work/../tessara-start-wine-failed.png" 2>/dev/null
[ "$failures" -eq 0 ] || { echo "$failures failure(s); the window's output:"; head -n 20 "$work/first.txt"; tail -n 10 "$log"; exit 1; }
echo "clsTessaraStart under wine: registered, reached over COM, refusing what it must, started by COM"
