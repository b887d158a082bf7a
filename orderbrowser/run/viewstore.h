#pragma once

#include "orderbrowser/rules/orderviews.h"

#include <QObject>
#include <QString>

#include <optional>

/// The file that keeps an account's views and searches between two openings of the order browser.
/// Reads and writes on the disk pool. Interface thread.
class ViewStore : public QObject
{
    Q_OBJECT

public:
    /// In the folder of the user's settings, by the account's \a uid.
    explicit ViewStore(const QString &uid, QObject *parent = nullptr);

    const QString &path() const { return path_; }

    /// read() follows, once.
    void read();
    /// In the order of the calls; the latest stands in the end. A failure is logged.
    void write(const OrderViews &views);
    bool isWriting() const { return isWriting_; }

signals:
    /// Views as they come along when there is no file, or none that can be read. The latter is kept
    /// beside it under a name of its own, with a line in the log.
    void hasRead(const OrderViews &views);
    /// Nothing is to be written any more.
    void hasWritten();

private:
    void writeNext();

    QString path_;
    std::optional<QByteArray> waiting_; ///< to be written when the present write has ended
    bool isWriting_ = false;
};
