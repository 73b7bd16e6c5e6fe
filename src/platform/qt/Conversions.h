// The program's texts and pictures as the toolkit's, and back.
//
// An image made of a surface shares its pixels: the surface must outlive it and stay as it is.
#pragma once

#include "base/Text.h"
#include "platform/Surface.h"

#include <QColor>
#include <QImage>
#include <QString>

namespace quarnel {

inline QString ToQString(TextView text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline QColor ToQColor(Colour colour) {
    return QColor::fromRgb(colour | 0xFF000000U);
}

/// `format` is QImage::Format_RGB32 for opaque surfaces, Format_ARGB32 for those with an alpha byte.
inline QImage ImageOf(const Surface& surface, QImage::Format format) {
    return {reinterpret_cast<const uchar*>(surface.Pixels()), surface.Width(), surface.Height(), surface.Width() * 4,
            format};
}

} // namespace quarnel
