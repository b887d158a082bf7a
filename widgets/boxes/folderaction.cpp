#include "widgets/boxes/folderaction.h"

#include "files/sharedfolderopener.h"
#include "widgets/boxes/toast.h"

#include <QCoreApplication>
#include <QWidget>

BoxAction openFolderAction(const QString &folder)
{
    return {QStringLiteral("打开目录"), [folder](QWidget *box) {
                // The box may be closed before the file manager comes up.
                auto *opener = new SharedFolderOpener(QCoreApplication::instance());
                QObject::connect(opener, &SharedFolderOpener::finished, opener,
                                 &QObject::deleteLater);
                QObject::connect(opener, &SharedFolderOpener::finished, box,
                                 [box](bool, const QString &error) {
                                     if (!error.isEmpty())
                                         Toast::show(box, error);
                                 });
                opener->open(folder);
            }};
}
