#!/bin/sh
# Runs the command lines of the transcripts and compares what comes out: transcript.sh FOLDER PROGRAM...
# FOLDER holds a transcript for each command, NAME.txt, which begins with its --help, and others. In a transcript "$ "
# begins a command line for the shell, where kivtools means PROGRAM; below it is what it prints, with "! " before the
# lines of standard error, and "= N" where it ends with N instead of 0.
# With UPDATE=1 in the environment the transcripts are written anew instead, to be read over before they are kept.
folder=$1
shift
export LC_ALL=C.UTF-8  # whatever language the user has; transcripts of others ask for it
program=$*
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
result=0

kivtools() {
  $program "$@"
}

# replay TRANSCRIPT: the same transcript with what really comes out.
replay() {
  while IFS= read -r line; do
    case $line in
      '$ '*)
        printf '%s\n' "$line"
        (eval "${line#\$ }") >"$work/out" 2>"$work/error" </dev/null
        code=$?
        cat "$work/out"
        sed 's/^/! /' "$work/error"
        [ "$code" -eq 0 ] || echo "= $code"
        ;;
    esac
  done <"$1"
}

kivtools --help | tr -d '\r' | sed -n '/^Commands:/,/^$/s/^  \([^ ]*\) .*/\1/p' >"$work/commands"
[ -s "$work/commands" ] || { echo "the program lists no commands"; exit 1; }
while read -r command; do
  if [ "$(head -n 1 "$folder/$command.txt" 2>&1)" != "\$ kivtools $command --help" ]; then
    echo "$folder/$command.txt does not begin with \"\$ kivtools $command --help\""
    result=1
  fi
done <"$work/commands"
for transcript in "$folder"/*.txt; do
  replay "$transcript" >"$work/actual"
  if [ -n "$UPDATE" ]; then
    cp "$work/actual" "$transcript"
  else
    diff -u "$transcript" "$work/actual" || result=1
  fi
done
exit $result
