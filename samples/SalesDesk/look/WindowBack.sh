#!/bin/sh
# Draws the background of the wizard's pages: WindowBack.sh CONVERT FILE
# Twice the size of a page (600 x 420), so that it stays sharp on dense displays. The tones lie close
# together, and the shapes in the lower right: text in the upper left stands on a quiet ground.
set -eu
convert=$1
file=$2

"$convert" -size 1200x840 -define gradient:angle=140 gradient:'#3a6c9e-#12263f' \
  -fill 'rgba(120,180,245,0.06)' \
  -draw 'circle 1130,800 1130,190' \
  -draw 'circle 1130,800 1130,330' \
  -draw 'circle 1130,800 1130,470' \
  -draw 'circle 1130,800 1130,610' \
  -fill 'rgba(6,18,38,0.16)' \
  -draw 'path "M 0,840 L 0,700 C 260,600 470,800 740,690 C 930,612 1050,640 1200,560 L 1200,840 Z"' \
  -fill none -stroke 'rgba(190,220,250,0.22)' -strokewidth 2 \
  -draw 'path "M 0,700 C 260,600 470,800 740,690 C 930,612 1050,640 1200,560"' \
  -strip -sampling-factor 4:4:4 -quality 95 "$file"
