#pragma once

#include "widgets/boxes/noticedialog.h"

#include <QString>

/// The shared confirmation, titled "温馨提示", with "取消" and "确定"; a long text (a list of
/// files) scrolls. In scripts of tests it is one of the message boxes: Ok and Yes confirm.
class ConfirmDialog : public NoticeDialog
{
    Q_OBJECT

public:
    /// What Enter does at first: for what cannot be undone, the cautious way.
    enum class Enter { Confirms, Cancels };

    ConfirmDialog(QWidget *parent, const QString &text, Enter enter = Enter::Confirms);

    /// True when the user confirmed. Waits as the message boxes do.
    static bool ask(QWidget *parent, const QString &text, Enter enter = Enter::Confirms);
};
