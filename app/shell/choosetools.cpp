#include "app/shell/choosetools.h"

#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/shell/cardgrid.h"
#include "app/shell/toolcardwidget.h"
#include "look/colours.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/frame/titlebar.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

QLabel *label(const QString &text, const QString &name, int size, QRgb colour)
{
    auto *made = new PlainLabel(text);
    made->setObjectName(name);
    made->setStyleSheet(QStringLiteral("color: %1; font-size: %2px;")
                            .arg(colours::css(colour), QString::number(size)));
    return made;
}

} // namespace

ChooseTools::ChooseTools(QWidget *parent, const QVector<Tool> &tools)
    : FramelessWindow(parent)
    , tools_(tools)
    , windows_(ToolWindows::create(
          tools + QVector<Tool>{orderBrowser(), cardCheck(), history(), settings()}))
{
    setWindowTitle(QStringLiteral("Tessavo"));
    titleBar()->setPlain(true);

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(K::scaledPx(36), 0, K::scaledPx(36), K::scaledPx(20));
    layout->setSpacing(K::scaledPx(24));
    layout->addWidget(header());
    layout->addWidget(cards(), 1);
    layout->addWidget(footer());
    setContent(content);
    placeOnScreen();

    connect(this, &FramelessWindow::minimizeRequested, this, &ChooseTools::onMinimizeButtonClicked);
    // In the place of the window's own way, which would close it a second time.
    disconnect(titleBar(), &TitleBar::closeRequested, this, nullptr);
    connect(titleBar(), &TitleBar::closeRequested, this, &ChooseTools::onCloseButtonClicked);
}

QWidget *ChooseTools::header() const
{
    auto *header = new QWidget;
    auto *layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    QLabel *logo = label(QStringLiteral("Tessavo"), QStringLiteral("logoLabel"), K::scaledPx(30),
                         colours::accent);
    QFont bold = logo->font();
    bold.setBold(true);
    logo->setFont(bold);
    QLabel *slogan = label(QStringLiteral("每一张照片，都稳妥到位"), QStringLiteral("sloganLabel"),
                           theme::headingSize(), colours::muted);
    for (QLabel *line : {logo, slogan}) {
        line->setAlignment(Qt::AlignCenter);
        layout->addWidget(line);
    }
    return header;
}

QWidget *ChooseTools::cards()
{
    auto *grid = new CardGrid;
    for (const Tool &tool : qAsConst(tools_)) {
        auto *card = new ToolCardWidget(tool.label, tool.icon);
        card->setEnabled(bool(tool.makeWindow));
        if (!tool.makeWindow)
            setPlainTip(card, QStringLiteral("当前版本尚未提供“%1”").arg(tool.label));
        connect(card, &ToolCardWidget::clicked, this, &ChooseTools::onToolClicked);
        connect(card, &ToolCardWidget::doubleClicked, this, &ChooseTools::onToolDoubleClicked);
        grid->addCard(card);
    }
    auto *scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(grid);
    scroll->viewport()->setAutoFillBackground(false);
    grid->setAutoFillBackground(false);
    connect(grid, &CardGrid::focusMoved, scroll,
            [scroll](QWidget *card) { scroll->ensureWidgetVisible(card); });
    return scroll;
}

/// Opens a tool that has no card.
QPushButton *ChooseTools::footButton(const Tool &tool, const QString &name, const QString &keys)
{
    auto *button = new QPushButton(tool.label);
    button->setObjectName(name);
    button->setStyleSheet(theme::secondaryButtonStyle());
    button->setShortcut(QKeySequence(keys));
    setPlainTip(button, keys);
    connect(button, &QPushButton::clicked, this,
            [this, label = tool.label] { windows_->open(label); });
    return button;
}

QWidget *ChooseTools::footer()
{
    auto *footer = new QWidget;
    auto *layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label(QStringLiteral("双击图标打开工具"), QStringLiteral("hintLabel"),
                            K::scaledPx(12), colours::muted));
    layout->addStretch();
    layout->addWidget(
        footButton(orderBrowser(), QStringLiteral("orderListButton"), QStringLiteral("Ctrl+L")));
    layout->addWidget(
        footButton(cardCheck(), QStringLiteral("cardCheckButton"), QStringLiteral("Ctrl+K")));
    layout->addWidget(
        footButton(history(), QStringLiteral("historyButton"), QStringLiteral("Ctrl+H")));
    layout->addWidget(
        footButton(settings(), QStringLiteral("settingsButton"), QStringLiteral("Ctrl+,")));
    layout->addStretch();
    layout->addWidget(label(QStringLiteral("版本信息：") + AccountContext::appVersion,
                            QStringLiteral("versionLabel"), K::scaledPx(12), colours::muted));
    return footer;
}

void ChooseTools::placeOnScreen()
{
    resize(QSize(K::scaledPx(720), K::scaledPx(500)));
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    QRect place(QPoint(), size().boundedTo(available.size()));
    place.moveCenter(available.center());
    setGeometry(place);
}

void ChooseTools::onToolClicked()
{
    // Opening takes a double click; a single one only moves the focus.
}

void ChooseTools::onToolDoubleClicked(const QString &name)
{
    windows_->open(name);
}

void ChooseTools::onCloseButtonClicked()
{
    close();
}

void ChooseTools::onMinimizeButtonClicked()
{
    MacWindowManager::instance()->minimizeOrFallBack(this);
}
