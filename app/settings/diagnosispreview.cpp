#include "app/settings/diagnosispreview.h"

#include "app/context/k.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

DiagnosisPreview::DiagnosisPreview(QWidget *parent, const QVector<DiagnosisFile> &files)
    : FramelessDialog(parent, QStringLiteral("诊断信息"))
{
    auto *names = new PlainTips<QListWidget>;
    names->setObjectName(QStringLiteral("fileList"));
    names->setAccessibleName(QStringLiteral("诊断信息的文件"));
    names->setStyleSheet(theme::listStyle());
    names->setMaximumWidth(K::scaledPx(180));
    auto *text = new QPlainTextEdit;
    text->setObjectName(QStringLiteral("fileText"));
    text->setAccessibleName(QStringLiteral("文件内容"));
    text->setStyleSheet(theme::listStyle());
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    for (const DiagnosisFile &file : files) {
        auto *name = new QListWidgetItem(file.name, names);
        name->setSizeHint(QSize(0, theme::rowHeight()));
    }
    connect(names, &QListWidget::currentRowChanged, text,
            [text, files](int row) { text->setPlainText(files.value(row).text); });
    names->setCurrentRow(0);

    auto *halves = new QHBoxLayout;
    halves->setSpacing(theme::spacing());
    halves->addWidget(names);
    halves->addWidget(text, 1);
    content()->addWidget(new PlainLabel(QStringLiteral("将要保存的就是这些内容：")));
    content()->addLayout(halves, 1);

    auto *cancel = new QPushButton(QStringLiteral("取消"));
    cancel->setStyleSheet(theme::secondaryButtonStyle());
    auto *save = new QPushButton(QStringLiteral("保存…"));
    save->setObjectName(QStringLiteral("saveButton"));
    save->setStyleSheet(theme::primaryButtonStyle());
    save->setDefault(true);
    save->setFocus();
    auto *foot = new QHBoxLayout;
    foot->setSpacing(theme::spacing());
    foot->addStretch();
    foot->addWidget(cancel);
    foot->addWidget(save);
    content()->addLayout(foot);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(save, &QPushButton::clicked, this, &QDialog::accept);
    resize(K::scaledPx(760), K::scaledPx(480));
}
