#!/bin/sh
# Runs the command lines of a transcript and compares what comes out: transcript.sh FILE PROGRAM...
# In the file "$ " begins a command line for the shell, where kivtools stands for PROGRAM; below it stand what it prints,
# with "! " before the lines of standard error, and "= N" where it ends with N instead of 0. "#" begins a comment.
expected=$1
shift
program=$*
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

kivtools() {
  $program "$@"
}

while IFS= read -r line; do
  case $line in
    '#'*) printf '%s\n' "$line" ;;
    '$ '*)
      printf '%s\n' "$line"
      (eval "${line#\$ }") >"$work/out" 2>"$work/error" </dev/null
      code=$?
      cat "$work/out"
      sed 's/^/! /' "$work/error"
      [ "$code" -eq 0 ] || echo "= $code"
      ;;
  esac
done <"$expected" >"$work/actual"
diff -u "$expected" "$work/actual"
