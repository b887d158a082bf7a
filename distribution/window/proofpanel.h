#pragma once

#include "distribution/proof/oldfiles.h"

#include <QVector>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QPushButton;

/// What stands in the folders of the orders after a run, beside what it was to write: counts, the
/// files that are missing, and those that an earlier run has left, with the button that puts them
/// away. Hidden until there is something to show.
class ProofPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ProofPanel(QWidget *parent = nullptr);

    void showProofs(const QVector<ProvedOrder> &orders);
    void clear();
    /// While files are being put away.
    void setBusy(bool busy);
    void showPutAway(const QVector<PutAway> &results);

signals:
    void putAwayRequested(const QVector<ProvedOrder> &orders);

private:
    QVector<ProvedOrder> orders_;
    QLabel *headline_;
    QPushButton *putAway_;
    QPlainTextEdit *lines_;
};
