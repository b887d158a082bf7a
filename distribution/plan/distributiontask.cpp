#include "distribution/plan/distributiontask.h"

QString taskTypeText(TaskType type)
{
    switch (type) {
    case TaskType::DownloadRetouched:
        return QStringLiteral("下载精修片");
    case TaskType::DownloadOriginals:
        return QStringLiteral("下载原始档");
    case TaskType::CopyPhoto:
        return QStringLiteral("拷贝照片");
    case TaskType::StorePhoto:
        return QStringLiteral("存储照片");
    case TaskType::CreateProducts:
        return QStringLiteral("创建产品");
    case TaskType::MakeSheet:
        return QStringLiteral("生成Html");
    case TaskType::DeliverOriginals:
        return QStringLiteral("下载照片交付-拷贝原始档");
    case TaskType::DeliverPhotos:
        return QStringLiteral("下载照片交付-拷贝原片");
    }
    Q_UNREACHABLE();
}
