#include "widgets/windows/sharedwidth.h"

#include "app/context/choices.h"
#include "app/context/logging.h"
#include "widgets/theme/theme.h"

#include <QDebug>

#include <utility>

namespace {

QString choiceOf(const QString &tool)
{
    return QStringLiteral("splitter/") + tool;
}

} // namespace

SharedWidth::SharedWidth(QWidget *first, QWidget *second, std::function<int(int width)> usual)
    : QSplitter(Qt::Horizontal), usual_(std::move(usual))
{
    setStyleSheet(theme::splitterStyle());
    addWidget(first);
    addWidget(second);
    setChildrenCollapsible(false);
    connect(this, &QSplitter::splitterMoved, this, &SharedWidth::keep);
}

void SharedWidth::open(const QString &tool)
{
    tool_ = tool;
    share_ = 0;
    const QString kept = choices::remembered(choiceOf(tool_));
    bool isNumber = false;
    const double share = kept.toDouble(&isNumber);
    if (isNumber && share > 0 && share < 1)
        share_ = share;
    else if (!kept.isEmpty())
        qCWarning(lcTessavo) << "the parts of" << tool_ << "are shared as usual, not" << kept;
    this->share();
}

void SharedWidth::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    share();
}

void SharedWidth::share()
{
    const int all = width() - handleWidth();
    const int first = qBound(0, share_ > 0 ? qRound(all * share_) : usual_(all), all);
    setSizes({first, all - first});
}

void SharedWidth::keep()
{
    const QList<int> parts = sizes();
    const int all = parts.value(0) + parts.value(1);
    if (all <= 0)
        return;
    share_ = double(parts.at(0)) / all;
    if (!tool_.isEmpty())
        choices::remember(choiceOf(tool_), QString::number(share_, 'f', 4));
}
