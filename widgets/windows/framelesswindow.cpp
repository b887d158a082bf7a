#include "widgets/windows/framelesswindow.h"

#include "look/colours.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/frame/edgegrip.h"
#include "widgets/frame/titlebar.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/windowkeys.h"

#include <QCloseEvent>
#include <QEventLoopLocker>
#include <QPainter>
#include <QPointer>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

// Without the system menu a window system refuses to move and to resize for us.
constexpr Qt::WindowFlags framelessFlags =
    Qt::Window | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint;

} // namespace

FramelessWindow::FramelessWindow(QWidget *parent)
    : QWidget(parent, framelessFlags), layout_(new QVBoxLayout(this)), titleBar_(new TitleBar(this))
{
    setStyleSheet(theme::windowStyle());
    const int border = theme::hairline();
    layout_->setContentsMargins(border, border, border, border);
    layout_->setSpacing(0);
    layout_->addWidget(titleBar_);
    layout_->addStretch();

    for (const Qt::Edges edges :
         {Qt::Edges(Qt::TopEdge), Qt::Edges(Qt::BottomEdge), Qt::Edges(Qt::LeftEdge),
          Qt::Edges(Qt::RightEdge), Qt::TopEdge | Qt::LeftEdge, Qt::TopEdge | Qt::RightEdge,
          Qt::BottomEdge | Qt::LeftEdge, Qt::BottomEdge | Qt::RightEdge})
        grips_.append(new EdgeGrip(edges, this));

    connect(titleBar_, &TitleBar::minimizeRequested, this, &FramelessWindow::minimizeRequested);
    connect(titleBar_, &TitleBar::closeRequested, this, &QWidget::close);
    connect(this, &QWidget::windowTitleChanged, titleBar_, &TitleBar::setTitle);
    auto *closeKeys = new QShortcut(QKeySequence(Qt::ALT + Qt::Key_F4), this);
    closeKeys->setWhatsThis(QStringLiteral("关闭窗口"));
    connect(closeKeys, &QShortcut::activated, this, &QWidget::close);
    titleBar_->showAction(addKeyList(this));
}

FramelessWindow::~FramelessWindow() = default;

void FramelessWindow::setContent(QWidget *content)
{
    delete content_;
    content_ = content;
    while (layout_->count() > 1)
        delete layout_->takeAt(1);
    layout_->addWidget(content, 1);
    placeGrips();
    titleButtonsLast();
}

void FramelessWindow::setWork(const WorkProgress &work)
{
    if (work == work_)
        return;
    work_ = work;
    emit workChanged(work_);
}

QRect FramelessWindow::contentArea() const
{
    return contentsRect()
        .marginsRemoved(layout_->contentsMargins())
        .adjusted(0, titleBar_->height(), 0, 0);
}

FramelessWindow::CloseAnswer FramelessWindow::closeRequested()
{
    return CloseAnswer::Close;
}

bool FramelessWindow::agreedToClose(const BoxText &question, const QString &subject)
{
    const QString asked = subject.isEmpty() ? question.shown : subject;
    if (asked == agreedSubject_)
        return true;
    if (asked == askedSubject_)
        return false;
    askedSubject_ = asked;
    ConfirmDialog::ask(this, question, ConfirmDialog::Enter::Cancels, [this, asked](bool agreed) {
        askedSubject_.clear();
        if (!agreed)
            return;
        agreedSubject_ = asked;
        const QPointer<FramelessWindow> guard(this);
        close();
        if (guard)
            agreedSubject_.clear();
    });
    return false;
}

void FramelessWindow::closeEvent(QCloseEvent *event)
{
    if (closed_) { // hidden already, and asked once more as the process ends
        event->accept();
        return;
    }
    const CloseAnswer answer = closeRequested();
    if (answer == CloseAnswer::Refuse) {
        event->ignore();
        return;
    }
    closed_ = true;
    if (answer == CloseAnswer::CloseLater) {
        deletedOnClose_ = testAttribute(Qt::WA_DeleteOnClose);
        setAttribute(Qt::WA_DeleteOnClose, false);
        closeLater_ = std::make_unique<QEventLoopLocker>();
    }
    event->accept();
    emit closed();
}

void FramelessWindow::finishClosing()
{
    if (!closeLater_)
        return;
    if (deletedOnClose_) {
        deleteLater(); // the destructor lets the process end
        return;
    }
    closeLater_.reset();
}

void FramelessWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    closed_ = false;
    placeGrips();
    titleButtonsLast();
}

void FramelessWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeGrips();
}

void FramelessWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    const int border = isMaximized() || isFullScreen() ? 0 : theme::hairline();
    layout_->setContentsMargins(border, border, border, border);
    placeGrips();
}

void FramelessWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), colours::toColor(colours::outline));
    painter.fillRect(rect().marginsRemoved(layout_->contentsMargins()),
                     colours::toColor(colours::surface));
}

void FramelessWindow::placeGrips()
{
    const bool wanted = !isMaximized() && !isFullScreen();
    for (EdgeGrip *grip : qAsConst(grips_)) {
        grip->setVisible(wanted);
        grip->place(size());
        grip->raise();
    }
}

/// The buttons were made first, and content may have grown since.
void FramelessWindow::titleButtonsLast()
{
    QWidget *last = previousInFocusChain();
    while (last != this && (last->focusPolicy() == Qt::NoFocus || last->focusProxy()))
        last = last->previousInFocusChain();
    if (last == this || last == titleBar_->closeButton())
        return;
    // In this order: the chain is a ring, and where "×" comes after "−" anyway Qt leaves it in
    // place.
    setTabOrder(last, titleBar_->closeButton());
    setTabOrder(last, titleBar_->minimizeButton());
}
