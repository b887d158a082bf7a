#pragma once

#include "cardcheck/rules/verdict.h"

#include <QHash>
#include <QWidget>

#include <optional>

class QPushButton;

/// A button for each state that files are in, with their number; one of them is pressed.
class StateFilters : public QWidget
{
    Q_OBJECT

public:
    explicit StateFilters(QWidget *parent = nullptr);

    void showTally(const verdict::Tally &tally);
    void showAll();

signals:
    /// Nothing for all.
    void chosen(std::optional<evidence::State> state);

private:
    QPushButton *addButton(const QString &name, std::optional<evidence::State> state);

    QPushButton *all_;
    QHash<int, QPushButton *> byState_;
};
