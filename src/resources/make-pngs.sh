#!/bin/sh
# Makes every PNG in icons/ from its drawing in svg/. Needs rsvg-convert (Debian: librsvg2-bin).
# The PNGs are checked in, so that a build doesn't need it: run this after changing a drawing.
set -eu
cd "$(dirname "$0")"

BUTTON_SIZE=96        # the buttons show 24, at 144 dpi 36 pixels
SMALL_SIZES="16 32"
LARGE_SIZES="48 64 128 256"

render() { # drawing width height picture
    rsvg-convert --width "$2" --height "$3" --output "icons/$4.png" "svg/$1.svg"
}

mkdir -p icons
render logo 180 60 logo-180x60-transparent
for name in player_play player_pause arrow_up arrow_down arrow_left arrow_right; do
    render $name $BUTTON_SIZE $BUTTON_SIZE $name
done
for size in $SMALL_SIZES; do
    render tk7-control-small "$size" "$size" "tk7-control-$size"
done
render tk7-control-24 24 24 tk7-control-24
for size in $LARGE_SIZES; do
    render tk7-control "$size" "$size" "tk7-control-$size"
done
cp icons/tk7-control-256.png icons/tk7-control.png
