#pragma once

#include <QWidget>

class QLabel;
class QVBoxLayout;

/// A page of 设置: a heading, and below it what the page adds, from the top down.
class SettingsPage : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsPage(const QString &title);

    const QString &title() const { return title_; }

protected:
    QVBoxLayout *rows() const { return rows_; }
    /// A text that wraps, muted; plain.
    QLabel *addNote(const QString &text);

private:
    const QString title_;
    QVBoxLayout *rows_;
};
