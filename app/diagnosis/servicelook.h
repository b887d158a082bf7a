#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>

#include <functional>

/// One look at whether the studio's service answers, for a diagnosis. Asks for nothing but a sign
/// of life and sends nothing of the account. Interface thread.
class ServiceLook : public QObject
{
    Q_OBJECT

public:
    static constexpr int patienceMs = 5000;

    using QObject::QObject;

    /// \a told gets a line for the user, once; not when this goes first. One at a time.
    void look(const QString &serviceUrl, std::function<void(const QString &line)> told);

private:
    QNetworkAccessManager manager_;
};
