#pragma once

#include "distribution/rules/orderdetail.h"

#include <QHash>
#include <QString>

/// Where the pictures go that the production sheet shows.
class PlannedPictures
{
public:
    void insert(const QString &source, const QString &imgName, const QString &path)
    {
        paths_.insert(key(source, imgName), path);
    }
    /// Of the picture that is made from \a source (a path or an address of the reply) and would be
    /// called \a imgName; empty when none is.
    QString find(const QString &source, const QString &imgName) const
    {
        return paths_.value(key(source, imgName));
    }

private:
    static QString key(const QString &source, const QString &imgName)
    {
        return pathInOneForm(source) + QLatin1Char('\n') + imgName;
    }

    QHash<QString, QString> paths_;
};
