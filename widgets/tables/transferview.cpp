#include "widgets/tables/transferview.h"

#include "app/context/k.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int barPx = 6;
constexpr int allSteps = 1000;

int stepsOf(const TransferProgress &progress)
{
    return int(allSteps * progress.share());
}

/// A line that is too long is cut, with the whole of it as tool tip; it asks for no room.
QLabel *line(const char *name, QWidget *parent)
{
    auto *label = new PlainLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

void write(QLabel *label, const QString &text)
{
    label->setText(text);
    setPlainTip(label, text);
}

} // namespace

TransferView::TransferView(QWidget *parent)
    : QWidget(parent)
    , label_(line("progressLabel", this))
    , current_(line("progressCurrent", this))
    , bar_(new QProgressBar(this))
    , failures_(new QPushButton(this))
{
    current_->setStyleSheet(theme::hintStyle());
    bar_->setObjectName(QStringLiteral("progressBar"));
    bar_->setTextVisible(false);
    bar_->setRange(0, allSteps);
    bar_->setFixedHeight(K::scaledPx(barPx));
    bar_->setStyleSheet(theme::progressBarStyle());
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing() / 2);
    failures_->setObjectName(QStringLiteral("failuresButton"));
    failures_->setStyleSheet(theme::textButtonStyle());
    connect(failures_, &QPushButton::clicked, this, &TransferView::failuresClicked);
    setFailures(0);
    auto *top = new QHBoxLayout;
    top->setSpacing(theme::spacing());
    top->addWidget(label_, 1);
    top->addWidget(failures_);
    layout->addLayout(top);
    layout->addWidget(bar_);
    layout->addWidget(current_);
    hide();
}

void TransferView::showProgress(const TransferProgress &progress, const TransferRate &rate)
{
    showLine(progressText(progress, rate), currentText(progress), stepsOf(progress));
}

void TransferView::showPaused(const TransferProgress &progress)
{
    showLine(pausedText(progress), currentText(progress), stepsOf(progress));
}

void TransferView::showRest(const QString &text)
{
    showLine(text, {}, allSteps);
}

void TransferView::setFailures(int count)
{
    failures_->setText(QStringLiteral("失败 %1，查看").arg(count));
    failures_->setVisible(count > 0);
}

void TransferView::showLine(const QString &text, const QString &current, int steps)
{
    write(label_, text);
    write(current_, current);
    current_->setVisible(!current.isEmpty());
    bar_->setValue(steps);
    show();
}

void showRunButton(QPushButton *button, const QString &text, const QString &style)
{
    button->setText(text);
    button->setShortcut(Qt::CTRL + Qt::Key_Return); // a new text takes the shortcut away
    setPlainTip(button, button->shortcut().toString(QKeySequence::NativeText));
    button->setStyleSheet(style);
}
