#include "app/context/k.h"
#include "tests/support/text.h"

#include <QFile>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QtTest>

/// What the program relies on when it prints to a file, on a machine without any printer.
class TestPrinting : public QObject
{
    Q_OBJECT

private slots:
    void printsTextToA4Pages()
    {
        K::instance()->initApplication(qGuiApp);
        QTemporaryDir folder;
        const QString path = folder.filePath("明细制作单.pdf"_s);
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setOutputFileName(path);
        QTextDocument document;
        document.setHtml("<h1>婚纱照</h1>"_s + "<p>张三 李四</p>"_s.repeated(200));
        document.print(&printer);

        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const QString pdf(QLatin1String(bytes.constData(), bytes.size()));
        QVERIFY(pdf.startsWith("%PDF-"_s));
        QVERIFY(pdf.trimmed().endsWith("%%EOF"_s));
        const QRegularExpression box("/MediaBox \\[0 0 (\\d+)(?:\\.\\d+)? (\\d+)(?:\\.\\d+)?\\]"_s);
        int pages = 0;
        for (auto found = box.globalMatch(pdf); found.hasNext(); ++pages) {
            const auto match = found.next();
            QCOMPARE(match.captured(1).toInt(), 595);
            QCOMPARE(match.captured(2).toInt(), 842);
        }
        QVERIFY(pages > 1);
        QVERIFY(pdf.contains("/FontFile2"_s)); // the glyphs go along
    }
};

QTEST_MAIN(TestPrinting)
#include "test_printing.moc"
