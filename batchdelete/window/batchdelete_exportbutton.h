#pragma once

#include <QPushButton>

class BatchDeleteOrderModel;

/// Saves or copies what became of every file of the orders that a run had its turn with, and why
/// others were refused.
class BatchDelete_ExportButton : public QPushButton
{
    Q_OBJECT

public:
    /// \a model must outlive the button's use.
    explicit BatchDelete_ExportButton(const BatchDeleteOrderModel *model,
                                      QWidget *parent = nullptr);

private:
    bool hasOutcome();
    void saveOutcome();
    void copyOutcome();

    const BatchDeleteOrderModel *model_;
};
