#include "app/settings/settingswindow.h"

#include "app/context/installation.h"
#include "app/context/k.h"
#include "app/diagnosis/logring.h"
#include "app/settings/diagnosispage.h"
#include "app/settings/importpage.h"
#include "app/settings/storagepage.h"
#include "ledger/ledger.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QScrollArea>
#include <QStackedWidget>

SettingsWindow::SettingsWindow(QWidget *parent)
    : FramelessWindow(parent), names_(new PlainTips<QListWidget>), pages_(new QStackedWidget)
{
    setWindowTitle(QStringLiteral("设置"));
    names_->setObjectName(QStringLiteral("pageList"));
    names_->setAccessibleName(QStringLiteral("设置的页"));
    names_->setStyleSheet(theme::listStyle());
    names_->setFixedWidth(K::scaledPx(120));
    addPage(new ImportPage);
    const bool keepsLedger = Installation::current().keepsLedger;
    addPage(new StoragePage(keepsLedger ? Ledger::standardFolder() : QString(),
                            LogRing::standardFolder()));
    addPage(new DiagnosisPage(LogRing::standardFolder()));

    auto *content = new QWidget;
    auto *layout = new QHBoxLayout(content);
    const int margin = theme::margin();
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(theme::margin());
    layout->addWidget(names_);
    layout->addWidget(pages_, 1);
    setContent(content);
    connect(names_, &QListWidget::currentRowChanged, pages_, &QStackedWidget::setCurrentIndex);
    connect(this, &FramelessWindow::minimizeRequested, this,
            [this] { MacWindowManager::instance()->minimizeOrFallBack(this); });
    names_->setCurrentRow(0);
    resize(K::scaledPx(680), K::scaledPx(420));
}

void SettingsWindow::addPage(SettingsPage *page)
{
    auto *name = new QListWidgetItem(page->title(), names_);
    name->setSizeHint(QSize(0, theme::rowHeight()));
    auto *scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(page);
    scroll->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    pages_->addWidget(scroll);
}
