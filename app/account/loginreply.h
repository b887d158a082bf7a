#pragma once

#include "app/context/accountcontext.h"

#include <QJsonObject>
#include <QList>
#include <QString>

/// Who the user is, as a successful login answers it.
struct LoginReply
{
    QString superId;
    QString eid;
    QString uid;
    QList<ShopRecord> shops;

    /// Pure; what is missing is empty.
    static LoginReply read(const QJsonObject &reply);
    /// The same from saved login data, whose shops carry no naming rule.
    static LoginReply readSaved(const QJsonObject &saved);
};

/// Makes \a login the account of this process. The first shop becomes the account's own.
void enterAccount(const LoginReply &login);

/// The same for a tool in a process of its own, which is told its branch otherwise.
void enterSavedAccount(const LoginReply &login);
