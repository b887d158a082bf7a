#include "photoimport/imported/tfphotodelegate.h"

#include "app/context/k.h"
#include "files/transferprogress.h"
#include "look/colours.h"
#include "marks/window/marktag.h"
#include "photoimport/imported/tfphotolistmodel.h"
#include "photoimport/rules/photorules.h"
#include "widgets/theme/theme.h"

#include <QFileInfo>
#include <QPainter>

namespace {

constexpr int cardWidthPx = 188;
constexpr int cardPictureHeightPx = 132;
constexpr int rowPictureWidthPx = 84;
constexpr int rowHeightPx = 68;
constexpr int rowTextWidthPx = 190;
constexpr int linePx = 20;
constexpr int markHeightPx = 18;
constexpr int paddingPx = 6;

struct Badge
{
    QString text;
    QRgb colour;
};

QString kindText(const QString &kind)
{
    if (kind == photorules::originalKind)
        return QStringLiteral("原图");
    if (kind == photorules::trialVideoKind || kind == photorules::retouchedVideoKind)
        return QStringLiteral("视频");
    return kind;
}

QRgb colourOf(JobState state)
{
    if (state == JobState::Done)
        return colours::success;
    return state == JobState::Failed ? colours::failure : colours::muted;
}

QVector<Badge> badgesOf(const PanelPhoto &photo)
{
    QVector<Badge> badges;
    for (const SourceJob &job : photo.file.jobs) {
        if (job.state != JobState::Impossible)
            badges.append({kindText(job.kind), colourOf(job.state)});
    }
    if (photo.file.hasImpossible())
        badges.append({QStringLiteral("没有小图"), colours::muted});
    const QString registration = QStringLiteral("登记");
    switch (photo.file.registration) {
    case RegistrationState::Pending:
        badges.append({registration, colours::inProgress});
        break;
    case RegistrationState::Refused:
        badges.append({registration, colours::failure});
        break;
    case RegistrationState::Registered:
        badges.append({registration, colours::success});
        break;
    case RegistrationState::None:
        if (photo.fileIndex < 0) // the service told us of it
            badges.append({registration, colours::success});
        break;
    }
    return badges;
}

/// One cell being painted.
class Cell
{
public:
    Cell(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
        : painter_(painter)
        , index_(index)
        , photo_(index.data(tfphotolistmodel::PhotoRole).value<PanelPhoto>())
        , mark_(marks::Mark(index.data(tfphotolistmodel::MarkRole).toInt()))
        , area_(option.rect.adjusted(K::scaledPx(2), K::scaledPx(2), -K::scaledPx(2),
                                     -K::scaledPx(2)))
        , padding_(K::scaledPx(paddingPx))
        , selected_(option.state.testFlag(QStyle::State_Selected))
        , focused_(option.state.testFlag(QStyle::State_HasFocus))
    {
    }

    void background() const
    {
        painter_->setPen(QPen(colours::toColor(focused_ ? colours::accent : colours::divider),
                              focused_ ? theme::focusWidth() : theme::hairline()));
        painter_->setBrush(colours::toColor(selected_ ? colours::accentTint : colours::surface));
        painter_->drawRoundedRect(area_, theme::radius(), theme::radius());
    }

    void card() const
    {
        const int line = K::scaledPx(linePx);
        const int width = area_.width() - 2 * padding_;
        int top = area_.top() + padding_;
        const int left = area_.left() + padding_;
        picture({left, top, width, K::scaledPx(cardPictureHeightPx)});
        marktag::paint(painter_,
                       {left + padding_ / 2, top + padding_ / 2, width, K::scaledPx(linePx)}, mark_,
                       marktag::Ground::Picture);
        top += K::scaledPx(cardPictureHeightPx) + padding_ / 2;
        const QString size = sizeText();
        const int sizeWidth = painter_->fontMetrics().horizontalAdvance(size) + padding_ / 2;
        text({left, top, width - sizeWidth - padding_, line}, photo_.name, colours::heading,
             Qt::ElideMiddle);
        text({left + width - sizeWidth, top, sizeWidth, line}, size, colours::placeholder);
        top += line;
        badges({left, top, width, line});
        text({left, top + line, width, line}, photo_.file.failureText(), colours::failure);
    }

    void row() const
    {
        const int line = K::scaledPx(linePx);
        const int middle = area_.center().y();
        int left = area_.left() + padding_;
        picture({left, area_.top() + padding_ / 2, K::scaledPx(rowPictureWidthPx),
                 area_.height() - padding_});
        left += K::scaledPx(rowPictureWidthPx) + 2 * padding_;
        // In a narrow window the name is elided rather than a mark left out.
        const int room = area_.right() - 2 * padding_ - left - badgesWidth();
        const int textWidth = qBound(0, room, K::scaledPx(rowTextWidthPx));
        text({left, middle - line, textWidth, line}, photo_.name, colours::heading,
             Qt::ElideMiddle);
        const int right = area_.right() - padding_;
        const QString size = sizeText();
        const QString failure = photo_.file.failureText();
        // Why something failed gets all the room that the size leaves.
        const int sizeWidth = painter_->fontMetrics().horizontalAdvance(size) + padding_ / 2;
        text({left, middle, sizeWidth, line}, size, colours::placeholder);
        const int failureLeft = left + (size.isEmpty() ? 0 : sizeWidth + 2 * padding_);
        text({failureLeft, middle, right - failureLeft, line}, failure, colours::failure);
        left += textWidth + padding_;
        const int markTop = failure.isEmpty() ? middle - line / 2 : middle - line;
        const int markWidth = marktag::widthOf(mark_, painter_->font());
        if (markWidth > 0) {
            marktag::paint(painter_, {left, markTop, markWidth, line}, mark_);
            left += markWidth + padding_ / 2;
        }
        badges({left, markTop, right - left, line});
    }

private:
    QString sizeText() const
    {
        return photo_.fileIndex < 0 ? QString() : dataSizeText(double(photo_.file.size));
    }

    void picture(const QRect &frame) const
    {
        const QImage image = index_.data(tfphotolistmodel::ThumbnailRole).value<QImage>();
        if (!image.isNull()) {
            QRect target(QPoint(), image.size().scaled(frame.size(), Qt::KeepAspectRatio));
            target.moveCenter(frame.center());
            painter_->setRenderHint(QPainter::SmoothPixmapTransform);
            painter_->drawImage(target, image);
            return;
        }
        painter_->fillRect(frame, colours::toColor(colours::surfaceHeader));
        const bool hopeless = index_.data(tfphotolistmodel::NoThumbnailRole).toBool();
        const QString suffix = QFileInfo(photo_.name).suffix().toUpper();
        painter_->setPen(colours::toColor(colours::placeholder));
        painter_->drawText(frame, Qt::AlignCenter, hopeless ? suffix : QStringLiteral("…"));
    }

    void text(const QRect &place, const QString &text, QRgb colour,
              Qt::TextElideMode mode = Qt::ElideRight) const
    {
        painter_->setPen(colours::toColor(colour));
        painter_->drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                           painter_->fontMetrics().elidedText(text, mode, place.width()));
    }

    int badgeWidth(const Badge &badge) const
    {
        return painter_->fontMetrics().horizontalAdvance(badge.text) + 2 * (padding_ / 2);
    }

    int badgesWidth() const
    {
        int width = marktag::widthOf(mark_, painter_->font()) + padding_ / 2;
        const auto all = badgesOf(photo_);
        for (const Badge &badge : all)
            width += badgeWidth(badge) + padding_ / 2;
        return width;
    }

    void badges(const QRect &place) const
    {
        const int height = K::scaledPx(markHeightPx);
        const int inside = padding_ / 2;
        int left = place.left();
        const auto all = badgesOf(photo_);
        for (const Badge &badge : all) {
            const int width = badgeWidth(badge);
            const QRect box(left, place.center().y() - height / 2, width, height);
            if (box.right() > place.right())
                return;
            QColor tint = colours::toColor(badge.colour);
            painter_->setPen(tint);
            tint.setAlphaF(0.12);
            painter_->setBrush(tint);
            painter_->drawRoundedRect(box, theme::radius() / 2.0, theme::radius() / 2.0);
            painter_->drawText(box, Qt::AlignCenter, badge.text);
            left += width + inside;
        }
    }

    QPainter *painter_;
    QModelIndex index_;
    PanelPhoto photo_;
    marks::Mark mark_;
    QRect area_;
    int padding_;
    bool selected_;
    bool focused_;
};

} // namespace

QSize tfphotodelegate::cellSize(bool grid)
{
    if (!grid)
        return {K::scaledPx(rowPictureWidthPx + rowTextWidthPx + cardWidthPx),
                K::scaledPx(rowHeightPx)};
    return {K::scaledPx(cardWidthPx),
            K::scaledPx(cardPictureHeightPx + 3 * linePx + 3 * paddingPx)};
}

int tfphotodelegate::thumbnailSide()
{
    return K::scaledPx(cardWidthPx);
}

void tfphotodelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(option.font);
    const Cell cell(painter, option, index);
    cell.background();
    grid_ ? cell.card() : cell.row();
    painter->restore();
}

QSize tfphotodelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return cellSize(grid_);
}
