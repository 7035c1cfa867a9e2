#!/usr/bin/env bash
# The setup program under wine, in a wine prefix made afresh: a silent
# install with a language and a library path with an umlaut, the installed
# program started on that library, a silent uninstall that leaves only the
# user's data; a second setup over that data with a language it does not
# know; a third on a clean machine without options.
#
#   setup_under_wine.sh WINE SETUP_EXE
#
# WINEPREFIX (removed and made again), WINEDEBUG and WINEDLLOVERRIDES come
# from the caller, DISPLAY names an X server of the test's own. The setup is
# checked against the folder it was made from, Tessara/ beside it.
wine=$1 setup=$2
. "$(dirname "$0")/wine_gemeinsam.sh"
braucht "$setup"
[ -n "${WINEPREFIX:-}" ] || abbruch "no WINEPREFIX given"
version=$(basename "$setup" .exe)
version=${version#Tessara-Setup-}
folder=$(dirname "$setup")/Tessara

# The library path reaches wine's command line in UTF-8.
export LC_ALL=C.UTF-8
c=$WINEPREFIX/drive_c
prog="$c/Program Files/Tessara"
menu="$c/ProgramData/Microsoft/Windows/Start Menu/Programs/Tessara"
daten=$c/ProgramData/Tessara
ini=$daten/Tessara9.0.ini
key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tessara'
# Runs a Windows program and waits until wine has ended, as the uninstaller
# goes on after its first process returns.
w() {
    "$wine" "$@"
    local status=$?
    "$wineserver" -w
    return $status
}

# The Settings file's section as the setup wrote it, bytes and line ends.
ini_ist() {
    printf '[AllgemeineDaten]\r\nSprache=%s\r\nDbVerzeichnis0=%s\r\n' "$1" "$2" >"$work/ini"
    cmp -s "$work/ini" "$ini" || { fail "$3: the Settings file is not as expected"; od -c "$ini" | head -n 12; }
}

rm -rf "$WINEPREFIX"
w wineboot -i >/dev/null 2>&1 || abbruch "wine could not make a prefix in $WINEPREFIX"

# --- 1: install with the choices on the command line ------------------------
w "$setup" /S /SPRACHE=englisch '/BIBLIOTHEK=C:\Bibliotheken\Müller' || fail "the setup ended with $?"
lib="$c/Bibliotheken/Müller"

[ -f "$prog/uninstall.exe" ] || fail "no uninstaller in Program Files"
diff -rq -x Demo -x uninstall.exe "$folder" "$prog" >"$work/diff" ||
    fail "Program Files differs from the Windows folder: $(head -n 10 "$work/diff")"
diff -rq "$folder/Demo" "$lib" >"$work/diff" ||
    fail "the first library is not a copy of the demo library: $(head -n 10 "$work/diff")"
# Windows-1252 as the program reads it, CRLF.
ini_ist englisch 'C:\Bibliotheken\M'$'\xfc''ller' "install with options"

links=("$menu"/*.lnk)
[ ${#links[@]} -eq 2 ] || fail "${#links[@]} Start-menu entries instead of 2"
grep -aq 'tessara\.exe' "$menu/Tessara.lnk" 2>/dev/null || fail "no Start-menu entry for tessara.exe"
grep -alq 'uninstall\.exe' "${links[@]}" 2>/dev/null || fail "no Start-menu entry for the uninstaller"

"$wine" reg query "$key" 2>/dev/null | tr -d '\r' | sed 's/^ *//' >"$work/key"
# The lines of the uninstall key as reg.exe prints them.
while IFS= read -r eintrag; do
    grep -Fxq "$eintrag" "$work/key" || fail "uninstall key lacks: $eintrag"
done < <(sed "s/{version}/$version/" "$(dirname "$0")/golden/uninstall_key.txt")
groesse=$(sed -n 's/^EstimatedSize    REG_DWORD    //p' "$work/key")
kb=$(du -sk --apparent-size "$prog" | cut -f1)
if [ -z "$groesse" ] || [ $((groesse)) -lt $((kb * 9 / 10)) ] || [ $((groesse)) -gt $((kb * 11 / 10)) ]; then
    fail "EstimatedSize ${groesse:-missing} for $kb KB installed"
fi

# The installed program, started as a user would, on the library the setup
# chose. Its message about the missing AutoCAD connection is switched off
# as its "do not show again" box does.
printf '[MsgboxAnzeigen]\r\nAcadVerbindung=1\r\n' >>"$ini"
"$wine" 'C:\Program Files\Tessara\tessara.exe' >"$work/out" 2>"$work/err" &
disown $!  # ended by wineserver -k below; its death is no news
erscheint "$work/out" 'bereit: ' 1 60
bereit=$(grep '^bereit: ' "$work/out" | tr -d '\r')
[ "$bereit" = 'bereit: C:\Bibliotheken\Müller\dbTessara.mdb' ] ||
    fail "the installed program did not open its library (${bereit:-$(tail -n 6 "$daten/txtErrorTessara9.0.txt" 2>/dev/null | tr -s '\r\n' ' ')})"
"$wine" reg query 'HKCR\Tessara_8_5.clsTessaraStart\CLSID' >/dev/null 2>&1 ||
    fail "the running program did not register its entry class for the CAD host"
"$wineserver" -k

# --- uninstall -----------------------------------------------------------------
# The machine-wide database list the program keeps for its installation,
# written as the program writes it: the uninstaller is to take it along.
"$wine" reg add 'HKLM\Software\Tessara\Version_8' /v Eintrag1 /d 'C:\Bibliotheken\Müller\dbTessara.mdb' /f >/dev/null 2>&1 ||
    fail "could not write the program's machine key"
w "$prog/uninstall.exe" /S || fail "the uninstaller ended with $?"
[ ! -e "$prog" ] || fail "left in Program Files: $(cd "$prog" && find . | head -n 5 | tr '\n' ' ')"
[ ! -e "$menu" ] || fail "the Start-menu folder is left"
"$wine" reg query "$key" >/dev/null 2>&1 && fail "the uninstall key is left"
"$wine" reg query 'HKLM\Software\Tessara' >/dev/null 2>&1 && fail "the program's machine key is left"
for k in 'HKCU\Software\Classes\Tessara_8_5.clsTessaraStart' 'HKCR\Tessara_8_5.clsTessaraStart'; do
    "$wine" reg query "$k" >/dev/null 2>&1 && fail "the entry class's registration is left in $k"
done
[ -f "$lib/dbTessara.mdb" ] || fail "the uninstaller removed the user's library"
[ -f "$ini" ] || fail "the uninstaller removed the Settings file"

# --- 2: again over the user's data, with a language it does not know --------
touch -d '2001-01-01' "$lib/dbTessara.mdb"
w "$setup" /S /SPRACHE=klingonisch || fail "the second setup ended with $?"
LC_ALL=C grep -aFxq $'Sprache=deutsch\r' "$ini" || fail "an unknown language did not become deutsch"
LC_ALL=C grep -aFxq 'DbVerzeichnis0=C:\Bibliotheken\M'$'\xfc''ller'$'\r' "$ini" ||
    fail "the second setup did not keep the user's library in the Settings file"
[ "$(stat -c %Y "$lib/dbTessara.mdb")" = "$(date -d 2001-01-01 +%s)" ] ||
    fail "the second setup overwrote the user's library"
[ ! -e "$daten/Demo" ] || fail "the second setup copied the demo library beside the user's"
w "$prog/uninstall.exe" /S || fail "the second uninstaller ended with $?"

# --- 3: a machine without Tessara's data, no options -------------------------
rm -rf "$daten" "$c/Bibliotheken"
w "$setup" /S || fail "the third setup ended with $?"
ini_ist deutsch 'C:\ProgramData\Tessara\Demo' "install without options"
diff -rq "$folder/Demo" "$daten/Demo" >/dev/null || fail "the demo library is not in C:\\ProgramData\\Tessara\\Demo"

fertig "Tessara-Setup-$version.exe installed, started the program on its library and uninstalled under wine, leaving the user's data"
