#pragma once

#include <QPushButton>
#include <QString>

/// Shows which separator follows a field and lets the user choose another from a pop-up menu.
class SeparatorButton : public QPushButton
{
    Q_OBJECT

public:
    explicit SeparatorButton(const QString &separator, QWidget *parent = nullptr);

    const QString &separator() const { return separator_; }
    /// Announces a change; the present one again is none.
    void setSeparator(const QString &separator);
    void openMenu();

signals:
    void separatorChanged(const QString &separator);

private:
    void showSeparator();

    QString separator_;
};
