#!/bin/sh
# tour_pictures_test.sh FOLDER: the tour's pictures are there, as large as the window, and show something.
set -eu
failed=0
for name in list paused installing finished failed refused running up-to-date; do
  picture=$1/$name.png
  if [ ! -s "$picture" ]; then
    echo "$picture is missing"
    failed=1
    continue
  fi
  size=$(od -A n -t x1 -j 16 -N 8 "$picture" | tr -d ' ')
  [ "$size" = 0000037000000258 ] || { echo "$picture: not 880 x 600"; failed=1; }
  [ "$(wc -c <"$picture")" -gt 8000 ] || { echo "$picture: hardly anything on it"; failed=1; }
done
exit $failed
