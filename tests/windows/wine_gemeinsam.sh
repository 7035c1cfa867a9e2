# Sourced by the *_under_wine.sh tests after they set `wine`: a count of
# failures, a work directory that goes with the wine processes of the
# prefix at the end, and bounded waits. WINEPREFIX, WINEDEBUG,
# WINEDLLOVERRIDES and DISPLAY come from the caller.
set -u
failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}
# What a script prints of its state when it fails; scripts define their own.
nachruf() { :; }
# A failure after which nothing more can be checked.
abbruch() {
    fail "$@"
    nachruf
    exit 1
}
# The end: the failures counted, or the line saying what held.
fertig() {
    [ "$failures" -eq 0 ] || { echo "$failures failure(s)"; nachruf; exit 1; }
    echo "$*"
}
# FILE...: what the test runs must be there.
braucht() {
    [ -x "$wine" ] || abbruch "wine is missing ($wine); scripts/setup-deps installs wine64"
    local f
    for f; do [ -f "$f" ] || abbruch "$f is missing; make windows builds it"; done
}
wineserver=$(dirname "$wine")/wineserver
[ -x "$wineserver" ] || wineserver=$(command -v wineserver || echo wineserver)
work=$(mktemp -d)
trap '"$wineserver" -k 2>/dev/null; rm -rf "$work"' EXIT

# FILE TEXT [TIMES [SECONDS]]: waits until FILE holds TEXT so many times
# (once, 120 s: a cold wine takes its time).
erscheint() {
    local ende=$((SECONDS + ${4:-120})) n
    while :; do
        n=$(grep -cF -- "$2" "$1" 2>/dev/null)
        [ "${n:-0}" -ge "${3:-1}" ] && return 0
        [ $SECONDS -lt $ende ] || return 1
        sleep 0.1
    done
}
# TITLE [SECONDS]: prints the first visible X window whose title matches the
# pattern, waiting for it up to 60 s.
x_fenster() {
    local ende=$((SECONDS + ${2:-60})) w
    while [ $SECONDS -lt $ende ]; do
        w=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1)
        [ -n "$w" ] && { echo "$w"; return 0; }
        sleep 0.1
    done
    return 1
}
# TITLE [KEY]: answers the box of that title with KEY (Return). No window
# manager runs here to activate windows: the focus is set.
antworten() {
    local box
    box=$(x_fenster "^$1\$" 120) || return 1
    xdotool windowfocus --sync "$box" key "${2:-Return}" 2>/dev/null
    return 0
}
# FILE LIBRARY [LINE...]: a Settings file in Windows-1252 naming the
# library, with further lines of its general section, and the boxes that
# wait for a hand on the mouse switched off as a user switches them off.
einstellungen() {
    local datei=$1
    mkdir -p "$(dirname "$datei")"
    { printf '[AllgemeineDaten]\r\nDbVerzeichnis0=%s\r\n' "$2"; shift 2
      [ $# -eq 0 ] || printf '%s\r\n' "$@"
      printf '[MsgboxAnzeigen]\r\nAcadVerbindung=1\r\nKeinBlock=1\r\nTessaraBeenden=1\r\n'
    } | iconv -f UTF-8 -t WINDOWS-1252 >"$datei"
}
# The Windows form of a Linux path, on drive Z:.
z_pfad() { echo "Z:${1//\//\\}"; }
