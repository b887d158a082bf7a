#pragma once

#include <QString>

/// A file system of a few megabytes of its own, for seeing what happens when it is full. Mounting
/// needs the rights to do so: where they lack, isMounted() is false and the test skips.
class SmallDisk
{
public:
    SmallDisk(const QString &mountPoint, int megabytes);
    /// No disk of its own: the folder \a shown appears at \a mountPoint, too.
    SmallDisk(const QString &mountPoint, const QString &shown);
    ~SmallDisk();
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    bool isMounted() const { return mounted_; }
    /// Takes the disk away even if files on it are open, as a share that is gone does.
    void vanish();

private:
    QString mountPoint_;
    bool mounted_ = false;
};
