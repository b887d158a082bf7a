#pragma once

#include "cardcheck/report/reportcontent.h"
#include "cardcheck/run/cardcheckrun.h"
#include "cardcheck/run/cardwatch.h"
#include "cardcheck/window/cardfilemodel.h"
#include "tasks/latest.h"
#include "widgets/orders/orderdestination.h"
#include "widgets/windows/framelesswindow.h"

#include <QElapsedTimer>
#include <QSet>
#include <QTimer>

class ComboBox;
class EmptyStateTable;
class LightPanel;
class QPushButton;
class SortedRows;
class SoughtOrderPanel;
class StateFilters;
class TransferView;

/// The window that answers "may I format this card?": choose a card, have every file compared with
/// where it was imported, see why not. What it decides lives in verdict and CardCheckRun.
class CardCheck : public FramelessWindow
{
    Q_OBJECT

public:
    /// \a read: for tests; otherwise the files as they are.
    explicit CardCheck(filereadings::Reader read = filereadings::readAsItIs,
                       QWidget *parent = nullptr);
    ~CardCheck() override;

    const verdict::Findings &findings() const { return run_.findings(); }

signals:
    /// The user wants \a files to be imported for the order, in the tool of that card.
    void importRequested(const QString &card, const OrderPlace &order);

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    QWidget *sourceRow();
    QWidget *checkHalf();
    QWidget *foot();
    void buildTable();
    void connectRun();
    void addKeys();

    void showCards();
    void chooseFolder();
    void chooseCard();
    void onCardChosen(const QString &root);
    QString chosenRoot() const;
    QString cardName() const;

    void startOrCancel();
    void onListed();
    void onFinished();
    void showChanges();
    void showState();
    void importMissing();
    void saveReport(const QString &suffix);

    CardCheckRun run_;
    CardWatch watch_;
    CardFileModel files_;
    CardFileFilter filter_;
    QTimer changeTimer_; ///< collects changes of files before they are shown
    QSet<int> changed_;
    QElapsedTimer clock_;
    TransferRate rate_;
    QDateTime checkedAt_;
    QString checkedCard_;
    Latest look_; ///< at a card that was chosen

    QStringList folders_; ///< that the user chose, besides the cards
    ComboBox *cardBox_;
    SoughtOrderPanel *orders_;
    LightPanel *light_;
    TransferView *progress_;
    StateFilters *filters_;
    EmptyStateTable *table_;
    SortedRows *rows_ = nullptr;
    QPushButton *startButton_;
    QPushButton *importButton_;
    QPushButton *pdfButton_;
    QPushButton *csvButton_;
    bool opened_ = false;
};
