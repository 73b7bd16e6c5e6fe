#!/usr/bin/env bash
# Draws every picture of the program from resources/vector: the PNG files in resources/pictures and resources/icons.
#
#   resources/draw.sh            draws everything
#
# Needs rsvg-convert (package librsvg2-bin) and ImageMagick's convert (package imagemagick). The files hold no dates
# and no other notes, so that the same sources give the same bytes every time.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
vector=$here/vector
pictures=$here/pictures
icons=$here/icons

missing=
command -v rsvg-convert >/dev/null || missing+=" rsvg-convert (package librsvg2-bin)"
command -v convert >/dev/null || missing+=" convert (package imagemagick)"
if [ -n "$missing" ]; then
    echo "draw.sh: cannot draw without:$missing" >&2
    exit 1
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$pictures" "$icons"

# Writes the picture $1 to the file $2 with the PNG type $3 and nothing in the file but its pixels.
save() {
    convert "$1" -strip -define png:exclude-chunks=all -define png:compression-level=9 "PNG$3:$2"
}

# Draws the vector file $1 at $2 x $3 pixels into the file $4, with transparency.
draw() {
    rsvg-convert -w "$2" -h "$3" "$1" -o "$work/drawn.png"
    save "$work/drawn.png" "$4" 32
}

# The piece sheets. Every piece is drawn 16 times too large; averaging 16 x 16 blocks then gives each pixel's colour and
# how much of it the piece covers. A pixel belongs to the piece when at least half of it is covered: the mask has no
# shades. The outermost pixels are mixed with a grey between the two square colours, which takes the hardness from the
# outline; everything outside is pure white.
draw_pieces() {
    local side piece row scale=16
    for side in white black; do
        row=()
        for piece in pawn knight bishop rook queen king; do
            sed '/xml-stylesheet/d' "$vector/pieces/$piece.svg" |
                rsvg-convert --stylesheet="$vector/pieces/$side.css" -w $((41 * scale)) -h $((41 * scale)) \
                    -o "$work/$side-$piece.png"
            row+=("$work/$side-$piece.png")
        done
        convert "${row[@]}" +append "$work/$side.png"
    done
    convert "$work/white.png" "$work/black.png" -append -filter Box -resize 246x82! "PNG64:$work/sheet.png"
    convert "$work/sheet.png" -alpha extract -threshold 49.9% "$work/mask.png"
    convert "$work/sheet.png" -background '#5c5c5c' -alpha remove -alpha off -colorspace Gray "$work/grey.png"
    convert -size 246x82 xc:white "$work/grey.png" "$work/mask.png" -composite -colorspace Gray -depth 8 "$work/o_ppic.png"
    convert "$work/o_ppic.png" -strip -define png:exclude-chunks=all -define png:color-type=0 -define png:bit-depth=8 \
        -define png:compression-level=9 "$pictures/o_ppic.png"
    convert "$work/mask.png" -strip -define png:exclude-chunks=all -define png:color-type=0 -define png:bit-depth=1 \
        -define png:compression-level=9 "$pictures/m_ppic.png"
}

# The toolbar images, at every size that a zoom shows them in, on plain screens and on those with two pixels a point.
# The smallest has drawings of its own, whose edges lie on whole pixels.
draw_toolbar() {
    local index size
    for index in 0 1 2 3 4 5; do
        draw "$vector/toolbar/poke$index-12.svg" 12 12 "$pictures/poke${index}_12.png"
        for size in 16 20 24 28 32 36 40 64 80; do
            draw "$vector/toolbar/poke$index.svg" $size $size "$pictures/poke${index}_$size.png"
        done
    done
}

# The skins keep the size they are drawn in.
draw_skins() {
    local file
    for file in "$vector"/button/*.svg "$vector"/message/*.svg; do
        rsvg-convert "$file" -o "$work/drawn.png"
        save "$work/drawn.png" "$pictures/$(basename "$file" .svg).png" 32
    done
}

draw_icons() {
    local size
    for size in 16 24; do
        draw "$vector/quarnel-chess-small.svg" $size $size "$icons/quarnel-chess-$size.png"
    done
    for size in 32 48 64 128 256; do
        draw "$vector/quarnel-chess.svg" $size $size "$icons/quarnel-chess-$size.png"
    done
}

draw_pieces
draw_toolbar
draw_skins
draw_icons
