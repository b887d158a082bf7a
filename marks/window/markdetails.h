#pragma once

#include "marks/rules/marklines.h"
#include "widgets/windows/framelessdialog.h"

/// Lists the files that a sentence is about, each with what it is compared with. Shown by open();
/// it deletes itself when closed.
class MarkDetails : public FramelessDialog
{
    Q_OBJECT

public:
    MarkDetails(QWidget *window, const QString &heading, const QVector<marks::Detail> &details);
};
