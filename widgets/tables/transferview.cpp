#include "widgets/tables/transferview.h"

#include "app/context/k.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int barPx = 6;
constexpr int allSteps = 1000;

int stepsOf(const TransferProgress &progress)
{
    return progress.bytesTotal > 0 ? int(allSteps * progress.bytesDone / progress.bytesTotal) : 0;
}

} // namespace

TransferView::TransferView(QWidget *parent)
    : QWidget(parent), label_(new PlainLabel(this)), bar_(new QProgressBar(this))
{
    label_->setObjectName(QStringLiteral("progressLabel"));
    // A line that is too long is cut, with the whole of it as tool tip; it asks for no room.
    label_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    bar_->setObjectName(QStringLiteral("progressBar"));
    bar_->setTextVisible(false);
    bar_->setRange(0, allSteps);
    bar_->setFixedHeight(K::scaledPx(barPx));
    bar_->setStyleSheet(theme::progressBarStyle());
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing() / 2);
    layout->addWidget(label_);
    layout->addWidget(bar_);
    hide();
}

void TransferView::showProgress(const TransferProgress &progress, const TransferRate &rate)
{
    showLine(progressText(progress, rate), stepsOf(progress));
}

void TransferView::showPaused(const TransferProgress &progress)
{
    showLine(pausedText(progress), stepsOf(progress));
}

void TransferView::showRest(const QString &text)
{
    showLine(text, allSteps);
}

void TransferView::showLine(const QString &text, int steps)
{
    label_->setText(text);
    setPlainTip(label_, text);
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
