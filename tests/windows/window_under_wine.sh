#!/usr/bin/env bash
# tessara.exe from the Windows folder, under wine, as a Windows user meets it:
#  - it opens a copy of the demo library kept in a folder whose name has
#    umlauts and a blank, and paints the slide grid (a screenshot is written
#    to OUT/tessara-wine.png; its slots must not be blank);
#  - its captions reach Windows with their umlauts (the title of the dialog
#    "Bibliothek öffnen" as the window manager sees it);
#  - it keeps its Settings file and error log in the common application data
#    folder and its values in the registry where a Windows program does;
#  - a second start hands its command line to the running window through the
#    Windows channel and ends.
#
#   window_under_wine.sh WINE FOLDER OUT
#
# WINEPREFIX, WINEDEBUG, WINEDLLOVERRIDES and DISPLAY come from the caller.
set -u
wine=$1 folder=$2 out=$3
[ -x "$wine" ] || { echo "FAIL: wine is missing ($wine); scripts/setup-deps installs wine64"; exit 1; }
[ -f "$folder/tessara.exe" ] || { echo "FAIL: $folder/tessara.exe is missing; make windows builds it"; exit 1; }
[ -f "$folder/Demo/dbTessara.mdb" ] || { echo "FAIL: the demo library is missing in $folder; make windows makes it"; exit 1; }
wineserver=$(dirname "$wine")/wineserver
command -v "$wineserver" >/dev/null || wineserver=wineserver

failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}
mkdir -p "$out"
work=$(mktemp -d)
first_pid=
finish() {
    [ -n "$first_pid" ] && kill "$first_pid" 2>/dev/null
    "$wineserver" -k 2>/dev/null
    rm -rf "$work"
}
trap finish EXIT

# A prefix of its own; the first run creates it and says so on stderr.
"$wine" cmd /c exit 0 >/dev/null 2>&1 || { echo "FAIL: wine does not start ($wine)"; exit 1; }
drive_c=$WINEPREFIX/drive_c
common=$drive_c/ProgramData/Tessara
rm -rf "$common"
"$wine" reg delete 'HKCU\Software\Vendel' /f >/dev/null 2>&1
# Windows' interface font is not here, and Qt does not see wine's own
# stand-in: without a substitute the window falls back to a serif face.
for face in "MS Shell Dlg" "MS Shell Dlg 2"; do
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' \
        /v "$face" /d "DejaVu Sans" /f >/dev/null 2>&1
done

# The library in a folder named as users name theirs.
lib="$work/Bibliothek Müller"
cp -r "$folder/Demo" "$lib"
lib_windows="Z:${lib//\//\\}"
lib2="$work/Zweite Bibliothek"
mkdir -p "$lib2"
lib2_windows="Z:${lib2//\//\\}"

# The boxes that wait for a hand on the mouse, switched off as a user
# switches them off, and debug mode, which logs the command line into the
# error log and says so in a box at start.
mkdir -p "$common"
printf '[AllgemeineDaten]\r\nDbVerzeichnis0=%s\r\nstrDebug=1\r\n[MsgboxAnzeigen]\r\nAcadVerbindung=1\r\nKeinBlock=1\r\nTessaraBeenden=1\r\n' "$lib_windows" |
    iconv -f UTF-8 -t WINDOWS-1252 >"$common/Tessara9.0.ini"

# Waits until FILE holds TEXT; 120 s at most (a cold wine takes its time).
appears() {
    local file=$1 text=$2 i
    for ((i = 0; i < 1200; i++)); do
        grep -qF -- "$text" "$file" 2>/dev/null && return 0
        sleep 0.1
    done
    return 1
}

# Waits for a window titled TITLE and answers it with KEY (Return).
answer_box() {
    local box
    box=$(timeout 120 xdotool search --sync --onlyvisible --name "^$1\$" 2>/dev/null | head -n 1)
    # No window manager runs here to activate windows: the focus is set.
    [ -n "$box" ] && xdotool windowfocus --sync "$box" key "${2:-Return}" 2>/dev/null
    [ -n "$box" ]
}
# Debug mode asks first whether to stay on, then says it is on.
# Started as from the Start menu: the library the Settings file names.
"$wine" "$folder/tessara.exe" >"$work/first.txt" 2>"$work/first.err" &
first_pid=$!
answer_box Frage && answer_box Info ||
    fail "no box asked about debug mode: the Settings file in C:\\ProgramData\\Tessara was not read"
if ! appears "$work/first.txt" "bereit: $lib_windows\\dbTessara.mdb"; then
    echo "FAIL: tessara.exe did not report its library as loaded"
    cat "$work/first.txt" "$work/first.err" | head -n 20
    exit 1
fi

# Later starts run without debug mode, as most users do: no boxes to wait for.
sed -i 's/^strDebug=1\r$/strDebug=0\r/' "$common/Tessara9.0.ini"

# The main window: found by its title, brought up, photographed.
window=$(xdotool search --sync --onlyvisible --name '^Tessara' 2>/dev/null | head -n 1)
[ -n "$window" ] || fail "no visible window titled Tessara"
sleep 2
import -window root "$out/tessara-wine.png" 2>/dev/null || fail "no screenshot could be taken (imagemagick)"
if [ -n "$window" ] && [ -s "$out/tessara-wine.png" ]; then
    eval "$(xdotool getwindowgeometry --shell "$window")"
    # The slide grid fills the left two thirds below the toolbar: slides are
    # light lines on black, so a painted grid is dark with much contrast,
    # while blank slots would be one flat colour.
    gw=$((WIDTH * 60 / 100)) gh=$((HEIGHT * 70 / 100))
    stats=$(convert "$out/tessara-wine.png" -crop "${gw}x${gh}+$((X + 10))+$((Y + 60))" +repage \
        -colorspace Gray -format '%[fx:mean] %[fx:standard_deviation]' info: 2>/dev/null)
    read -r mean deviation <<<"$stats"
    echo "slide grid: ${WIDTH}x${HEIGHT} window, grey mean $mean, deviation $deviation"
    awk -v m="${mean:-1}" -v d="${deviation:-0}" 'BEGIN { exit !(m < 0.6 && d > 0.15) }' ||
        fail "the slide grid looks blank (grey mean $mean, deviation $deviation)"
fi

# A caption with an umlaut, through Qt and Windows to the window manager.
if [ -n "$window" ]; then
    xdotool windowfocus --sync "$window" key --clearmodifiers alt+d 2>/dev/null
    sleep 1
    xdotool key Return
    # Polled, not --sync: a search that meets a window closing meanwhile (the
    # menu's) gives up at once with an X error. On a busy machine the menu may
    # open after the Return was sent: then the keys are given once more.
    dialog=""
    for ((i = 0; i < 60; i++)); do
        dialog=$(xdotool search --onlyvisible --name '^Bibliothek öffnen$' 2>/dev/null | head -n 1)
        [ -n "$dialog" ] && break
        if [ "$i" -eq 30 ]; then
            xdotool key Escape
            xdotool windowfocus --sync "$window" key --clearmodifiers alt+d 2>/dev/null
            sleep 2
            xdotool key Return
        fi
        sleep 0.5
    done
    if [ -n "$dialog" ]; then
        xdotool windowfocus --sync "$dialog" key Escape 2>/dev/null
        for ((i = 0; i < 100; i++)); do
            xdotool search --onlyvisible --name '^Bibliothek öffnen$' >/dev/null 2>&1 || break
            sleep 0.1
        done
        [ "$i" -lt 100 ] || fail "the dialog 'Bibliothek öffnen' did not close on Escape"
    else
        fail "no dialog titled 'Bibliothek öffnen' (titles: $(xdotool search --onlyvisible --name . getwindowname %@ 2>/dev/null | sort -u | tr '\n' '|'))"
    fi
fi

# Later starts hand their request to the running window and end.
run_second() {
    "$wine" "$folder/tessara.exe" "$@" >"$work/second.txt" 2>&1 &
    local pid=$! i
    for ((i = 0; i < 1800; i++)); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    if kill -0 "$pid" 2>/dev/null; then
        kill "$pid"
        fail "a second start ($*) did not end"
    else
        wait "$pid" || fail "a second start ($*) ended with $?: $(head -c 300 "$work/second.txt")"
    fi
}
run_second /s '0010017;A'
appears "$work/first.txt" "Blockanfrage: 0010017;a" || fail "the running window did not get the block request"
# The request inserts the block; with no CAD host running the window offers
# the open windows to choose the host from.
answer_box "Übersicht der geöffneten Fenster" Escape || fail "no list of windows to choose the CAD host from"
run_second /d "$lib2_windows\\dbTessara.mdb"
appears "$work/first.txt" "Datenbank: $lib2_windows\\dbTessara.mdb" ||
    fail "the running window did not get the other library"
for ((i = 0; i < 300; i++)); do
    [ -f "$lib2/dbTessara.mdb" ] && break
    sleep 0.1
done
[ -f "$lib2/dbTessara.mdb" ] || fail "the running window did not make the new library in 'Zweite Bibliothek'"

# A library on a share that is not there: the request is refused with a
# box, and the window keeps the library it has.
run_second /d '\\server\share\Bibliothek\dbTessara.mdb'
answer_box Information || fail "no box said that the library on the share cannot be reached"
grep -qF 'Anfrage verworfen: Verzeichnis fehlt: \\server\share\Bibliothek' \
    "$common/txtErrorTessara9.0.txt" 2>/dev/null ||
    fail "the error log does not say why the library on the share was refused"

# Where a Windows program keeps its things.
grep -q "App.PrevInstance = false" "$common/txtErrorTessara9.0.txt" 2>/dev/null ||
    fail "the error log C:\\ProgramData\\Tessara\\txtErrorTessara9.0.txt has no debug line ($(ls "$common"))"
# reg.exe prints in the console's code page; an export is UTF-16 whatever
# the path holds.
"$wine" reg export 'HKCU\Software\Vendel\Tessara\9.0' "Z:${work//\//\\}\\werte.reg" /y >/dev/null 2>&1
iconv -f UTF-16 -t UTF-8 "$work/werte.reg" 2>/dev/null | tr -d '\r' | sed 's/\\\\/\\/g' >"$work/werte.txt"
grep -qF "\"Eintrag1\"=\"$lib2_windows\\dbTessara.mdb\"" "$work/werte.txt" ||
    fail "HKCU\\Software\\Vendel\\Tessara\\9.0 Eintrag1 does not name the library opened last: $(grep Eintrag1 "$work/werte.txt")"

if [ "$failures" -ne 0 ]; then
    import -window root "$out/tessara-wine-failed.png" 2>/dev/null
    echo "the error log ends:"
    tail -n 15 "$common/txtErrorTessara9.0.txt" 2>/dev/null
fi
[ "$failures" -eq 0 ] || { echo "$failures failure(s); first start's output:"; head -n 20 "$work/first.txt"; exit 1; }
echo "tessara.exe under wine: window, captions, files, registry and second starts as on Windows"
