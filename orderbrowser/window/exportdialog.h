#pragma once

#include "widgets/windows/framelessdialog.h"

class CustomCheckBoxNew;
class QRadioButton;

/// Asks what of the orders is to be exported. Show it with open(); it deletes itself when closed.
class ExportDialog : public FramelessDialog
{
    Q_OBJECT

public:
    /// \a shown and \a selected rows; \a masksPhones: whether telephone numbers are masked now.
    ExportDialog(QWidget *parent, int shown, int selected, bool masksPhones);

signals:
    void chosen(bool selectedAlone, bool wholePhones);

private:
    QRadioButton *all_;
    QRadioButton *selected_;
    CustomCheckBoxNew *phones_;
};
