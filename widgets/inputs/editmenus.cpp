#include "widgets/inputs/editmenus.h"

#include "widgets/inputs/contextmenu.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextEdit>

namespace {

/// The keys stand behind the text, as the field itself reacts to them.
template <typename Act>
void add(QMenu *menu, const QString &text, QKeySequence::StandardKey key, bool enabled, Act act)
{
    const QString keys = QKeySequence(key).toString(QKeySequence::NativeText);
    QAction *action =
        menu->addAction(keys.isEmpty() ? text : text + QLatin1Char('\t') + keys, menu, act);
    action->setEnabled(enabled);
}

bool canPaste()
{
    return !QApplication::clipboard()->text().isEmpty();
}

void fill(QMenu *menu, QLineEdit *edit, bool hasHistory)
{
    const bool writable = !edit->isReadOnly();
    const bool selected = edit->hasSelectedText();
    const bool readable = edit->echoMode() == QLineEdit::Normal;
    if (writable && readable && hasHistory) { // a password is typed anew
        add(menu, QStringLiteral("撤销"), QKeySequence::Undo, edit->isUndoAvailable(),
            [edit] { edit->undo(); });
        add(menu, QStringLiteral("重做"), QKeySequence::Redo, edit->isRedoAvailable(),
            [edit] { edit->redo(); });
        menu->addSeparator();
    }
    if (writable) {
        add(menu, QStringLiteral("剪切"), QKeySequence::Cut, selected && readable,
            [edit] { edit->cut(); });
    }
    add(menu, QStringLiteral("复制"), QKeySequence::Copy, selected && readable,
        [edit] { edit->copy(); });
    if (writable) {
        add(menu, QStringLiteral("粘贴"), QKeySequence::Paste, canPaste(),
            [edit] { edit->paste(); });
        add(menu, QStringLiteral("删除"), QKeySequence::Delete, selected, [edit] { edit->del(); });
    }
    menu->addSeparator();
    add(menu, QStringLiteral("全选"), QKeySequence::SelectAll, !edit->text().isEmpty(),
        [edit] { edit->selectAll(); });
}

template <typename TextEdit> void fill(QMenu *menu, TextEdit *edit)
{
    const bool writable = !edit->isReadOnly();
    const bool selected = edit->textCursor().hasSelection();
    if (writable) {
        add(menu, QStringLiteral("撤销"), QKeySequence::Undo, edit->document()->isUndoAvailable(),
            [edit] { edit->undo(); });
        add(menu, QStringLiteral("重做"), QKeySequence::Redo, edit->document()->isRedoAvailable(),
            [edit] { edit->redo(); });
        menu->addSeparator();
        add(menu, QStringLiteral("剪切"), QKeySequence::Cut, selected, [edit] { edit->cut(); });
    }
    add(menu, QStringLiteral("复制"), QKeySequence::Copy, selected, [edit] { edit->copy(); });
    if (writable) {
        add(menu, QStringLiteral("粘贴"), QKeySequence::Paste, edit->canPaste(),
            [edit] { edit->paste(); });
        add(menu, QStringLiteral("删除"), QKeySequence::Delete, selected,
            [edit] { edit->textCursor().removeSelectedText(); });
    }
    menu->addSeparator();
    add(menu, QStringLiteral("全选"), QKeySequence::SelectAll, !edit->document()->isEmpty(),
        [edit] { edit->selectAll(); });
}

void fill(QMenu *menu, QLabel *label)
{
    add(menu, QStringLiteral("复制"), QKeySequence::Copy, label->hasSelectedText(),
        [label] { QApplication::clipboard()->setText(label->selectedText()); });
    menu->addSeparator();
    add(menu, QStringLiteral("全选"), QKeySequence::SelectAll, !label->text().isEmpty(),
        [label] { label->setSelection(0, int(label->text().size())); });
}

/// The field that \a widget belongs to as one of its parts.
QWidget *fieldOf(QWidget *widget)
{
    QWidget *parent = widget->parentWidget();
    if (const auto *area = qobject_cast<QAbstractScrollArea *>(parent);
        area && area->viewport() == widget)
        return parent;
    if (qobject_cast<QLineEdit *>(widget) && qobject_cast<QAbstractSpinBox *>(parent))
        return parent;
    return widget;
}

bool hasMenuOfItsOwn(const QWidget *field)
{
    return field->contextMenuPolicy() == Qt::CustomContextMenu ||
           field->contextMenuPolicy() == Qt::PreventContextMenu;
}

} // namespace

EditMenus::EditMenus(QApplication *application) : QObject(application)
{
    application->installEventFilter(this);
}

ContextMenu *EditMenus::menuOf(QWidget *widget)
{
    QWidget *field = fieldOf(widget);
    auto *line = qobject_cast<QLineEdit *>(field);
    auto *text = qobject_cast<QTextEdit *>(field);
    auto *plainText = qobject_cast<QPlainTextEdit *>(field);
    auto *spinBox = qobject_cast<QAbstractSpinBox *>(field);
    auto *label = qobject_cast<QLabel *>(field);
    if (label && !label->textInteractionFlags().testFlag(Qt::TextSelectableByMouse))
        label = nullptr;
    auto *spinLine = spinBox ? spinBox->findChild<QLineEdit *>() : nullptr;
    if ((!line && !text && !plainText && !spinLine && !label) || hasMenuOfItsOwn(field))
        return nullptr;
    auto *menu = new ContextMenu(field);
    if (!field->actions().isEmpty()) {
        menu->addActions(field->actions());
        menu->addSeparator();
    }
    if (line)
        fill(menu, line, true);
    else if (spinLine)
        fill(menu, spinLine, false); // a spin box forgets the history at each of its corrections
    else if (text)
        fill(menu, text);
    else if (plainText)
        fill(menu, plainText);
    else
        fill(menu, label);
    return menu;
}

bool EditMenus::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ContextMenu || !watched->isWidgetType())
        return false;
    ContextMenu *menu = menuOf(static_cast<QWidget *>(watched));
    if (!menu)
        return false;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(static_cast<QContextMenuEvent *>(event)->globalPos());
    event->accept();
    return true;
}
