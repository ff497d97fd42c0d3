# tests/packages/windows.sh FOLDER TREE: on Wine, tries the unpacked zip TREE, then installs without a question what the
# installer of FOLDER has, tries it and removes it; whatever it left is named.
set -eu
packages=$1
tree=$2
program_says() {  # EXPECTED PROGRAM ARGUMENT...
  expected=$1
  shift
  said=$(wine "$@" | tr -d '\r' | head -n 1)
  test "$said" = "$expected" || { echo "$*: $said" >&2 && exit 1; }
}
everything() {
  find /root/prefix/drive_c -not -path '*/Temp/*' -not -path '*/temp/*' | sort
  wineserver --wait
  grep -i kivtools /root/prefix/*.reg || true
}

sum="UNAMIEDOUASUTETREIZECISIPATRU LEI SI CINCIZECISISASE BANI"
program_says "DOUASPREZECE LEI" "$tree/bin/kivtools.exe" words 12
for host in libKivToolsRePack.dll.a KivToolsRePack.lib; do
  program_says "$sum" "$tree/bin/c_host-$host.exe"
done
wine "$tree/bin/other.exe" || { echo "the other compiler's program ends with $?" >&2 && exit 1; }

everything >/tmp/before
installed="/root/prefix/drive_c/Programe mele/Kiv"
for round in first again; do  # the second puts itself in the place of the first
  # What stands behind /D= is not quoted, and goes to the end of the line.
  wine "$(echo "$packages"/*setup.exe)" /S '/D=C:\Programe' 'mele\Kiv'
  test -e "$installed/include/kivtools/kiv.h" || { echo "$round: not installed" >&2 && exit 1; }
done
program_says "DOUASPREZECE LEI" "$installed/bin/kivtools.exe" words 12
# Both give the same files.
rm "$tree"/bin/other.exe "$tree"/bin/c_host-*
diff -r "$tree" "$installed" | grep -vxF "Only in $installed: uninstall.exe" >&2 && exit 1
grep -q 'DisplayName.*KivToolsRePack' /root/prefix/system.reg || wineserver --wait
wine "$installed/uninstall.exe" /S
wineserver --wait
rmdir "/root/prefix/drive_c/Programe mele"  # the user's own folder, which is empty now
everything >/tmp/after
diff /tmp/before /tmp/after
