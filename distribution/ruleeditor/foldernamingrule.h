#pragma once

#include "distribution/naming/namingrule.h"
#include "distribution/rules/orderdetail.h"
#include "tasks/latest.h"

#include <QJsonArray>
#include <QWidget>

class DropZone;
class QLabel;

/// The editor of the rule that names product folders: the fields there are, the rule that is made
/// of them by dragging or by keys, and the name that it gives, which shows a moment later: names
/// may be long, and are made beside the interface thread.
class FolderNamingRule : public QWidget
{
    Q_OBJECT

public:
    explicit FolderNamingRule(QWidget *parent = nullptr);

    /// Shows a branch's rule as the service stores it. What is no rule leaves the editor as it is.
    void load(const QString &text);
    /// Goes back to the rule that was loaded last.
    void reset();
    /// From now on the present rule is what reset() goes back to.
    void markSaved(const namingrule::Rule &rule) { loaded_ = rule; }
    namingrule::Rule rule() const;
    /// What reset() goes back to.
    const namingrule::Rule &loadedRule() const { return loaded_; }

    /// The preview names the folder of this order's first product; of a made-up one where there is
    /// none.
    void setPreviewOrder(const OrderDetail &detail);

signals:
    void ruleChanged(const namingrule::Rule &rule);
    void ruleChangedJson(const QJsonArray &rule);

private:
    QWidget *buildSources();
    void announce();
    void showPreview();

    DropZone *zone_;
    QLabel *preview_;
    QLabel *warning_;
    namingrule::Rule loaded_;
    OrderDetail previewOrder_;
    Latest naming_;
};
