#include "app/context/k.h"

#include "app/context/accountcontext.h"
#include "app/context/logging.h"
#include "app/context/ownerfile.h"

#include <QDataStream>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QLibraryInfo>
#include <QSaveFile>
#include <QScreen>
#include <QTranslator>

#include <algorithm>

namespace {

constexpr float designDpi = 96.0F;
constexpr double unscaledEnlargement = 1.2;
constexpr int loginDataStreamVersion = QDataStream::Qt_4_4;
/// More than any login reply holds; a damaged length field must not ask for gigabytes.
constexpr qint64 largestLoginData = qint64(64) * 1024 * 1024;

QString loginDataPath()
{
    return AccountContext::dataFolder + QStringLiteral("loginData");
}

/// Where a translation may lie and what is logged when it is found there.
struct TranslationPlace
{
    QString file;
    QString folder;
    const char *foundLine;
};

bool loadFirst(QTranslator *translator, const QList<TranslationPlace> &places)
{
    return std::any_of(places.cbegin(), places.cend(), [translator](const TranslationPlace &place) {
        if (!translator->load(place.file, place.folder))
            return false;
        qDebug() << place.foundLine;
        return true;
    });
}

void installFont()
{
    const int id =
        QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/base/fonts/xingyiwensong.ttf"));
    const QStringList families = QFontDatabase::applicationFontFamilies(id);
    if (families.isEmpty())
        return; // built without the font: the system's own serves
    QGuiApplication::setFont(QFont(families.first(), 12));
}

} // namespace

float K::uiScale = 1.0F;

K *K::instance()
{
    static K k;
    return &k;
}

void K::initApplication(QGuiApplication *application)
{
    installFont();
    installTranslators(application);
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const auto physical = float(screen->physicalDotsPerInch());
        const auto logical = float(screen->logicalDotsPerInch());
        qDebug() << "物理DPI" << physical;
        qDebug() << "逻辑DPI（受系统缩放影响）" << logical;
        uiScale = scaleFor(logical, physical);
    }
}

void K::installTranslators(QGuiApplication *application)
{
    const QString programFolder = QCoreApplication::applicationDirPath();
    const QString systemFolder = QLibraryInfo::location(QLibraryInfo::TranslationsPath);

    auto *widgetTexts = new QTranslator(application);
    const QString widgetFile = QStringLiteral("qt_zh_CN.qm");
    if (loadFirst(widgetTexts, {{widgetFile, programFolder, "成功从应用程序目录加载 qt_zh_CN.qm"},
                                {widgetFile, systemFolder, "成功从系统目录加载 qt_zh_CN.qm"}})) {
        QCoreApplication::installTranslator(widgetTexts);
    } else {
        qDebug() << "加载 qt_zh_CN.qm 失败";
        qDebug() << "应用程序路径:" << programFolder;
        qDebug() << "系统翻译路径:" << systemFolder;
    }

    auto *baseTexts = new QTranslator(application);
    const QString simplified = QStringLiteral("qtbase_zh_CN.qm");
    const QString traditional = QStringLiteral("qtbase_zh_TW.qm");
    if (loadFirst(baseTexts,
                  {{simplified, programFolder, "成功从应用程序目录加载 qtbase_zh_CN.qm"},
                   {simplified, systemFolder, "成功从系统目录加载 qtbase_zh_CN.qm"},
                   {traditional, systemFolder, "成功从系统目录加载 qtbase_zh_TW.qm"},
                   {traditional, programFolder, "成功从应用程序目录加载 qtbase_zh_TW.qm"}})) {
        QCoreApplication::installTranslator(baseTexts);
    } else {
        qDebug() << "加载 qtbase 中文翻译失败";
    }
}

float K::scaleFor(float logicalDpi, float physicalDpi)
{
    if (logicalDpi <= 0.0F)
        return 1.0F;
    return std::max({1.0F, logicalDpi / designDpi, physicalDpi / logicalDpi});
}

int K::scaledPx(int px)
{
    if (uiScale == 1.0F)
        return int(float(px * unscaledEnlargement));
    return int(float(px) * uiScale);
}

QString K::scaledPxString(int px)
{
    return QString::number(scaledPx(px));
}

void K::saveLoginData(const QJsonObject &data, const std::function<void(const QVariantMap &)> &done)
{
    const QString path = loginDataPath();
    qDebug() << "写入的路径是:" << path;
    QDir().mkpath(AccountContext::dataFolder);
    QSaveFile file(path);
    bool saved = file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (saved) {
        // Closed to others before the token is in it.
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        QDataStream stream(&file);
        stream.setVersion(loginDataStreamVersion);
        stream << QString::fromUtf8(QJsonDocument(data).toJson(QJsonDocument::Indented));
        saved = file.commit();
    }
    if (saved)
        keepToOwner(path);
    else
        qCWarning(lcTessavo) << "login data not saved:" << file.errorString();
    if (done)
        done({});
}

QJsonObject K::loadLoginData()
{
    QFile file(loginDataPath());
    const qint64 size = QFileInfo(file).size();
    if (size == 0)
        return {};
    if (size > largestLoginData || !file.open(QIODevice::ReadOnly)) {
        qDebug() << "无法打开文件读取:" << file.fileName();
        return {};
    }
    keepToOwner(file.fileName());
    QDataStream stream(&file);
    stream.setVersion(loginDataStreamVersion);
    QString text;
    stream >> text;
    if (stream.status() != QDataStream::Ok)
        return {};
    return jsonObjectFromText(text);
}

QJsonObject K::jsonObjectFromText(const QString &text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError) {
        qDebug() << "JSON 解析错误:" << error.errorString();
        return {};
    }
    if (!document.isObject()) {
        qDebug() << "JSON 不是一个对象";
        return {};
    }
    return document.object();
}
