#include "distribution/sheet/sheetwriting.h"

#include "distribution/plan/distributionplan.h"
#include "files/paths.h"

#include <QUrl>

namespace sheetwriting {

namespace {

QString image(const QString &path, const QSize &size, const QString &fragment = {})
{
    QUrl url = QUrl::fromLocalFile(path);
    if (!fragment.isEmpty())
        url.setFragment(fragment);
    return QStringLiteral("<img src=\"%1\" width=\"%2\" height=\"%3\">")
        .arg(QString::fromLatin1(url.toEncoded()).toHtmlEscaped(), QString::number(size.width()),
             QString::number(size.height()));
}

} // namespace

QString escaped(const QString &text)
{
    QString html = text.toHtmlEscaped();
    html.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    html.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return html.replace(QLatin1Char('\n'), QLatin1String("<br>"));
}

QString joinedWords(const QStringList &words)
{
    QStringList present = words;
    present.removeAll(QString());
    return present.join(QLatin1Char(' '));
}

QString span(const char *styleClass, const QString &text)
{
    return QStringLiteral("<span class=\"") + QLatin1String(styleClass) + QStringLiteral("\">") +
           escaped(text) + QStringLiteral("</span>");
}

QString sectionTitle(const QString &title)
{
    return QStringLiteral("<p align=\"left\">") + span("style2", title) + QStringLiteral("</p>");
}

QString borderedTable()
{
    return QStringLiteral("<table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"1\""
                          " style=\"border-collapse: collapse;\">");
}

QString inOrderFolder(const SheetInput &input, const QString &folder, const QString &name)
{
    return joinLocalPath(joinLocalPath(input.orderFolder, folder), name);
}

QString thumbnailPath(const SheetInput &input, const DetailPhoto &photo)
{
    return input.pictures.find(thumbnailSource(photo), photo.imgName);
}

QString squarePicture(const SheetInput &input, const QString &path, int side)
{
    const bool isThere = !path.isEmpty() && !input.sizeOf(path).isEmpty();
    return isThere ? image(path, QSize(side, side), squareMark) : QString();
}

QString fittedPicture(const SheetInput &input, const QString &path, const QSize &box)
{
    const QSize size = input.sizeOf(path);
    return size.isEmpty() ? QString() : image(path, size.scaled(box, Qt::KeepAspectRatio));
}

} // namespace sheetwriting
