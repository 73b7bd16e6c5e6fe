// Fonts: the established names mapped to free ones, measured and drawn alike everywhere.
//
// All lengths are pixels at 96 dots an inch, whatever the screen says of itself, so the layout is the same on every
// desktop. A display with more pixels for each of them gets the text through a painter that is scaled: a font of
// another size has letters of other widths.
#pragma once

#include "platform/Form.h"

#include <QFont>
#include <QImage>
#include <QPainter>

namespace quarnel {

/// The font for `wanted`; for painting on images that SetDotsPerInch() was called for.
QFont FontFor(const FontChoice& wanted);

/// Lets the dots of `image` count 96 to the inch.
void SetDotsPerInch(QImage& image);

/// How the lines of `text` break and line up inside a box; line feeds and CR LF begin a new line.
struct TextStyle {
    Alignment Aligned = Alignment::Left;
    bool WordWrap = false;
};

/// The size of `text` when its lines wrap at `wrapWidth` (not at all when 0), blanks at their ends included.
Size MeasuredSize(const Text& text, const FontChoice& font, int wrapWidth);

/// Draws `text` into `box` from the top, cut off at its edges, in the painter's pen colour.
void DrawTextBox(QPainter& painter, const QRectF& box, const Text& text, const QFont& font, const TextStyle& style);

} // namespace quarnel
