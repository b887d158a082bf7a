#pragma once

#include <QStringList>
#include <QThread>

/// Removes deleted originals and their size variants from the disk. The service was told before;
/// what is missing or cannot be removed is passed over.
class TFDelLocalPhotoImg : public QThread
{
    Q_OBJECT

public:
    using QThread::QThread;
    /// Waits until the photos are gone.
    ~TFDelLocalPhotoImg() override;

    /// \a paths: originals in the "all" folder. Before start(), not while the thread runs.
    void setDelPhotos(const QStringList &paths);
    /// What is left to remove, in Windows form: each original followed by its variants 90, 190 and
    /// 1920.
    const QStringList &paths() const { return paths_; }

protected:
    void run() override;

private:
    QStringList paths_;
};
