#!/bin/sh
# Makes every PNG in icons/ from its drawing in svg/, and the icon of the Windows program of them.
# Needs rsvg-convert and convert (Debian: librsvg2-bin, imagemagick). What it makes is checked in, so
# that a build needs neither: run this after changing a drawing.
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
convert icons/tk7-control-16.png icons/tk7-control-24.png icons/tk7-control-32.png \
    icons/tk7-control-48.png icons/tk7-control-256.png icons/tk7-control.ico
