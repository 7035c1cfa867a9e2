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
#    Windows channel and ends;
#  - its entry class clsTessaraStart, registered for the user, is reached
#    over COM as the CAD host's VBA or AutoLISP reaches it (CreateObject
#    "Tessara_8_5.clsTessaraStart", done here by tessara-cli.exe
#    tessara-start --com), and with Tessara not running (the first start
#    killed) creating it starts Tessara.
#
#   window_under_wine.sh WINE FOLDER OUT
wine=$1 folder=$2 out=$3
. "$(dirname "$0")/wine_gemeinsam.sh"
braucht "$folder/tessara.exe" "$folder/tessara-cli.exe" "$folder/Demo/dbTessara.mdb"
mkdir -p "$out"

# A prefix of its own; the first run creates it and says so on stderr.
"$wine" cmd /c exit 0 >/dev/null 2>&1 || abbruch "wine does not start ($wine)"
common=$WINEPREFIX/drive_c/ProgramData/Tessara
log=$common/txtErrorTessara9.0.txt
rm -rf "$common"
"$wine" reg delete 'HKCU\Software\Vendel' /f >/dev/null 2>&1
for k in 'HKCU\Software\Classes\Tessara_8_5.clsTessaraStart' 'HKCR\Tessara_8_5.clsTessaraStart'; do
    "$wine" reg delete "$k" /f >/dev/null 2>&1
done
# Windows' interface font is not here, and Qt does not see wine's own
# stand-in: without a substitute the window falls back to a serif face.
for face in "MS Shell Dlg" "MS Shell Dlg 2"; do
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontSubstitutes' \
        /v "$face" /d "DejaVu Sans" /f >/dev/null 2>&1
done
nachruf() {
    import -window root "$out/tessara-wine-failed.png" 2>/dev/null
    echo "the error log ends:"
    tail -n 15 "$log" 2>/dev/null
    echo "first start's output:"
    head -n 20 "$work/first.txt"
}

# The library in a folder named as users name theirs.
lib="$work/Bibliothek Müller"
cp -r "$folder/Demo" "$lib"
lib2="$work/Zweite Bibliothek"
mkdir -p "$lib2" "$work/dritte"
# Debug mode logs the command line into the error log and says so in a box
# at start: it asks first whether to stay on, then says it is on.
einstellungen "$common/Tessara9.0.ini" "$(z_pfad "$lib")" strDebug=1
# Started as from the Start menu: the library the Settings file names.
"$wine" "$folder/tessara.exe" >"$work/first.txt" 2>"$work/first.err" &
antworten Frage && antworten Info ||
    fail "no box asked about debug mode: the Settings file in C:\\ProgramData\\Tessara was not read"
erscheint "$work/first.txt" "bereit: $(z_pfad "$lib")\\dbTessara.mdb" ||
    abbruch "tessara.exe did not report its library as loaded: $(head -c 500 "$work/first.err")"
# Later starts run without debug mode, as most users do: no boxes to wait for.
sed -i 's/^strDebug=1\r$/strDebug=0\r/' "$common/Tessara9.0.ini"
"$wine" reg query 'HKCR\Tessara_8_5.clsTessaraStart\CLSID' >/dev/null 2>&1 ||
    fail "tessara.exe did not register its entry class for the user"

# The main window: found by its title, brought up, photographed.
window=$(x_fenster '^Tessara') || abbruch "no visible window titled Tessara"
sleep 2
import -window root "$out/tessara-wine.png" 2>/dev/null || fail "no screenshot could be taken (imagemagick)"
eval "$(xdotool getwindowgeometry --shell "$window")"
# The slide grid fills the left two thirds below the toolbar: slides are
# light lines on black, so a painted grid is dark with much contrast, while
# blank slots would be one flat colour.
read -r mean deviation <<<"$(convert "$out/tessara-wine.png" -crop \
    "$((WIDTH * 60 / 100))x$((HEIGHT * 70 / 100))+$((X + 10))+$((Y + 60))" +repage \
    -colorspace Gray -format '%[fx:mean] %[fx:standard_deviation]' info: 2>/dev/null)"
echo "slide grid: ${WIDTH}x${HEIGHT} window, grey mean $mean, deviation $deviation"
awk -v m="${mean:-1}" -v d="${deviation:-0}" 'BEGIN { exit !(m < 0.6 && d > 0.15) }' ||
    fail "the slide grid looks blank (grey mean $mean, deviation $deviation)"

# A caption with an umlaut, through Qt and Windows to the window manager. On
# a busy machine the menu may open after the Return was sent: then the keys
# are given once more.
dialog=
for versuch in 1 2; do
    [ $versuch = 1 ] || xdotool key Escape
    xdotool windowfocus --sync "$window" key --clearmodifiers alt+d 2>/dev/null
    sleep $versuch
    xdotool key Return
    dialog=$(x_fenster '^Bibliothek öffnen$' 15) && break
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

# Later starts hand their request to the running window and end.
run_second() {
    timeout 180 "$wine" "$folder/tessara.exe" "$@" >"$work/second.txt" 2>&1 ||
        fail "a second start ($*) ended with $?: $(head -c 300 "$work/second.txt")"
}
run_second /s '0010017;A'
erscheint "$work/first.txt" "Blockanfrage: 0010017;a" || fail "the running window did not get the block request"
# The request inserts the block; with no CAD host running the window offers
# the open windows to choose the host from.
antworten "Übersicht der geöffneten Fenster" Escape || fail "no list of windows to choose the CAD host from"
run_second /d "$(z_pfad "$lib2")\\dbTessara.mdb"
erscheint "$work/first.txt" "Datenbank: $(z_pfad "$lib2")\\dbTessara.mdb" ||
    fail "the running window did not get the other library"
for ((i = 0; i < 300; i++)); do
    [ -f "$lib2/dbTessara.mdb" ] && break
    sleep 0.1
done
[ -f "$lib2/dbTessara.mdb" ] || fail "the running window did not make the new library in 'Zweite Bibliothek'"
# A library on a share that is not there: the request is refused with a
# box, and the window keeps the library it has.
run_second /d '\\server\share\Bibliothek\dbTessara.mdb'
antworten Information || fail "no box said that the library on the share cannot be reached"
grep -qF 'Anfrage verworfen: Verzeichnis fehlt: \\server\share\Bibliothek' "$log" 2>/dev/null ||
    fail "the error log does not say why the library on the share was refused"

# Where a Windows program keeps its things.
grep -q "App.PrevInstance = false" "$log" 2>/dev/null ||
    fail "the error log C:\\ProgramData\\Tessara\\txtErrorTessara9.0.txt has no debug line ($(ls "$common"))"
# reg.exe prints in the console's code page; an export is UTF-16 whatever
# the path holds.
"$wine" reg export 'HKCU\Software\Vendel\Tessara\9.0' "$(z_pfad "$work")\\werte.reg" /y >/dev/null 2>&1
iconv -f UTF-16 -t UTF-8 "$work/werte.reg" 2>/dev/null | tr -d '\r' | sed 's/\\\\/\\/g' >"$work/werte.txt"
grep -qF "\"Eintrag1\"=\"$(z_pfad "$lib2")\\dbTessara.mdb\"" "$work/werte.txt" ||
    fail "HKCU\\Software\\Vendel\\Tessara\\9.0 Eintrag1 does not name the library opened last: $(grep Eintrag1 "$work/werte.txt")"

# The entry class over COM: its operations reach the running window, a name
# it does not have is an error to the caller. No host runs here: the box
# about it switched off as a user switches it off.
sed -i 's/^\[MsgboxAnzeigen\]\r$/&\nAutoCadTitel=1\r/' "$common/Tessara9.0.ini"
klasse() {  # expected exit status, then the operation and its arguments
    local soll=$1
    shift
    timeout 180 "$wine" "$folder/tessara-cli.exe" tessara-start --com "$@" >"$work/cli.txt" 2>&1
    local ist=$?
    [ "$ist" -eq "$soll" ] || fail "tessara-start --com $1 ended with $ist, not $soll: $(head -c 300 "$work/cli.txt")"
}
klasse 0 StartTessara2 0010017 A
erscheint "$work/first.txt" "Blockanfrage: 0010017;A" || fail "StartTessara2 did not reach the window"
# "/" and "\" mixed, as AutoLISP paths come.
klasse 0 ChangeDb "$(z_pfad "$work")/dritte\\dbTessara.mdb"
erscheint "$work/first.txt" "Datenbank: $(z_pfad "$work/dritte")\\dbTessara.mdb" || fail "ChangeDb did not switch the library"
klasse 0 LBlockEinfuegen
erscheint "$work/first.txt" "Blockanfrage: 0010017;A" 2 || fail "LBlockEinfuegen did not insert again"
# VB's "Object doesn't support this property or method"
klasse 1 Unbekannt x
grep -qF "(438)" "$work/cli.txt" || fail "a name the class does not have was no clear error: $(cat "$work/cli.txt")"

# Tessara not running: creating the class starts it (LocalServer32).
"$wineserver" -k
sleep 1
klasse 0 StartTessara
x_fenster '^Tessara' 120 >/dev/null || fail "creating the class did not start Tessara"
fertig "tessara.exe under wine: window, captions, files, registry, second starts and its entry class as on Windows"
