#!/bin/sh
# floppy_drive.sh PROGRAM...: copies onto a diskette of real size, as a person does at the command line. The diskette is
# a file system in memory of 1.44 MB, in a mount namespace of this script's own: drive A: of Wine, or the folder that
# stands for it. Full, protected from writing, taken out. Ends with 77 where nothing may be mounted.
if [ -z "$FLOPPY_MOUNTS" ]; then
  export FLOPPY_MOUNTS=yes
  as_root=$([ "$(id -u)" -eq 0 ] || echo --map-root-user)
  unshare $as_root --mount --propagation private true || { echo "nothing may be mounted here: skipped"; exit 77; }
  exec unshare $as_root --mount --propagation private sh "$0" "$@"
fi
program=$*
work=$(mktemp -d)
disc=$work/disc
mkdir "$work/temp"
trap 'umount "$disc" 2>/dev/null; rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
export TMPDIR="$work/temp"
temporary=$TMPDIR
root="--root $disc"
if [ -n "$WINEPREFIX" ]; then
  root=
  temporary=$WINEPREFIX/drive_c/users/*/Temp
fi
failures=0

insert() {
  mount -t tmpfs -o "size=1440k,$1" diskette "$disc"
}

# copy ANSWERS CODE LAST-LINE FILE... DESTINATION: copies as the answers say; it ends with the code and the line.
copy() {
  answers=$1 code=$2 line=$3
  shift 3
  printf '%s\n' $answers | $program floppy copy $root "$@" >"$work/out" 2>&1
  got=$?
  if [ $got -ne "$code" ] || ! tr -d '\r' <"$work/out" | tail -n 1 | grep -q "$line"; then
    echo "floppy copy $* ($answers): ended with $got instead of $code and \"$line\":"
    cat "$work/out"
    failures=$((failures + 1))
  fi
  same "$work/mic" "$work/mic.copy"
  same "$work/mare" "$work/mare.copy"
  if ls $temporary/test_*.bin 2>/dev/null; then
    echo "a temporary file is left"
    failures=$((failures + 1))
  fi
}

same() {
  cmp "$1" "$2" || failures=$((failures + 1))
}

cd "$work" || exit 1
head -c 700000 /dev/urandom >mic
head -c 800000 /dev/urandom >mare
cp mic mic.copy
cp mare mare.copy
done='s-a finalizat cu succes'

copy "ok ok cancel" 1 'ok or cancel' mic 'A:\unu'
mkdir "$disc"
if [ -n "$WINEPREFIX" ]; then
  wineserver --kill # the one of this folder's copy; it looks for drives when it starts
  ln -s "$disc" "$WINEPREFIX/dosdevices/a:"
fi
insert rw
[ "$($program floppy state $root | tr -d '\r')" = ready ] || { echo "not ready"; failures=$((failures + 1)); }
copy "ok" 0 "$done" mic 'A:\unu'
same mic disc/unu
copy "ok no cancel" 1 'retry or cancel' mare 'A:\unu'
same mic disc/unu
copy "ok yes" 0 "$done" mare 'A:\unu'
same mare disc/unu
copy "ok" 2 'CopyNoBuffering: ' mic 'A:\doi' # there is no room for both
same mare disc/unu
rm -f disc/*
copy "ok" 2 'prea mari\|depaseste capacitatea' mic mare 'A:'
mount -o remount,ro "$disc"
copy "ok" 2 'CopyNoBuffering: ' mic 'A:\doi'
umount "$disc"
insert rw
cp mic disc/unu
mount -o remount,ro "$disc"
copy "ok yes" 1 'Nu pot sterge fisierul A:.unu. Discheta este protejata la scriere.' mare 'A:\unu'
same mic disc/unu
echo "$failures failures"
[ "$failures" -eq 0 ]
