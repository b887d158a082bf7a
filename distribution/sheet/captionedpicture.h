#pragma once

#include <QObject>
#include <QTextObjectInterface>

class QTextBlock;
class QTextDocument;
class QTextLayout;

/// A picture of a text document with the lines below it as one object, which no page's end divides.
/// Belongs to the document that it works for.
class CaptionedPicture : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    explicit CaptionedPicture(QTextDocument *document);

    /// Joins a paragraph that is nothing but a picture, and the one below it, into such an object
    /// no wider than \a width. Anything else stays as it is.
    void join(const QTextBlock &picture, const QTextBlock &caption, double width);

    QSizeF intrinsicSize(QTextDocument *document, int position, const QTextFormat &format) override;
    void drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document, int position,
                    const QTextFormat &format) override;

private:
    enum Property {
        PictureUrl = QTextFormat::UserProperty + 1,
        PictureSize,
        Caption,
        Size, ///< of it all
    };

    static double layOut(QTextLayout *caption, double width);
};
