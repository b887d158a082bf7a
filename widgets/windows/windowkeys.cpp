#include "widgets/windows/windowkeys.h"

#include "app/context/k.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/framelessdialog.h"

#include <QAbstractButton>
#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const char *const dialogName = "keyList";

QString written(const QList<QKeySequence> &keys)
{
    QStringList texts;
    for (const QKeySequence &each : keys) {
        if (!each.isEmpty())
            texts.append(each.toString(QKeySequence::NativeText));
    }
    return texts.join(QStringLiteral(" / "));
}

/// Where the focus must be for a key with \a context on \a widget; the nearest part with a name.
QString placeOf(const QWidget *widget, Qt::ShortcutContext context)
{
    if (context == Qt::WindowShortcut || context == Qt::ApplicationShortcut)
        return {};
    while (!widget->isWindow() && widget->accessibleName().isEmpty())
        widget = widget->parentWidget();
    return widget->isWindow() ? QString() : widget->accessibleName();
}

QString plainText(QString text)
{
    return text.remove(QLatin1Char('&')).remove(QStringLiteral("...")).remove(QChar(0x2026));
}

class Collected
{
public:
    void add(const QString &keys, const QString &what, const QString &where)
    {
        const auto same = [&](const WindowKey &each) {
            return each.keys == keys && each.what == what && each.where == where;
        };
        if (!keys.isEmpty() && std::none_of(keys_.cbegin(), keys_.cend(), same))
            keys_.append({keys, what, where});
    }

    void addOf(const QWidget *widget)
    {
        const auto actions = widget->actions();
        for (const QAction *action : actions) {
            if (action->isVisible()) {
                add(written(action->shortcuts()), plainText(action->text()),
                    placeOf(widget, action->shortcutContext()));
            }
        }
        if (const auto *button = qobject_cast<const QAbstractButton *>(widget)) {
            const bool isNamed = !button->accessibleName().isEmpty();
            add(written({button->shortcut()}),
                plainText(isNamed ? button->accessibleName() : button->text()), {});
        }
        const auto shortcuts =
            widget->findChildren<QShortcut *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QShortcut *shortcut : shortcuts)
            add(written({shortcut->key()}), shortcut->whatsThis(),
                placeOf(widget, shortcut->context()));
    }

    /// Those of the whole window first.
    QVector<WindowKey> taken()
    {
        std::stable_partition(keys_.begin(), keys_.end(),
                              [](const WindowKey &each) { return each.where.isEmpty(); });
        return keys_;
    }

private:
    QVector<WindowKey> keys_;
};

/// The keys of a window in a table.
class KeyDialog : public FramelessDialog
{
public:
    explicit KeyDialog(QWidget *window) : FramelessDialog(window, QStringLiteral("快捷键"))
    {
        setObjectName(QLatin1String(dialogName));
        auto *rows = new QStandardItemModel(this);
        rows->setHorizontalHeaderLabels(
            {QStringLiteral("按键"), QStringLiteral("作用"), QStringLiteral("焦点在")});
        const QVector<WindowKey> keys = keysOf(window);
        for (const WindowKey &key : keys) {
            const QString where = key.where.isEmpty() ? QStringLiteral("整个窗口") : key.where;
            rows->appendRow({new QStandardItem(key.keys), new QStandardItem(key.what),
                             new QStandardItem(where)});
        }
        auto *table = new EmptyStateTable;
        prepareTable(table);
        table->setObjectName(QStringLiteral("keyTable"));
        table->setAccessibleName(QStringLiteral("这个窗口的快捷键"));
        table->setModel(rows);
        table->resizeColumnsToContents();
        table->selectRow(0);
        content()->addWidget(table, 1);

        auto *close = new QPushButton(QStringLiteral("关闭"));
        close->setStyleSheet(theme::secondaryButtonStyle());
        close->setDefault(true);
        connect(close, &QPushButton::clicked, this, &QDialog::accept);
        content()->addWidget(close, 0, Qt::AlignRight);
        resize(K::scaledPx(560), K::scaledPx(460));
        table->setFocus();
    }
};

void showKeys(QWidget *window)
{
    if (window->objectName() != QLatin1String(dialogName))
        (new KeyDialog(window))->open();
}

} // namespace

QVector<WindowKey> keysOf(const QWidget *window)
{
    Collected keys;
    keys.addOf(window);
    const auto parts = window->findChildren<QWidget *>();
    for (const QWidget *part : parts) {
        if (part->window() == window && part->isVisibleTo(window) &&
            !qobject_cast<const QMenu *>(part))
            keys.addOf(part);
    }
    return keys.taken();
}

QAction *addKeyList(QWidget *window)
{
    auto *action = new QAction(QStringLiteral("快捷键"), window);
    action->setShortcut(Qt::CTRL + Qt::Key_Slash);
    QObject::connect(action, &QAction::triggered, window, [window] { showKeys(window); });
    window->addAction(action);
    return action;
}
