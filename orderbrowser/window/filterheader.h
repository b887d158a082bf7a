#pragma once

#include <QHash>
#include <QHeaderView>
#include <QVector>

#include <climits>

class LineEdit;

/// A header with a line for filters under its headings, a field for each section. The fields move
/// with their sections. Horizontal. Of two headers that share a table's columns each has the fields
/// of its own.
class FilterHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit FilterHeader(QWidget *parent = nullptr);

    /// Only sections in the places from \a first up to \a end have a field.
    void setFieldPlaces(int first, int end);
    /// The filter under a section, and what can be typed there. Announces nothing.
    void setFilter(int section, const QString &text, const QString &help);
    /// False for a section without a field.
    bool focusFilter(int section);

    QSize sizeHint() const override;
    void setModel(QAbstractItemModel *model) override;

signals:
    void filterTyped(int section, const QString &text);
    /// Down was pressed in a filter: on to the rows.
    void leftDownwards();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintSection(QPainter *painter, const QRect &rect, int section) const override;
    void resizeEvent(QResizeEvent *event) override;
    void updateGeometries() override;

private:
    struct Filter
    {
        QString text;
        QString help;
        LineEdit *field = nullptr; ///< null where it has none
    };

    bool hasField(int section) const;
    void makeFields();
    LineEdit *makeField(int section);
    void placeFields();
    void bringIntoView(int section);

    QVector<Filter> filters_; ///< by section
    int firstPlace_ = 0;
    int endPlace_ = INT_MAX;
};
