#pragma once

#include "app/settings/settingspage.h"
#include "app/settings/storageroom.h"
#include "files/sharedfolderopener.h"

#include <functional>

class QPushButton;

/// Where the records and the log lie, how large they are, and clearing them.
class StoragePage : public SettingsPage
{
    Q_OBJECT

public:
    StoragePage(const QString &ledgerFolder, const QString &logFolder);

protected:
    void showEvent(QShowEvent *event) override;

private:
    struct Row
    {
        QLabel *size;
        QPushButton *clear;
    };
    Row addRow(const QString &name, const QString &title, const QString &folder);
    void showSizes(qint64 ledgerBytes, qint64 logBytes);
    void askToClearLedger();
    void askToClearLog();

    StorageRoom room_;
    SharedFolderOpener opener_;
    Row ledger_;
    Row log_;
};
