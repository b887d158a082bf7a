#pragma once

#include "fileimport/rules/importrecords.h"

#include <QAbstractTableModel>
#include <QString>
#include <QVector>

/// The files of the order shown, one a row, with their state.
class ImportFileTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { FileNameColumn, StateColumn, ActionColumn, TargetColumn, ColumnCount };
    /// The file's state as an integer, for any column.
    static constexpr int StateRole = Qt::UserRole;

    explicit ImportFileTableModel(QObject *parent = nullptr);

    void setFiles(const QVector<ImportFile> &files);
    void clear();
    void append(const ImportFile &file);
    const QVector<ImportFile> &files() const { return files_; }
    /// Rows out of range are ignored.
    void updateRow(int row, qint32 state, const QString &message);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QVector<ImportFile> files_;
    QStringList headers_;
};
