#!/usr/bin/env bash
# End to end on Windows, under wine: the real tessara.exe inserts the
# selected block of a library into the simulated CAD host simhost.exe through
# the AutoCAD LT script channel (the host found by its title, activated, the
# script started by SendInput keystrokes), then makes a new block in a free
# slot from an object picked in the host. The user's part is played through
# xdotool on the test's own X server: a click that brings the Tessara window
# forward, Enter in it, the pick of the insertion point in the host; End,
# Ctrl+N and Enter for the new block, the base point, an object and the right
# click that ends the selection.
#
#   einfuegen_under_wine.sh WINE WINDOWS_BUILD_DIR LINUX_CLI
#
# WINEPREFIX, WINEDEBUG, WINEDLLOVERRIDES and DISPLAY come from the caller.
wine=$1 winbuild=$2 cli=$3
tessara=$winbuild/Tessara/tessara.exe
. "$(dirname "$0")/wine_gemeinsam.sh"
braucht "$tessara" "$winbuild/tools/simhost/simhost.exe" "$winbuild/Tessara/Demo/dbTessara.mdb"
command -v xdotool >/dev/null || abbruch "xdotool is missing; scripts/setup-deps installs it"
nachruf() {
    echo "--- simhost log"; cat "${log:-}" 2>/dev/null
    echo "--- tessara.exe"; cat "${ausgabe:-}" 2>/dev/null
}

# A new prefix takes a while; make it before anything is timed.
"$wine" wineboot -i >/dev/null 2>&1
"$wineserver" -w
c=$WINEPREFIX/drive_c
log=$c/simhost.log
ausgabe=$c/tessara.txt
rm -rf "$c/Bib" "$c/ProgramData/Tessara" "$c/temp" "$log" "$ausgabe"

# A copy of the demo library on drive c:, as a user's library lies, without
# marked blocks (they would go in instead of the selected slot).
cp -r "$winbuild/Tessara/Demo" "$c/Bib" || abbruch "cannot copy the demo library"
"$cli" sql "$c/Bib/dbTessara.mdb" "DELETE FROM tblMarkierteBloecke" >/dev/null ||
    abbruch "tessara-cli cannot change the copy of the demo library"
zeile=$("$cli" sql "$c/Bib/dbTessara.mdb" "SELECT BlkName0, Layer FROM tblBlockInfo WHERE Block = '0000000'" |
    sed -n '2{s/\r$//;s/^"//;s/"$//;p}')
name=${zeile%%\",\"*} layer=${zeile#*\",\"}
[ -n "$name" ] || abbruch "no block 0000000 in the demo library"
# The last slot of the first Page becomes free; its old files stay behind, as
# a record deleted by hand leaves them, and the new block takes their place.
"$cli" sql "$c/Bib/dbTessara.mdb" "DELETE FROM tblBlockInfo WHERE Block = '0000015'" >/dev/null ||
    abbruch "cannot free the last slot"
# The library in the Settings file, and the boxes that would wait for a
# hand switched off as a user switches them off.
einstellungen "$c/ProgramData/Tessara/Tessara9.0.ini" 'c:\Bib'

# The host first, as a user's CAD program runs before Tessara starts. It
# finds Qt's DLLs and plugins in the Windows folder of the program (wine
# hands no QT_ variable of Linux on; WINEQT_ ones arrive without "WINE").
qt=$(z_pfad "$winbuild/Tessara")
WINEPATH=$qt WINEQT_PLUGIN_PATH=$qt "$wine" "$winbuild/tools/simhost/simhost.exe" --title "AutoCAD LT 2015 - [Zeichnung1.dwg]" \
    --log 'c:\simhost.log' >/dev/null 2>&1 &
erscheint "$log" "START " 1 120 || abbruch "simhost.exe did not start"
host=$(x_fenster "^AutoCAD LT 2015") || abbruch "the simhost window did not appear"

"$wine" "$tessara" >"$ausgabe" 2>&1 &
erscheint "$ausgabe" 'bereit: c:\Bib\dbTessara.mdb' 1 180 || abbruch "tessara.exe did not load the library"
fenster=$(x_fenster "^Tessara") || abbruch "the Tessara window did not appear"

# The user clicks the Tessara window at its edge (the margin, no control
# there) to bring it forward, and waits until the host says it has lost the
# keyboard (it may have lost it to the new window already).
nach_vorne() {
    eval "$(xdotool getwindowgeometry --shell "$fenster")"
    xdotool mousemove $((X + WIDTH - 3)) $((Y + HEIGHT / 2)) click 1
    local ende=$((SECONDS + 30))
    until [ "$(grep '^FENSTER ' "$log" | tail -n 1)" = "FENSTER INAKTIV" ]; do
        [ $SECONDS -lt $ende ] || abbruch "the click did not bring Tessara forward"
        sleep 0.1
    done
}
# Enter inserts the selected slot.
nach_vorne
xdotool key Return
erscheint "$log" "INSERT WARTET AUF PUNKT" 1 60 || abbruch "no insertion reached the host"

# The pick in the host's drawing, held until the host has the insertion:
# Tessara types the remaining answers only once it has seen the button down.
eval "$(xdotool getwindowgeometry --shell "$host")"
xdotool mousemove $((X + 120)) $((Y + 150)) mousedown 1
erscheint "$log" "INSERT block=" 1 30
xdotool mouseup 1

punkt=$(sed -n 's/^PUNKT //p' "$log" | head -n 1)
[ -n "$punkt" ] || abbruch "the host took no pick"
erwartet="INSERT block=${name}0 datei=c:\\Bib\\000\\Block\\00000000.dwg punkt=$punkt x=1 y=1 winkel=0 layer=$layer"
grep -qxF -- "$erwartet" "$log" || abbruch "expected in the host's log: $erwartet"
echo "tessara.exe under wine inserted ${name}0 on layer $layer at $punkt into simhost.exe"

# The new block: Tessara forward again, End selects the last slot, Ctrl+N
# asks for the name (Enter keeps the proposal), the host runs the script.
nach_vorne
xdotool key End
sleep 0.5
xdotool key ctrl+n
x_fenster "^Blockname" >/dev/null || abbruch "no name question after Ctrl+N"
xdotool key Return
erscheint "$log" "WBLOCK WARTET AUF BASISPUNKT" 1 60 || abbruch "the new block's script did not reach the host"
eval "$(xdotool getwindowgeometry --shell "$host")"
xdotool mousemove $((X + 200)) $((Y + 299)) click 1
erscheint "$log" "WBLOCK WAEHLT OBJEKTE" 1 30 || abbruch "the host took no base point"
xdotool mousemove $((X + 320)) $((Y + 199)) click 1
erscheint "$log" "GEWAEHLT " 1 30 || abbruch "the host took no object"
xdotool mousemove $((X + 300)) $((Y + 200)) mousedown 3
erscheint "$log" "WBLOCK c:" 1 30
xdotool mouseup 3
ende=$((SECONDS + 60))
until "$cli" sql "$c/Bib/dbTessara.mdb" "SELECT SlideLib FROM tblBlockInfo WHERE Block = '0000015'" |
    grep -qF '000\00000150.sld'; do
    [ $SECONDS -lt $ende ] || abbruch "no record of the new block 0000015"
    sleep 0.5
done
# The host is LT: the new block keeps a single slide.
"$cli" slide-info "$c/Bib/000/00000150.sld" | grep -q '^level ' || abbruch "the new block has no slide"
grep -q "OBJEKT 5 LINIE" "$c/Bib/000/Block/00000150.dwg" || abbruch "the new drawing does not hold the picked object"
echo "tessara.exe under wine made block 0000015 from the object picked in simhost.exe"
