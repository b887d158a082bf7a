#include "orderbrowser/window/exportdialog.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/frame/titlebar.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/theme/theme.h"

#include <QBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

namespace {

constexpr int widthPx = 340;

} // namespace

ExportDialog::ExportDialog(QWidget *parent, int shown, int selected, bool masksPhones)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint)
    , all_(new QRadioButton(QStringLiteral("全部显示的行（%1 行）").arg(shown), this))
    , selected_(new QRadioButton(QStringLiteral("所选的行（%1 行）").arg(selected), this))
    , phones_(new CustomCheckBoxNew(QStringLiteral("含完整电话"), this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("导出"));
    setStyleSheet(theme::windowStyle());
    all_->setObjectName(QStringLiteral("allRowsButton"));
    selected_->setObjectName(QStringLiteral("selectedRowsButton"));
    phones_->setObjectName(QStringLiteral("wholePhonesBox"));
    // A single selected row is where the cursor stands rather than a choice.
    (selected > 1 ? selected_ : all_)->setChecked(true);
    selected_->setEnabled(selected > 0);
    phones_->setChecked(!masksPhones);
    phones_->setEnabled(masksPhones);
    auto *bar = new TitleBar(this);
    bar->setTitle(windowTitle());
    connect(bar, &TitleBar::closeRequested, this, &QDialog::reject);

    auto *cancel = new QPushButton(QStringLiteral("取消"), this);
    cancel->setStyleSheet(theme::secondaryButtonStyle());
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *accept = new QPushButton(QStringLiteral("导出..."), this);
    accept->setObjectName(QStringLiteral("exportAcceptButton"));
    accept->setStyleSheet(theme::primaryButtonStyle());
    accept->setDefault(true);
    connect(accept, &QPushButton::clicked, this, [this] {
        emit chosen(selected_->isChecked(), phones_->isChecked());
        QDialog::accept();
    });
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(accept);

    auto *content = new QVBoxLayout;
    content->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    content->setSpacing(theme::spacing());
    content->addWidget(all_);
    content->addWidget(selected_);
    content->addSpacing(theme::spacing());
    content->addWidget(phones_);
    content->addSpacing(theme::spacing());
    content->addLayout(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addLayout(content);
    setMinimumWidth(K::scaledPx(widthPx));
}

void ExportDialog::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(colours::toColor(colours::outline));
    painter.setBrush(colours::toColor(colours::surface));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}
