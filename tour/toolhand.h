#pragma once

#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"
#include "platform/pathform.h"
#include "tests/support/files.h"
#include "tests/support/text.h"
#include "tour/guide.h"
#include "tour/steps.h"

#include <QDir>
#include <QLineEdit>
#include <QTableView>
#include <QtTest>

/// A tool's window as the tour handles it, opened by its card; \a numberColumn of its table of
/// orders tells the orders apart.
template <typename Window, int numberColumn> class ToolHand
{
public:
    ToolHand(Guide &guide, const QString &card) : guide_(guide)
    {
        auto *launcher = guide.waitForWindow<ChooseTools>("the launcher is there"_s);
        QTest::mouseDClick(launcher->findChild<ToolCardWidget *>(card), Qt::LeftButton);
        window_ = guide.waitForWindow<Window>("its window opens"_s);
        guide.spread(window_);
        guide.waitFor([this] { return orders()->model()->rowCount() > 0; },
                      "the branch's orders are listed"_s);
    }

    Window *window() const { return window_; }
    QTableView *orders() const { return table("orderTable"); }
    QTableView *files() const { return table("fileTable"); }

    void search(const QString &keyword, int expectedRows)
    {
        guide_.typeInto(window_, "keywordEdit", keyword);
        QTest::keyClick(window_->template findChild<QLineEdit *>("keywordEdit"_s), Qt::Key_Return);
        guide_.waitFor([&] { return orders()->model()->rowCount() == expectedRows; },
                       "a search for %1 finds %2"_s.arg(keyword).arg(expectedRows));
    }

    QModelIndex cell(const QString &number, int column) const
    {
        const QAbstractItemModel *model = orders()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, numberColumn).data() == number)
                return model->index(row, column);
        }
        throw TourFailure{"order %1 is not listed"_s.arg(number)};
    }
    QString text(const QString &number, int column) const
    {
        return cell(number, column).data().toString();
    }
    /// Of a cell whose text is a path.
    QDir folder(const QString &number, int column, const QString &sub = "."_s) const
    {
        return QDir(platform::toLocalPath(text(number, column)) + "/"_s + sub);
    }

    /// At the middle of the cell unless \a position says otherwise.
    void press(const QModelIndex &index, const QPoint &position = {})
    {
        orders()->scrollTo(index);
        QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {},
                          position.isNull() ? orders()->visualRect(index).center() : position);
    }

protected:
    QTableView *table(const char *name) const
    {
        return window_->template findChild<QTableView *>(QLatin1String(name));
    }

    Guide &guide_;
    Window *window_ = nullptr;
};
