#pragma once

#include "cardcheck/rules/evidence.h"
#include "records/recordtable.h"

#include <QSortFilterProxyModel>

#include <optional>

/// The files of a card with what is known of each.
class CardFileModel : public RecordTable<evidence::CheckedFile>
{
    Q_OBJECT

public:
    enum Column {
        StateColumn,
        NameColumn,
        KindColumn,
        SizeColumn,
        OrderColumn,
        TargetColumn,
        ProofColumn,
        ColumnCount
    };

    explicit CardFileModel(QObject *parent = nullptr);

    void setFiles(const QVector<evidence::CheckedFile> &files) { reset(files); }
    void setFile(int row, const evidence::CheckedFile &file);
    const evidence::CheckedFile &file(int row) const { return records_.at(row); }
};

/// Those of the files that are to be seen.
class CardFileFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit CardFileFilter(const CardFileModel *files, QObject *parent = nullptr);

    /// All without a state.
    void showOnly(std::optional<evidence::State> state);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    const CardFileModel *files_;
    std::optional<evidence::State> state_;
};
