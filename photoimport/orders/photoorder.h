#pragma once

#include "files/transferprogress.h"
#include "photoimport/orders/sourcefile.h"

#include <QList>
#include <QMap>
#include <QMetaType>
#include <QVector>

#include <array>

/// One order of the window: what the service says of it, what was chosen for it here, and how far
/// that is.
struct PhotoOrder
{
    enum class Run { Idle, Queued, Active };
    static constexpr int modes = int(PhotoMode::Unknown);

    OrderInfo info; ///< without jobs; its import path is the one the service configured, or empty
    /// What the service has on its books of this tool's imports: those of the order's photos that
    /// lie where the tool puts them. By PhotoMode.
    std::array<QVector<orderqueries::OrderPhoto>, modes> importedByMode;
    std::array<QVector<SourceFile>, modes> filesByMode; ///< chosen here, by mode
    Run run = Run::Idle;
    QString folderRefusal;                     ///< why the service did not take the order's folder
    std::array<FilesSummary, modes> summaries; ///< of the files, see resummarise()

    QVector<SourceFile> &files(PhotoMode photoMode) { return filesByMode[modeIndex(photoMode)]; }
    const QVector<SourceFile> &files(PhotoMode photoMode) const
    {
        return filesByMode[modeIndex(photoMode)];
    }
    OrderIdentity identity() const { return info.identity(); }
    const FilesSummary &summary(PhotoMode photoMode) const
    {
        return summaries[modeIndex(photoMode)];
    }
    const QVector<orderqueries::OrderPhoto> &imported(PhotoMode photoMode) const
    {
        return importedByMode[modeIndex(photoMode)];
    }
    /// After files changed.
    void resummarise();

    /// The number users know the order by, with its service: "0012-1".
    QString displayNumber() const;
    QString customers() const;
    /// displayNumber() and the customers' names.
    QString displayName() const;
    /// In Windows form; empty when there is nothing it could be made of.
    QString folder() const;
    bool hasUnfinishedFiles() const;

private:
    static std::size_t modeIndex(PhotoMode photoMode);
};

/// How a run ended, over all files of its orders.
struct RunOutcome
{
    int failed = 0;               ///< files
    int unregistered = 0;         ///< files and folders of orders
    int withoutVariants = 0;      ///< files of a sort of which there are none
    QMap<QString, int> reasons{}; ///< why files failed: how many, by reason

    void add(const PhotoOrder &order, PhotoMode photoMode);
    bool isGood() const { return failed == 0 && unregistered == 0; }
    /// For the user.
    QString text() const;
};
Q_DECLARE_METATYPE(RunOutcome)

namespace photoorders {

/// Files whose main form is imported and of which another failed.
struct FailedForms
{
    QString file;
    QString reason; ///< one line
};
QVector<FailedForms> failedForms(const PhotoOrder &order, PhotoMode photoMode);

/// The order with the jobs that its files at \a indexes still ask for; all of them when empty.
/// Without jobs when nothing is left to do.
OrderInfo withJobs(const PhotoOrder &order, PhotoMode photoMode, const QVector<int> &indexes = {});

/// The order with the jobs that brought the source files at \a indexes themselves, done or not.
OrderInfo withMainJobs(const PhotoOrder &order, PhotoMode photoMode, const QVector<int> &indexes);

/// What to ask before the orders at \a starting are imported: names those that share a folder with
/// any other of \a orders. Empty when none does.
QString sharedFoldersQuestion(const QVector<PhotoOrder> &orders, const QVector<int> &starting);

/// Why none of \a orders has anything to import; empty when one has.
QString nothingToImport(const QVector<PhotoOrder> &orders, PhotoMode photoMode);

/// Text and colour (QRgb) of an order's state cell.
QString stateText(const PhotoOrder &order, PhotoMode photoMode);
unsigned int stateColour(const PhotoOrder &order, PhotoMode photoMode);

/// Share of an order's jobs that are reported, 0 to 1, by bytes; -1 without files.
double progressShare(const PhotoOrder &order, PhotoMode photoMode);
/// Text and colour (QRgb) of the bar that shows it: what went wrong looks like it.
QString progressText(const PhotoOrder &order, PhotoMode photoMode);
unsigned int progressColour(const PhotoOrder &order, PhotoMode photoMode);

} // namespace photoorders
