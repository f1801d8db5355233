#!/bin/sh
# Draws SalesDesk's icon, three rising bars on a blue tile: Icon.sh CONVERT FILE
set -eu
convert=$1
file=$2

"$convert" -size 256x256 xc:none -fill '#24527f' -draw 'roundrectangle 8,8 247,247 44,44' \
  -fill '#9cc4ec' -draw 'rectangle 56,150 92,206' \
  -fill '#c9e0f6' -draw 'rectangle 110,106 146,206' \
  -fill '#ffffff' -draw 'rectangle 164,56 200,206' \
  -strip -define icon:auto-resize=48,32,16 "$file"
