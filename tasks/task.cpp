#include "tasks/task.h"

#include <QDebug>

#include <exception>

QString problemOf(const std::function<void()> &work)
{
    QString problem;
    try {
        work();
        return {};
    } catch (const std::exception &exception) {
        problem = QStringLiteral("处理异常: %1").arg(QString::fromLocal8Bit(exception.what()));
    } catch (...) {
        problem = QStringLiteral("未知异常");
    }
    qDebug().noquote() << problem;
    return problem;
}

void Task::run()
{
    const QString problem = problemOf([this] { perform(); });
    if (!problem.isEmpty())
        failed(problem);
}
