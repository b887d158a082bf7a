#include "distribution/foldernamingrule.h"

#include "app/context/k.h"
#include "distribution/draggablefieldsource.h"
#include "distribution/dropzone.h"
#include "distribution/flowlayout.h"
#include "distribution/foldernames.h"
#include "distribution/orderdetail.h"
#include "files/safename.h"
#include "widgets/theme.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int spacingPx = 8;

QLabel *makeLabel(const QString &objectName, const QString &style, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setStyleSheet(style);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

FolderNamingRule::FolderNamingRule(QWidget *parent)
    : QWidget(parent)
    , zone_(new DropZone(this))
    , preview_(makeLabel(QStringLiteral("rulePreview"), theme::hintStyle(), this))
    , warning_(makeLabel(QStringLiteral("ruleWarning"), theme::warningStyle(), this))
{
    auto *heading = new QLabel(QStringLiteral("产品文件夹命名规则"), this);
    heading->setStyleSheet(theme::headingStyle());
    heading->setIndent(0);
    auto *caption = new QLabel(QStringLiteral("可用字段 (拖拽添加):"), this);
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
    const QVector<DetailProduct> products = detail.products();
    if (products.isEmpty()) {
        values_ = namingrule::sampleValues();
        builtIn_ = QStringLiteral("1#20240507001 12寸相册 相册 2 李明-王丽 2024-06-01取 自取");
    } else {
        values_ = foldernames::ruleValues(detail, products.first());
        builtIn_ = foldernames::builtInProductFolder(detail, products.first(), 1);
    }
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
    const QString name = namingrule::folderName(zone_->rule(), values_);
    const QStringList warnings = namingrule::warnings(name);
    const bool useBuiltIn = namingrule::namesNothing(name);
    preview_->setText(QStringLiteral("预览：") + (useBuiltIn ? builtIn_ : safeFileName(name)));
    warning_->setText(warnings.join(QStringLiteral("；")) +
                      (useBuiltIn ? QStringLiteral("，将使用默认命名") : QString()));
    warning_->setVisible(!warnings.isEmpty());
}
