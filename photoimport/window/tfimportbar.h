#pragma once

#include "photoimport/rules/photoimportrecords.h"

#include <QWidget>

class ComboBox;
class QPushButton;
class TransferView;

/// The lower edge of the photo import window: what is imported, by how many workers, how far it is,
/// and the buttons that start, pause and stop.
class tfimportbar : public QWidget
{
    Q_OBJECT

public:
    explicit tfimportbar(QWidget *parent = nullptr);

    void setPhotoMode(PhotoMode mode);
    void setWorkers(int count);
    /// Whether something is queued or active: the start button stops then, and what must not change
    /// meanwhile is locked. While photos are still being registered that is the mode, by which
    /// they are found again.
    void setRunning(bool running, bool registering);
    void setPaused(bool paused);
    TransferView *progress() const { return progress_; }

signals:
    void photoModeChosen(PhotoMode mode);
    void workersChosen(int count);
    /// Start all, or stop.
    void startClicked();
    void pauseClicked();
    void cardCheckClicked();

private:
    ComboBox *modeBox_;
    ComboBox *workerBox_;
    TransferView *progress_;
    QPushButton *pauseButton_;
    QPushButton *startButton_;
};
