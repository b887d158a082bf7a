#include "runreport/runfailure.h"

#include "files/csv.h"

#include <QStringList>

namespace runfailures {

static QStringList textsOf(const RunFailure &failure)
{
    QString reason = failure.reason;
    return {failure.orderName, failure.file,
            reason.replace(QLatin1Char('\n'), QStringLiteral("；"))};
}

bool matches(const RunFailure &failure, const QString &words)
{
    const QStringList sought = words.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString all = textsOf(failure).join(QLatin1Char('\n'));
    for (const QString &word : sought) {
        if (!all.contains(word, Qt::CaseInsensitive))
            return false;
    }
    return true;
}

QString text(const QVector<RunFailure> &failures)
{
    QStringList lines;
    for (const RunFailure &failure : failures)
        lines.append(textsOf(failure).join(QLatin1Char('\t')));
    return lines.join(QLatin1Char('\n'));
}

QByteArray csv(const QVector<RunFailure> &failures)
{
    QByteArray table = ::csv::mark() + ::csv::line({QStringLiteral("订单"), QStringLiteral("文件"),
                                                    QStringLiteral("原因")});
    for (const RunFailure &failure : failures)
        table += ::csv::line(textsOf(failure));
    return table;
}

} // namespace runfailures
