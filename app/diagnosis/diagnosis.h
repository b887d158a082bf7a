#pragma once

#include "app/diagnosis/servicelook.h"
#include "tasks/latest.h"

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// A file of the diagnosis: what a user sees before it is saved is what is saved.
struct DiagnosisFile
{
    QString name;
    QString text;
};

Q_DECLARE_METATYPE(QVector<DiagnosisFile>)

/// What helps to find out why something went wrong, as text files for whoever is asked: versions,
/// settings, whether the service answers, the log of the last runs. Nothing of it tells of
/// customers (see masking.h) and nothing is sent anywhere. Interface thread; files are read and
/// written on the disk pool.
class Diagnosis : public QObject
{
    Q_OBJECT

public:
    /// \a logFolder as LogRing::standardFolder().
    explicit Diagnosis(const QString &logFolder, QObject *parent = nullptr);

    /// Gathers all of it; collected() follows, some seconds later when the service is silent.
    void collect();
    /// Writes \a files into a new folder of \a folder; saved() follows.
    void save(const QVector<DiagnosisFile> &files, const QString &folder);
    bool isUnderWay() const { return step_.isUnderWay(); }

signals:
    void collected(const QVector<DiagnosisFile> &files);
    /// \a problem is for the user; empty when all of it stands in \a folder.
    void saved(const QString &folder, const QString &problem);

private:
    void readLogs(const DiagnosisFile &service);

    const QString logFolder_;
    ServiceLook service_;
    Latest step_;
};
