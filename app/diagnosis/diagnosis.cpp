#include "app/diagnosis/diagnosis.h"

#include "app/context/accountcontext.h"
#include "app/context/importverification.h"
#include "app/context/installation.h"
#include "app/context/k.h"
#include "app/diagnosis/logring.h"
#include "app/diagnosis/masking.h"
#include "files/filewriting.h"
#include "ledger/ledger.h"
#include "tasks/background.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QSslSocket>
#include <QSysInfo>

namespace {

QString yesNo(bool is)
{
    return is ? QStringLiteral("是") : QStringLiteral("否");
}

QString versions()
{
    QStringList lines{
        QStringLiteral("程序：%1").arg(AccountContext::appVersion),
        QStringLiteral("系统：%1（%2）")
            .arg(QSysInfo::prettyProductName(), QSysInfo::kernelVersion()),
        QStringLiteral("Qt：%1，%2").arg(QLatin1String(qVersion()), QSysInfo::buildAbi()),
        QStringLiteral("TLS：%1").arg(QSslSocket::sslLibraryVersionString()),
        QStringLiteral("界面比例：%1").arg(double(K::uiScale)),
    };
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        const QSize size = screen->size();
        lines += QStringLiteral("屏幕：%1×%2，%3 dpi，比例 %4")
                     .arg(QString::number(size.width()), QString::number(size.height()),
                          QString::number(screen->logicalDotsPerInch()),
                          QString::number(screen->devicePixelRatio()));
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString settings()
{
    const Installation &installation = Installation::current();
    const QStringList lines{
        QStringLiteral("服务地址：%1").arg(AccountContext::baseUrl),
        QStringLiteral("另外信任的证书：%1").arg(installation.caFiles.join(QStringLiteral("；"))),
        QStringLiteral("检查证书：%1").arg(yesNo(installation.verifiesCertificates)),
        QStringLiteral("导入后读回核对：%1%2")
            .arg(yesNo(importverification::readsBack()),
                 importverification::isDecidedByInstallation()
                     ? QStringLiteral("（由安装设置决定）")
                     : QString()),
        QStringLiteral("保存导入记录：%1").arg(yesNo(installation.keepsLedger)),
        QStringLiteral("导入记录的位置：%1").arg(Ledger::standardFolder()),
        QStringLiteral("设置文件：%1").arg(Installation::standardFile()),
    };
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QVector<DiagnosisFile> maskedLogs(const QString &folder)
{
    QVector<DiagnosisFile> logs;
    const QStringList paths = LogRing::filesIn(folder);
    for (const QString &path : paths) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            logs.append({QFileInfo(path).fileName(), masked(QString::fromUtf8(file.readAll()))});
    }
    return logs;
}

QString written(const QVector<DiagnosisFile> &files, const QString &folder)
{
    if (QFileInfo::exists(folder) || !makeFolder(folder))
        return QStringLiteral("无法创建文件夹");
    for (const DiagnosisFile &file : files) {
        if (!writeBytes(folder + QLatin1Char('/') + file.name, file.text.toUtf8()))
            return QStringLiteral("无法写入 %1").arg(file.name);
    }
    return {};
}

} // namespace

Diagnosis::Diagnosis(const QString &logFolder, QObject *parent)
    : QObject(parent), logFolder_(logFolder)
{
}

void Diagnosis::collect()
{
    service_.look(AccountContext::baseUrl, step_.only([this](const QString &line) {
        readLogs({QStringLiteral("service.txt"), masked(line) + QLatin1Char('\n')});
    }));
}

void Diagnosis::readLogs(const DiagnosisFile &service)
{
    const QVector<DiagnosisFile> now{{QStringLiteral("versions.txt"), versions()},
                                     {QStringLiteral("settings.txt"), masked(settings())},
                                     service};
    onDisk(
        this, logFolder_, [folder = logFolder_] { return maskedLogs(folder); },
        step_.only(
            [this, now](const QVector<DiagnosisFile> &logs) { emit collected(now + logs); }));
}

void Diagnosis::save(const QVector<DiagnosisFile> &files, const QString &folder)
{
    const QString name =
        QDateTime::currentDateTime().toString(QStringLiteral("'/tessavo-tools-'yyyyMMdd-HHmmss"));
    onDisk(
        this, folder, [files, path = folder + name] { return written(files, path); },
        step_.only(
            [this, path = folder + name](const QString &problem) { emit saved(path, problem); }));
}
