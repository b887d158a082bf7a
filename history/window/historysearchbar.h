#pragma once

#include "history/rules/historywish.h"

#include <QWidget>

class ComboBox;
class DatePicker;
class LineEdit;
class QLabel;
class QPushButton;

/// What is looked for in the history, as the user types it. Enter in any field searches.
class HistorySearchBar : public QWidget
{
    Q_OBJECT

public:
    explicit HistorySearchBar(QWidget *parent = nullptr);

    HistoryWish wish() const;

signals:
    void searchRequested();

private:
    LineEdit *input(const QString &name, const QString &prompt);
    void clear();

    LineEdit *order_;
    LineEdit *file_;
    LineEdit *card_;
    DatePicker *from_;
    DatePicker *to_;
    ComboBox *kind_;
    ComboBox *state_;
    QPushButton *clear_;
    QPushButton *search_;
    QLabel *hint_;
};
