#pragma once

#include "batchdelete/rules/batchdeleterecords.h"
#include "tasks/stopflag.h"

#include <QStringList>
#include <QThread>

#include <utility>

/// Deletes one file and, when that fails, works out why. Left alone is a file that is not what was
/// listed any more, and one whose folder, or one on the way to it, has become a link. Release it on
/// finished().
class BatchdeleteThread : public QThread
{
    Q_OBJECT

public:
    /// \a above: folders above the order's, in this machine's form, that must be no links either.
    BatchdeleteThread(QString orderPhotoId, BatchDeleteFileInfo file, QString path,
                      QStringList above = {}, QObject *parent = nullptr);

    /// Nothing more is to be heard of it, whatever becomes of the file. From any thread.
    void requestStop() { stopped_.raise(); }

signals:
    /// The file with its new state and reason; not after requestStop().
    void fileProcessed(const QString &orderPhotoId, const BatchDeleteFileInfo &file);

protected:
    void run() override;

private:
    void removeOrDiagnose();
    QString linkOnTheWay() const;
    using Result = std::pair<BatchDeleteFileInfo::State, QString>;
    void diagnose(const Result &otherwise);
    void setResult(BatchDeleteFileInfo::State state, const QString &reason);

    QString orderPhotoId_;
    BatchDeleteFileInfo file_;
    QString path_;
    QStringList above_;
    StopFlag stopped_;
};

/// Whether \a path, which does not exist, lies where nothing can be reached at present: on a share
/// that is gone, or on another machine's drive that is. Touches the disk and can block.
bool isUnreachablePath(const QString &path);
