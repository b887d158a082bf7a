#include "orderbrowser/window/exportdialog.h"

#include "app/context/k.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/theme/theme.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QRadioButton>

namespace {

constexpr int widthPx = 340;

} // namespace

ExportDialog::ExportDialog(QWidget *parent, int shown, int selected, bool masksPhones)
    : FramelessDialog(parent, QStringLiteral("导出"))
    , all_(new QRadioButton(QStringLiteral("全部显示的行（%1 行）").arg(shown), this))
    , selected_(new QRadioButton(QStringLiteral("所选的行（%1 行）").arg(selected), this))
    , phones_(new CustomCheckBoxNew(QStringLiteral("含完整电话"), this))
{
    all_->setObjectName(QStringLiteral("allRowsButton"));
    selected_->setObjectName(QStringLiteral("selectedRowsButton"));
    phones_->setObjectName(QStringLiteral("wholePhonesBox"));
    // A single selected row is where the cursor stands rather than a choice.
    (selected > 1 ? selected_ : all_)->setChecked(true);
    selected_->setEnabled(selected > 0);
    phones_->setChecked(!masksPhones);
    phones_->setEnabled(masksPhones);
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

    content()->addWidget(all_);
    content()->addWidget(selected_);
    content()->addSpacing(theme::spacing());
    content()->addWidget(phones_);
    content()->addSpacing(theme::spacing());
    content()->addLayout(buttons);
    setMinimumWidth(K::scaledPx(widthPx));
}
