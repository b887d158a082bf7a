#pragma once

#include <QStringList>
#include <QThread>

namespace tfvariants {

/// Where the variants 90, 190 and 1920 of \a original lie, which is in the "all" folder of the
/// order whose import folder is \a orderFolder; nothing for one that lies elsewhere. All in Windows
/// form or with slashes; the result in Windows form.
QStringList pathsOf(const QString &original, const QString &orderFolder);

} // namespace tfvariants

/// Removes deleted originals and their size variants from the disk. The service was told before;
/// what is missing or cannot be removed is passed over.
class TFDelLocalPhotoImg : public QThread
{
    Q_OBJECT

public:
    using QThread::QThread;
    /// Waits until the photos are gone.
    ~TFDelLocalPhotoImg() override;

    /// \a paths: originals in the "all" folder of the order whose import folder is \a orderFolder,
    /// all in Windows form or with slashes. What lies elsewhere is left out: neither it nor what
    /// could pass for its variants is this order's. Before start(), not while the thread runs.
    void setDelPhotos(const QStringList &paths, const QString &orderFolder);
    /// What is left to remove, in Windows form: each original followed by its variants 90, 190 and
    /// 1920.
    const QStringList &paths() const { return paths_; }

signals:
    /// \a path, in Windows form, is not on the disk any more.
    void gone(const QString &path);

protected:
    void run() override;

private:
    QStringList paths_;
    QString orderFolder_;
};
