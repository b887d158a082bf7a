#include "app/settings/importpage.h"

#include "app/context/importverification.h"

#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

ImportPage::ImportPage() : SettingsPage(QStringLiteral("导入"))
{
    addNote(QStringLiteral("照片复制到存储以后怎样核对。对之后开始的复制生效。"));
    const bool isGiven = importverification::isDecidedByInstallation();
    const auto add = [this, isGiven](const QString &name, const QString &text, bool isChosen) {
        auto *button = new QRadioButton(text);
        button->setObjectName(name);
        button->setChecked(isChosen);
        button->setEnabled(!isGiven);
        rows()->addWidget(button);
        return button;
    };
    const bool readsBack = importverification::readsBack();
    auto *whole =
        add(QStringLiteral("readBackButton"), QStringLiteral("逐字节读回核对（推荐）"), readsBack);
    addNote(QStringLiteral("写完以后从存储上再读一遍，和存储卡上的内容比较。写坏的字节当场发现，"
                           "核对存储卡也能直接证明这些文件。"));
    add(QStringLiteral("sizeOnlyButton"), QStringLiteral("只比较文件大小"), !readsBack);
    addNote(QStringLiteral("更快，但只能发现没有写完的文件。"));
    if (isGiven) {
        addNote(QStringLiteral(
                    "这一项由安装设置（tessavo-tools.ini 或环境变量）决定，在这里不能更改。"))
            ->setObjectName(QStringLiteral("givenNote"));
    }
    connect(whole, &QRadioButton::toggled, this, &importverification::setReadsBack);
}
