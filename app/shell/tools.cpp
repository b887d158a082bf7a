#include "app/shell/tools.h"

#include "app/settings/settingswindow.h"
#include "batchdelete/window/batchdelete.h"
#include "cardcheck/window/cardcheck.h"
#include "distribution/window/fjhome.h"
#include "fileimport/window/importfiles.h"
#include "history/window/historywindow.h"
#include "orderbrowser/window/orderlist.h"
#include "photoimport/window/tfhome.h"

namespace {

QString icon(const char *name)
{
    return QStringLiteral(":/choosetools/image/choosetools/%1.svg").arg(QLatin1String(name));
}

FramelessWindow *importFiles(const QString &label, ImportMode mode)
{
    auto *window = new ImportFiles;
    window->setWindowTitle(label);
    window->setMode(int(mode));
    return window;
}

Tool distribution(const QString &label, const char *iconName)
{
    return {label, icon(iconName), [label] {
                auto *window = new FJHome;
                window->setCard(label);
                return window;
            }};
}

} // namespace

const QVector<Tool> &allTools()
{
    static const QString importOriginals = QStringLiteral("导入原片");
    static const QString importRetouched = QStringLiteral("导入精修片");
    static const QString photoImport = QStringLiteral("导片工具");
    static const QVector<Tool> tools{
        {importOriginals, icon("tools_dr_yp"),
         [] { return importFiles(importOriginals, ImportMode::Originals); }},
        distribution(QStringLiteral("下载原始档"), "tools_xz_ysd"),
        {photoImport, icon("tools_dr_qxp"),
         [] {
             auto *window = new tfhome;
             window->setWindowTitle(photoImport);
             return window;
         }},
        distribution(QStringLiteral("下载选片结果"), "tools_xz_xpjg"),
        {importRetouched, icon("tools_dr_jxp"),
         [] { return importFiles(importRetouched, ImportMode::Retouched); }},
        distribution(QStringLiteral("设计分件"), "tools_sjfj"),
        distribution(QStringLiteral("下载照片交付"), "tools_xz_zpjf"),
        {QStringLiteral("批量删除"), icon("tools_batchdel"),
         []() -> FramelessWindow * { return new BatchDelete; }},
    };
    return tools;
}

const Tool &orderBrowser()
{
    static const Tool tool{
        QStringLiteral("订单列表"), {}, []() -> FramelessWindow * { return new OrderList; }};
    return tool;
}

const Tool &history()
{
    static const Tool tool{
        QStringLiteral("导入记录"), {}, []() -> FramelessWindow * { return new HistoryWindow; }};
    return tool;
}

const Tool &cardCheck()
{
    static const Tool tool{
        QStringLiteral("核对存储卡"), {}, []() -> FramelessWindow * { return new CardCheck; }};
    return tool;
}

const Tool &settings()
{
    static const Tool tool{
        QStringLiteral("设置"), {}, []() -> FramelessWindow * { return new SettingsWindow; }};
    return tool;
}
