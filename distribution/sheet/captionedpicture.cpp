#include "distribution/sheet/captionedpicture.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QUrl>

namespace {

constexpr int objectType = QTextFormat::UserObject + 1;
constexpr double gap = 3;

} // namespace

CaptionedPicture::CaptionedPicture(QTextDocument *document) : QObject(document)
{
    document->documentLayout()->registerHandler(objectType, this);
}

void CaptionedPicture::join(const QTextBlock &picture, const QTextBlock &caption, double width)
{
    if (picture.length() != 2)
        return;
    const QTextImageFormat image = picture.begin().fragment().charFormat().toImageFormat();
    const QTextCharFormat text = caption.begin().fragment().charFormat();
    if (!image.isValid() || caption.text().isEmpty())
        return;
    QTextCharFormat joined;
    joined.setObjectType(objectType);
    joined.setFont(text.font());
    joined.setProperty(PictureUrl, QUrl(image.name()));
    joined.setProperty(PictureSize, QSizeF(image.width(), image.height()));
    joined.setProperty(Caption, caption.text());
    QTextLayout lines(caption.text(), text.font());
    joined.setProperty(Size, QSizeF(width, image.height() + gap + layOut(&lines, width)));
    QTextCursor cursor(picture);
    cursor.setPosition(caption.position() + caption.length() - 1, QTextCursor::KeepAnchor);
    cursor.insertText(QString(QChar(QChar::ObjectReplacementCharacter)), joined);
}

/// Returns the height.
double CaptionedPicture::layOut(QTextLayout *caption, double width)
{
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setUseDesignMetrics(true);
    caption->setTextOption(option);
    double height = 0;
    caption->beginLayout();
    for (QTextLine line = caption->createLine(); line.isValid(); line = caption->createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
    }
    caption->endLayout();
    return height;
}

/// Asked again and again while pages are divided.
QSizeF CaptionedPicture::intrinsicSize(QTextDocument *, int, const QTextFormat &format)
{
    return format.property(Size).toSizeF();
}

void CaptionedPicture::drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document,
                                  int, const QTextFormat &format)
{
    const QSizeF size = format.property(PictureSize).toSizeF();
    const auto picture =
        document->resource(QTextDocument::ImageResource, format.property(PictureUrl).toUrl())
            .value<QImage>();
    painter->drawImage(QRectF(QPointF(rect.center().x() - size.width() / 2, rect.top()), size),
                       picture);
    QTextLayout caption(format.property(Caption).toString(), format.toCharFormat().font());
    layOut(&caption, rect.width());
    painter->setPen(Qt::black);
    caption.draw(painter, QPointF(rect.left(), rect.top() + size.height() + gap));
}
