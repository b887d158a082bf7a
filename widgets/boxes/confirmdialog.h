#pragma once

#include "widgets/boxes/boxtext.h"

#include <functional>

class QWidget;

/// The shared confirmation, titled "温馨提示", with "取消" and "确定": a box as those of
/// MessageBox. In scripts of tests Ok and Yes confirm.
class ConfirmDialog
{
public:
    ConfirmDialog() = delete;

    /// What Enter does at first: for what cannot be undone, the cautious way.
    enum class Enter { Confirms, Cancels };

    /// Runs \a then with whether the user confirmed, as MessageBox runs its continuations.
    static void ask(QWidget *parent, const BoxText &text, Enter enter,
                    std::function<void(bool confirmed)> then);
};
