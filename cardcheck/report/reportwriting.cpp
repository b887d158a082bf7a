#include "cardcheck/report/reportwriting.h"

#include "files/filewriting.h"

#include <QFile>
#include <QPrinter>
#include <QTextDocument>

#include <algorithm>

namespace reportwriting {

namespace {

constexpr double marginMm = 12;
constexpr int textPoints = 9;

/// Printing does not say whether it could write everything; the end of the file does.
bool isWholePdf(const QString &path)
{
    QFile file(path);
    constexpr qint64 tail = 32;
    return file.open(QIODevice::ReadOnly) && file.seek(std::max(qint64(0), file.size() - tail)) &&
           file.readAll().contains("%%EOF");
}

bool print(const QString &html, const QString &path)
{
    QTextDocument document;
    QFont font = document.defaultFont();
    font.setPointSize(textPoints);
    document.setDefaultFont(font);
    document.setHtml(html);
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageMargins(QMarginsF(marginMm, marginMm, marginMm, marginMm),
                           QPageLayout::Millimeter);
    document.print(&printer);
    return isWholePdf(path);
}

} // namespace

bool writePdf(const reportcontent::Report &report, const QString &path)
{
    return mayReplace(path) && writeWholeFile(path, [&report](const QString &temporary) {
               return print(reportcontent::html(report), temporary);
           });
}

bool writeCsv(const reportcontent::Report &report, const QString &path)
{
    return writeBytes(path, reportcontent::csvTable(report));
}

} // namespace reportwriting
