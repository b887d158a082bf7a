#pragma once

#include "app/context/accountcontext.h"
#include "net/orderqueries.h"

#include <QList>
#include <QWidget>

class ComboBox;
class DatePicker;
class QLabel;
class LineEdit;
class QBoxLayout;
class QPushButton;

/// What to search for, in which branch and, where a tool wants it, whose orders. Announces what the
/// user asks for and keeps what was typed; the window that owns it talks to the service. A date
/// search without a date does not search but opens the calendar. Where it is narrow it takes two
/// rows.
class OrderSearchBar : public QWidget
{
    Q_OBJECT

public:
    explicit OrderSearchBar(QWidget *parent = nullptr);

    /// Puts the completion date in the place of the other dates, and \a keywordPrompt into the
    /// field for the rest.
    void searchByCompletion(const QString &keywordPrompt);
    /// A caption for the branches.
    void captionBranches(const QString &text);
    /// Adds a second date to those that are searched by: the last day of a range.
    void addRangeEnd();
    orderqueries::OrderSearch search() const;
    /// Invalid without a second date, and when the search is by text.
    QDate rangeEnd() const;
    /// Shows what was searched for before; the person is chosen as soon as the branch's persons are
    /// listed.
    void showSearch(const orderqueries::OrderSearch &search, const QDate &rangeEnd,
                    const QString &personId);
    /// The basic information with \a text typed.
    void showKeyword(const QString &text);
    /// Back to the basic information with nothing typed. Dates already chosen stay.
    void resetKeyword();

    void setBranches(const QList<ShopRecord> &branches, const QString &selectedId);
    /// Announces nothing; an id that is not listed changes nothing.
    void selectBranch(const QString &id);
    /// Empty for an index that does not exist.
    QString branchId(int index) const;
    QString selectedBranchId() const;

    /// For narrow places: everything below each other, branch first, with a label each.
    void setStacked();
    /// Opens the calendar of the date that is searched by; nothing when the search is by text.
    void openCalendar();
    /// Adds the person filter, with nobody in it yet but "全部".
    void addPersonFilter();
    /// Who can be filtered by, "全部" before them. A person who is listed again stays chosen.
    /// Nothing happens without a person filter.
    void setPersons(const QVector<orderqueries::Person> &persons);
    /// As BranchSession::search() takes it: empty for "全部", null without a person filter.
    QString personId() const;

    /// True while a search runs: asking for another is not possible then.
    void setBusy(bool busy);
    bool isBusy() const { return busy_; }

    QSize minimumSizeHint() const override;

signals:
    void searchRequested();
    void searchTypeChanged(int type);
    /// The user chose another branch.
    void branchChosen(int index);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void requestSearch();
    void showInputFor(int type);
    void arrange();
    void connectParts();
    void addKeys();
    void addType(const QString &name, orderqueries::OrderSearch::Type type);
    int currentType() const;
    QList<QWidget *> searchInputs() const;
    QWidget *inputFor(int type) const;
    QList<ComboBox *> filters() const;

    QWidget *searchRow_;
    ComboBox *typeBox_;
    LineEdit *keywordEdit_;
    DatePicker *shootingDate_;
    DatePicker *selectionDate_;
    DatePicker *completionDate_;
    QPushButton *searchButton_;
    QBoxLayout *filterRow_;
    QLabel *branchCaption_;
    ComboBox *branchBox_;
    DatePicker *rangeEnd_ = nullptr; ///< only where ranges are searched
    ComboBox *personBox_ = nullptr;  ///< only with the person filter
    QString personToChoose_;         ///< once the persons are listed
    QBoxLayout *rows_;
    QString searchText_; ///< of the button
    bool stacked_ = false;
    int branchIndex_ = -1;
    int personIndex_ = 0;
    bool busy_ = false;
};
