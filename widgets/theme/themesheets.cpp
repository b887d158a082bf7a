#include "widgets/theme/themesheets.h"

#include "app/context/k.h"
#include "widgets/theme/sizes.h"

#include <QRegularExpression>

namespace theme::sheets {

QString scaled(QString sheet)
{
    static const QRegularExpression designPixels(QStringLiteral("\\b(\\d+)dp\\b"));
    sheet.replace(QLatin1String("@text"), QString::number(textSize()) + QStringLiteral("px"));
    QRegularExpressionMatch match;
    qsizetype from = 0;
    while ((from = sheet.indexOf(designPixels, int(from), &match)) >= 0) {
        const QString pixels = K::scaledPxString(match.captured(1).toInt()) + QStringLiteral("px");
        sheet.replace(int(from), match.capturedLength(), pixels);
        from += pixels.size();
    }
    return sheet;
}

QString padding(int vertical, int horizontal, int border)
{
    return QStringLiteral("padding: %1px %2px;")
        .arg(K::scaledPx(vertical) - border)
        .arg(K::scaledPx(horizontal) - border);
}

} // namespace theme::sheets
