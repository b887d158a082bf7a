#pragma once

#include <QString>
#include <QWidget>

class QLabel;

/// A card of the launcher: an icon above a label. Enter and the space bar do what a double click
/// does. A disabled card answers nothing.
class ToolCardWidget : public QWidget
{
    Q_OBJECT

public:
    /// \a iconPath is an SVG.
    ToolCardWidget(const QString &name, const QString &iconPath, QWidget *parent = nullptr);

    const QString &name() const { return name_; }

signals:
    void clicked(const QString &name);
    void doubleClicked(const QString &name);

protected:
    void changeEvent(QEvent *event) override;
    void enterEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showState();

    QString name_;
    QLabel *icon_;
    QLabel *label_;
    bool hovered_ = false;
    bool pressed_ = false; ///< a click began here
};
