#include "distribution/ruleeditor/fieldbutton.h"

#include "app/context/k.h"
#include "distribution/ruleeditor/separatorbutton.h"
#include "widgets/theme/theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr int paddingPx = 8;
constexpr int gapPx = 4;
constexpr int partHeightPx = 20;
constexpr int deletePx = 20;

} // namespace

FieldButton::FieldButton(const namingrule::Item &item, QWidget *parent)
    : QPushButton(parent)
    , item_(item)
    , separator_(new SeparatorButton(item.separator, this))
    , deleteButton_(new QPushButton(QStringLiteral("×"), this))
{
    QString text = item.name;
    setText(text.replace(QLatin1Char('&'), QLatin1String("&&")));
    setAccessibleName(item.name);
    setStyleSheet(theme::fieldButtonStyle());
    setCursor(Qt::OpenHandCursor);
    setToolTip(QStringLiteral("拖动调整顺序；Ctrl+←/→ 移动，Delete 删除，空格键选择分隔符"));
    deleteButton_->setObjectName(QStringLiteral("deleteButton"));
    deleteButton_->setFocusPolicy(Qt::NoFocus);
    deleteButton_->setCursor(Qt::PointingHandCursor);
    deleteButton_->setStyleSheet(theme::fieldDeleteStyle());
    deleteButton_->setToolTip(QStringLiteral("删除"));
    deleteButton_->setAccessibleName(QStringLiteral("删除 ") + item.name);
    connect(deleteButton_, &QPushButton::clicked, this, &FieldButton::askForDeletion);
    connect(this, &QPushButton::clicked, separator_, &SeparatorButton::openMenu);
    connect(separator_, &SeparatorButton::separatorChanged, this, &FieldButton::updateGeometry);
}

namingrule::Item FieldButton::item() const
{
    namingrule::Item item = item_;
    item.separator = separator_->separator();
    return item;
}

QSize FieldButton::sizeHint() const
{
    const int label = fontMetrics().horizontalAdvance(item_.name);
    const int width = K::scaledPx(paddingPx) + label + K::scaledPx(gapPx) +
                      separator_->sizeHint().width() + K::scaledPx(gapPx) + K::scaledPx(deletePx) +
                      K::scaledPx(gapPx);
    return {width, theme::controlHeight()};
}

void FieldButton::resizeEvent(QResizeEvent *event)
{
    QPushButton::resizeEvent(event);
    const int side = K::scaledPx(deletePx);
    const int partHeight = K::scaledPx(partHeightPx);
    const int separatorWidth = separator_->sizeHint().width();
    const int deleteX = width() - K::scaledPx(gapPx) - side;
    deleteButton_->setGeometry(deleteX, (height() - side) / 2, side, side);
    separator_->setGeometry(deleteX - K::scaledPx(gapPx) - separatorWidth,
                            (height() - partHeight) / 2, separatorWidth, partHeight);
}

void FieldButton::mousePressEvent(QMouseEvent *event)
{
    pressedAt_ = event->pos();
    QPushButton::mousePressEvent(event);
}

void FieldButton::mouseMoveEvent(QMouseEvent *event)
{
    const int distance = (event->pos() - pressedAt_).manhattanLength();
    if (!(event->buttons() & Qt::LeftButton) || distance < QApplication::startDragDistance()) {
        QPushButton::mouseMoveEvent(event);
        return;
    }
    setDown(false);
    emit dragStarted(this, pressedAt_);
}

void FieldButton::keyPressEvent(QKeyEvent *event)
{
    if (handleKey(event->key(), event->modifiers() & Qt::ControlModifier))
        return;
    const QString typed = event->text();
    if (typed != QLatin1String(" ") && namingrule::separators().contains(typed))
        separator_->setSeparator(typed);
    else
        QPushButton::keyPressEvent(event);
}

void FieldButton::askForDeletion()
{
    deleted_ = true;
    emit deleteClicked();
}

bool FieldButton::handleKey(int key, bool withControl)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int step = key == Qt::Key_Left ? -1 : 1;
        if (withControl)
            emit moveRequested(step);
        else
            emit focusRequested(step);
        return true;
    }
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        askForDeletion();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        separator_->openMenu();
        return true;
    default:
        return false;
    }
}
