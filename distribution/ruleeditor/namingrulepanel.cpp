#include "distribution/ruleeditor/namingrulepanel.h"

#include "app/context/accountcontext.h"
#include "distribution/ruleeditor/foldernamingrule.h"
#include "net/servicecall.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

NamingRulePanel::NamingRulePanel(QWidget *parent)
    : QWidget(parent)
    , identity_(orderqueries::Identity::fromAccount())
    , editor_(new FolderNamingRule(this))
    , unsaved_(new PlainLabel(QStringLiteral("未保存"), this))
    , resetButton_(new QPushButton(QStringLiteral("重置"), this))
    , saveButton_(new QPushButton(QStringLiteral("保存"), this))
{
    auto *heading = new PlainLabel(QStringLiteral("产品文件夹"), this);
    heading->setStyleSheet(theme::headingStyle());
    heading->setIndent(0);
    unsaved_->setObjectName(QStringLiteral("unsavedRule"));
    unsaved_->setStyleSheet(theme::warningStyle());
    resetButton_->setObjectName(QStringLiteral("resetRuleButton"));
    resetButton_->setStyleSheet(theme::secondaryButtonStyle());
    resetButton_->setToolTip(QStringLiteral("恢复为本店上次读取的规则"));
    saveButton_->setObjectName(QStringLiteral("saveRuleButton"));
    saveButton_->setStyleSheet(theme::primaryButtonStyle());

    auto *top = new QHBoxLayout;
    top->setSpacing(theme::spacing());
    top->addWidget(heading);
    top->addWidget(unsaved_);
    top->addStretch();
    top->addWidget(resetButton_);
    top->addWidget(saveButton_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addLayout(top);
    layout->addWidget(editor_);

    connect(resetButton_, &QPushButton::clicked, editor_, &FolderNamingRule::reset);
    connect(editor_, &FolderNamingRule::ruleChanged, this, &NamingRulePanel::showUnsaved);
    showUnsaved();
    connect(saveButton_, &QPushButton::clicked, this, &NamingRulePanel::save);
}

bool NamingRulePanel::isUnsaved() const
{
    return !(editor_->rule() == editor_->loadedRule());
}

void NamingRulePanel::showUnsaved()
{
    unsaved_->setVisible(isUnsaved());
}

void NamingRulePanel::save()
{
    saveButton_->setEnabled(false);
    const namingrule::Rule rule = editor_->rule();
    const QString shopId = identity_.shopId;
    callService(this, namingrule::saveAction, namingrule::saveBody(rule, identity_),
                [this, rule, shopId](const ServiceReply &reply) { onSaved(reply, shopId, rule); });
}

void NamingRulePanel::onSaved(const ServiceReply &reply, const QString &shopId,
                              const namingrule::Rule &rule)
{
    saveButton_->setEnabled(true);
    switch (reply.outcome) {
    case ServiceReply::Outcome::Success:
        break;
    case ServiceReply::Outcome::Refused:
        MessageBox::warning(this, reply.msg.isEmpty() ? QStringLiteral("提交失败") : reply.msg);
        return;
    case ServiceReply::Outcome::NoAnswer:
        MessageBox::warning(this, QStringLiteral("提交失败"));
        return;
    case ServiceReply::Outcome::CertificateRefused:
        showCertificateRefused(this, reply.message);
        return;
    }
    // Whoever comes back to this branch meets what is stored now.
    for (ShopRecord &shop : AccountContext::shopList) {
        if (shop.id == shopId)
            shop.goodsfoldernamerule = namingrule::toText(rule);
    }
    if (shopId == identity_.shopId)
        editor_->markSaved(rule);
    showUnsaved();
    Toast::show(this, QStringLiteral("提交成功"));
}
