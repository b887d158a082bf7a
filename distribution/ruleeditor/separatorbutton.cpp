#include "distribution/ruleeditor/separatorbutton.h"

#include "distribution/naming/namingrule.h"
#include "widgets/inputs/contextmenu.h"
#include "widgets/theme/theme.h"

#include <QAction>

namespace {

/// A blank could not be seen.
QString shown(const QString &separator)
{
    return separator == QLatin1String(" ") ? QStringLiteral("空格") : separator;
}

} // namespace

SeparatorButton::SeparatorButton(const QString &separator, QWidget *parent)
    : QPushButton(parent), separator_(separator)
{
    setFocusPolicy(Qt::NoFocus);
    setStyleSheet(theme::fieldPartStyle());
    setToolTip(QStringLiteral("字段后的分隔符，点击更换"));
    showSeparator();
    connect(this, &QPushButton::clicked, this, &SeparatorButton::openMenu);
}

void SeparatorButton::setSeparator(const QString &separator)
{
    if (separator == separator_)
        return;
    separator_ = separator;
    showSeparator();
    emit separatorChanged(separator_);
}

void SeparatorButton::showSeparator()
{
    setText(shown(separator_));
    setAccessibleName(QStringLiteral("分隔符 ") + shown(separator_));
    updateGeometry();
}

void SeparatorButton::openMenu()
{
    auto *menu = new ContextMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const QString &separator : namingrule::separators()) {
        QAction *action =
            menu->addAction(shown(separator), this, [this, separator] { setSeparator(separator); });
        action->setData(separator);
        action->setCheckable(true);
        action->setChecked(separator == separator_);
        if (action->isChecked())
            menu->setActiveAction(action);
    }
    menu->popup(mapToGlobal(QPoint(0, height())));
}
