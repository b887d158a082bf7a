#pragma once

#include "distribution/naming/namingrule.h"
#include "net/orderqueries.h"

#include <QWidget>

class FolderNamingRule;
class QLabel;
class QPushButton;
struct ServiceReply;

/// The part of the distribution window that is headed "产品文件夹": the editor of the branch's rule
/// and the buttons that put it back and save it.
class NamingRulePanel : public QWidget
{
    Q_OBJECT

public:
    explicit NamingRulePanel(QWidget *parent = nullptr);

    FolderNamingRule *editor() const { return editor_; }
    /// In whose name, and for which branch, the rule is saved.
    void setIdentity(const orderqueries::Identity &identity) { identity_ = identity; }

    /// Whether the rule differs from the one that was loaded or saved last.
    bool isUnsaved() const;

public slots:
    void save();

private:
    void showUnsaved();
    void onSaved(const ServiceReply &reply, const QString &shopId, const namingrule::Rule &rule);

    orderqueries::Identity identity_;
    FolderNamingRule *editor_;
    QLabel *unsaved_;
    QPushButton *resetButton_;
    QPushButton *saveButton_;
};
