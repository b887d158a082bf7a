#include "distribution/window/proofpanel.h"

#include "app/context/k.h"
#include "distribution/proof/prooftext.h"
#include "look/colours.h"
#include "widgets/boxes/toast.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <limits>

namespace {

constexpr int listPx = 96;
constexpr int filesShown = 500;

} // namespace

ProofPanel::ProofPanel(QWidget *parent)
    : QWidget(parent)
    , headline_(new PlainLabel(this))
    , putAway_(new QPushButton(this))
    , lines_(new QPlainTextEdit(this))
{
    headline_->setObjectName(QStringLiteral("proofHeadline"));
    headline_->setWordWrap(true);
    putAway_->setObjectName(QStringLiteral("putAwayButton"));
    putAway_->setAccessibleName(QStringLiteral("移到旧文件"));
    putAway_->setStyleSheet(theme::secondaryButtonStyle());
    setPlainTip(
        putAway_,
        QStringLiteral("移到订单文件夹中的“旧文件”；之后变化过的、不是本程序写入的文件不动"));
    auto *copy = new QPushButton(QStringLiteral("复制"), this);
    copy->setObjectName(QStringLiteral("copyProofButton"));
    copy->setStyleSheet(theme::secondaryButtonStyle());
    lines_->setObjectName(QStringLiteral("proofList"));
    lines_->setAccessibleName(QStringLiteral("缺少和多余的文件"));
    lines_->setStyleSheet(theme::listStyle());
    lines_->setReadOnly(true);
    lines_->setTabChangesFocus(true);
    lines_->setFixedHeight(K::scaledPx(listPx));

    auto *top = new QHBoxLayout;
    top->setSpacing(theme::spacing());
    top->addWidget(headline_, 1);
    top->addWidget(putAway_);
    top->addWidget(copy);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addLayout(top);
    layout->addWidget(lines_);
    hide();

    connect(copy, &QPushButton::clicked, this, [this] {
        const QStringList all = prooftext::lines(orders_, std::numeric_limits<int>::max());
        QGuiApplication::clipboard()->setText(all.join(QLatin1Char('\n')));
        Toast::show(this, QStringLiteral("核对结果已复制"));
    });
    connect(putAway_, &QPushButton::clicked, this, [this] { emit putAwayRequested(orders_); });
}

void ProofPanel::clear()
{
    orders_.clear();
    hide();
}

void ProofPanel::showProofs(const QVector<ProvedOrder> &orders)
{
    orders_ = orders;
    headline_->setText(QStringLiteral("核对: ") + prooftext::headline(orders));
    headline_->setStyleSheet(prooftext::isComplete(orders)
                                 ? QStringLiteral("color: %1;").arg(colours::css(colours::success))
                                 : theme::warningStyle());
    lines_->setPlainText(prooftext::lines(orders, filesShown).join(QLatin1Char('\n')));
    const int earlier = prooftext::earlierCount(orders);
    putAway_->setText(QStringLiteral("移到旧文件 (%1)").arg(earlier));
    putAway_->setVisible(earlier > 0);
    setVisible(!orders.isEmpty());
}

void ProofPanel::setBusy(bool busy)
{
    putAway_->setEnabled(!busy);
}

void ProofPanel::showPutAway(const QVector<PutAway> &results)
{
    setBusy(false);
    // Those that stayed have a reason to stay; the next run looks again.
    for (ProvedOrder &order : orders_)
        order.proof.earlier.clear();
    showProofs(orders_);
    lines_->appendPlainText(prooftext::putAway(results));
}
