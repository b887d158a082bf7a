#include "widgets/windows/framelessdialog.h"

#include "look/colours.h"
#include "widgets/frame/titlebar.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/windowkeys.h"

#include <QPainter>
#include <QVBoxLayout>

FramelessDialog::FramelessDialog(QWidget *parent, const QString &title)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint)
    , content_(new QVBoxLayout)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setStyleSheet(theme::windowStyle());
    auto *bar = new TitleBar(this);
    bar->setMinimizable(false);
    bar->setMaximizable(false);
    bar->setTitle(title);
    connect(bar, &TitleBar::closeRequested, this, &QDialog::reject);
    addKeyList(this);

    const int margin = theme::margin();
    content_->setContentsMargins(margin, margin, margin, margin);
    content_->setSpacing(theme::spacing());
    auto *layout = new QVBoxLayout(this);
    const int border = theme::hairline();
    layout->setContentsMargins(border, border, border, border);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addLayout(content_, 1);
}

void FramelessDialog::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), colours::toColor(colours::outline));
    const int border = theme::hairline();
    painter.fillRect(rect().adjusted(border, border, -border, -border),
                     colours::toColor(colours::surface));
}
