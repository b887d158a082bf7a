#pragma once

#include <QObject>
#include <QTimer>
#include <QVector>

class QWidget;

/// Widgets with thousands of children that nobody wants any more. Hiding or deleting all of them at
/// once would hold the interface up, so they are moved out of sight and go a few at a time.
class RetiredWidgets : public QObject
{
    Q_OBJECT

public:
    explicit RetiredWidgets(QObject *parent = nullptr);

    /// From now on \a widget is ours; its parent may still delete it with everything else.
    void add(QWidget *widget);

private:
    void deleteSome();

    QVector<QWidget *> widgets_;
    QTimer timer_;
};
