#include "distribution/ruleeditor/foldernamingrule.h"

#include "app/context/k.h"
#include "distribution/naming/foldernames.h"
#include "distribution/ruleeditor/draggablefieldsource.h"
#include "distribution/ruleeditor/dropzone.h"
#include "files/safename.h"
#include "tasks/background.h"
#include "widgets/inputs/flowlayout.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QVBoxLayout>

namespace {

constexpr int spacingPx = 8;

QLabel *makeLabel(const QString &objectName, const QString &style, QWidget *parent)
{
    auto *label = new PlainLabel(parent);
    label->setObjectName(objectName);
    label->setStyleSheet(style);
    label->setWordWrap(true);
    return label;
}

struct Preview
{
    QString name;
    QString warning;
};

/// Of the order's first product; of a made-up one where there is none.
Preview previewOf(const namingrule::Rule &rule, const OrderDetail &order)
{
    const QVector<DetailProduct> products = order.products();
    const bool madeUp = products.isEmpty();
    const QString name =
        namingrule::folderName(rule, madeUp ? namingrule::sampleValues()
                                            : foldernames::ruleValues(order, products.first()));
    const QString warning = namingrule::warnings(name).join(QStringLiteral("；"));
    if (!namingrule::namesNothing(name))
        return {safeFileName(name), warning};
    return {madeUp ? QStringLiteral("1#20240507001 12寸相册 相册 2 李明-王丽 2024-06-01取 自取")
                   : foldernames::builtInProductFolder(order, products.first(), 1),
            warning + QStringLiteral("，将使用默认命名")};
}

} // namespace

FolderNamingRule::FolderNamingRule(QWidget *parent)
    : QWidget(parent)
    , zone_(new DropZone(this))
    , preview_(makeLabel(QStringLiteral("rulePreview"), theme::hintStyle(), this))
    , warning_(makeLabel(QStringLiteral("ruleWarning"), theme::warningStyle(), this))
{
    auto *heading = new PlainLabel(QStringLiteral("产品文件夹命名规则"), this);
    heading->setStyleSheet(theme::headingStyle());
    heading->setIndent(0);
    auto *caption = new PlainLabel(QStringLiteral("可用字段 (拖拽添加):"), this);
    caption->setStyleSheet(theme::hintStyle());
    preview_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(K::scaledPx(spacingPx));
    layout->addWidget(heading);
    layout->addWidget(caption);
    layout->addWidget(buildSources());
    layout->addWidget(zone_);
    layout->addWidget(preview_);
    layout->addWidget(warning_);

    connect(zone_, &DropZone::ruleChanged, this, &FolderNamingRule::announce);
    setPreviewOrder({});
}

QWidget *FolderNamingRule::buildSources()
{
    auto *area = new QWidget(this);
    auto *flow = new FlowLayout(area, K::scaledPx(spacingPx), K::scaledPx(spacingPx));
    for (const namingrule::Item &field : namingrule::availableFields()) {
        auto *source = new DraggableFieldSource(field.name, field.key, area);
        flow->addWidget(source);
        connect(source, &QPushButton::clicked, zone_, [this, field] { zone_->addField(field); });
    }
    return area;
}

void FolderNamingRule::load(const QString &text)
{
    const auto rule = namingrule::parse(text);
    if (!rule)
        return;
    loaded_ = *rule;
    reset();
}

void FolderNamingRule::reset()
{
    zone_->setRule(loaded_);
    announce();
}

namingrule::Rule FolderNamingRule::rule() const
{
    return zone_->rule();
}

void FolderNamingRule::setPreviewOrder(const OrderDetail &detail)
{
    previewOrder_ = detail;
    showPreview();
}

void FolderNamingRule::announce()
{
    showPreview();
    const namingrule::Rule rule = zone_->rule();
    emit ruleChanged(rule);
    emit ruleChangedJson(namingrule::toJson(rule));
}

void FolderNamingRule::showPreview()
{
    onProcessor(
        this, [rule = zone_->rule(), order = previewOrder_] { return previewOf(rule, order); },
        naming_.only([this](const Preview &shown) {
            preview_->setText(QStringLiteral("预览：") + shown.name);
            warning_->setText(shown.warning);
            warning_->setVisible(!shown.warning.isEmpty());
        }));
}
