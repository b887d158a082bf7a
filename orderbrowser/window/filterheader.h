#pragma once

#include <QHash>
#include <QHeaderView>
#include <QVector>

class LineEdit;

/// A header with a line for filters under its headings, a field for each section. The fields move
/// with their sections. Horizontal.
class FilterHeader : public QHeaderView
{
    Q_OBJECT

public:
    explicit FilterHeader(QWidget *parent = nullptr);

    /// The filter under a section, and what can be typed there. Announces nothing.
    void setFilter(int section, const QString &text, const QString &help);
    void focusFilter(int section);

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
    void makeFields();
    void placeFields();
    void bringIntoView(int section);

    QVector<LineEdit *> fields_; ///< by section
};
