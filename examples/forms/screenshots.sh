#!/bin/sh
# Pictures of the example at two sizes: scripts/wine32 examples/forms/screenshots.sh PROGRAM FOLDER
# They are taken from the real windows on the display that scripts/wine32 brings along.
set -eu
program=$1
folder=$2
printf '5:4\r\n' >"$(dirname "$program")/LargeFonts.txt"

# What is on the display, without the plain desktop around it.
shoot() { # FILE
  import -window root "$1" && convert "$1" -trim +repage +dither -colors 128 "PNG8:$1" 2>/dev/null
}

take() { # WIDTH HEIGHT FILE
  # A desktop of Wine's own draws the frames of its windows, which nobody else here would.
  wine explorer /desktop=forms,1280x1024 "$program" "$1" "$2" &
  attempt=0
  until shoot "$folder/$3" && [ "$(identify -format %w "$folder/$3")" -ge "$1" ] &&
    [ "$(identify -format %w "$folder/$3")" -lt 1280 ]; do
    attempt=$((attempt + 1))
    [ "$attempt" -lt 100 ] || { echo "screenshots.sh: the windows do not come" >&2; exit 1; }
    sleep 0.2
  done
  sleep 2 # painted
  shoot "$folder/$3"
  wineserver -k
  wait
}

take 640 240 forms-640.png
take 1000 240 forms-1000.png
