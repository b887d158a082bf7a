#include "widgets/theme/plaintext.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

namespace {

QString escaped(const QString &text)
{
    return QStringLiteral("<p style='white-space:pre-wrap'>") +
           text.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")) +
           QStringLiteral("</p>");
}

/// Shows those tips of a view, or of its header, that the framework would take for markup.
class MarkupTips : public QObject
{
public:
    explicit MarkupTips(QAbstractItemView *view) : QObject(view), view_(view)
    {
        view->viewport()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::ToolTip || !view_->model())
            return false;
        const auto *help = static_cast<QHelpEvent *>(event);
        const QString tip = tipAt(help->pos());
        if (!Qt::mightBeRichText(tip))
            return false;
        QToolTip::showText(help->globalPos(), plainTip(tip), view_->viewport());
        return true;
    }

private:
    QString tipAt(const QPoint &position) const
    {
        const auto *header = qobject_cast<QHeaderView *>(view_);
        if (!header)
            return view_->indexAt(position).data(Qt::ToolTipRole).toString();
        const int section = header->logicalIndexAt(position);
        return header->model()
            ->headerData(section, header->orientation(), Qt::ToolTipRole)
            .toString();
    }

    QAbstractItemView *view_;
};

} // namespace

PlainLabel::PlainLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

PlainLabel::PlainLabel(const QString &text, QWidget *parent) : PlainLabel(parent)
{
    setText(text);
}

void setPlainTip(QWidget *widget, const QString &text)
{
    widget->setToolTip(plainTip(text));
}

void showPlainTip(const QPoint &globalPosition, const QString &text, QWidget *widget)
{
    QToolTip::showText(globalPosition, escaped(text), widget);
}

QString plainTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? escaped(text) : text;
}

void showTipsPlainly(QAbstractItemView *view)
{
    const auto headers = view->findChildren<QHeaderView *>();
    for (QHeaderView *header : headers)
        new MarkupTips(header);
    new MarkupTips(view);
}
