#include "platform/qt/Fonts.h"

#include "platform/qt/Conversions.h"

#include <QFontMetricsF>
#include <QStringList>

#include <cmath>

namespace quarnel {

namespace {

struct FontFamilies {
    TextView Name;
    const char* Families; ///< the first that is installed is taken
};

constexpr FontFamilies FontTable[] = {
    {u"Arial", "Liberation Sans,Arial,Arimo,Helvetica,Sans Serif"},
    {u"Tahoma", "DejaVu Sans Condensed,Tahoma,DejaVu Sans,Sans Serif"},
    {u"Verdana", "DejaVu Sans,Verdana,Bitstream Vera Sans,Sans Serif"},
};

QStringList FamiliesOf(const Text& name) {
    for (const FontFamilies& entry : FontTable) {
        if (entry.Name == name) return QString::fromLatin1(entry.Families).split(u',');
    }
    return {ToQString(name), QStringLiteral("Sans Serif")};
}

int TextFlags(const TextStyle& style) {
    const int across = style.Aligned == Alignment::Left    ? Qt::AlignLeft
                       : style.Aligned == Alignment::Right ? Qt::AlignRight
                                                           : Qt::AlignHCenter;
    return across | Qt::AlignTop | Qt::TextIncludeTrailingSpaces | (style.WordWrap ? Qt::TextWordWrap : 0);
}

QString WithLineFeeds(const Text& text) {
    return ToQString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

} // namespace

QFont FontFor(const FontChoice& wanted) {
    QFont font;
    font.setFamilies(FamiliesOf(wanted.Name));
    font.setPointSizeF(wanted.Points);
    font.setBold(wanted.Bold);
    font.setStyleStrategy(static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

void SetDotsPerInch(QImage& image) {
    constexpr int DotsPerMetre = 3780; // 96 to the inch
    image.setDotsPerMeterX(DotsPerMetre);
    image.setDotsPerMeterY(DotsPerMetre);
}

Size MeasuredSize(const Text& text, const FontChoice& font, int wrapWidth) {
    QImage device(1, 1, QImage::Format_RGB32);
    SetDotsPerInch(device);
    const QFontMetricsF metrics(FontFor(font), &device);
    constexpr double Endless = 1 << 24;
    const QRectF room(0, 0, wrapWidth > 0 ? wrapWidth : Endless, Endless);
    const QRectF box = metrics.boundingRect(room, TextFlags({Alignment::Left, wrapWidth > 0}), WithLineFeeds(text));
    return {static_cast<int>(std::ceil(box.width())), static_cast<int>(std::ceil(box.height()))};
}

void DrawTextBox(QPainter& painter, const QRectF& box, const Text& text, const QFont& font, const TextStyle& style) {
    painter.setFont(font);
    painter.drawText(box, TextFlags(style), WithLineFeeds(text));
}

} // namespace quarnel
