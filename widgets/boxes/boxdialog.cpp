#include "widgets/boxes/boxdialog.h"

#include "look/colours.h"
#include "tasks/background.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/titlebar.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTextEdit>
#include <QVBoxLayout>
#include <QtMath>

namespace {

constexpr double screenShare = 0.6; ///< of the screen's height, for the text at most
/// A text longer than this fills the largest box anyway and need not be measured whole.
constexpr int measuredCharacters = 4000;

/// Stands for whatever rich text names: an image must not reach for a share or a file. With nothing
/// in its place the framework would look for the file itself.
QVariant placeholder()
{
    return QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
}

class NoticeText : public QTextEdit
{
public:
    using QTextEdit::QTextEdit;

    QVariant loadResource(int, const QUrl &) override { return placeholder(); }
};

class MeasuredText : public QTextDocument
{
protected:
    QVariant loadResource(int, const QUrl &) override { return placeholder(); }
};

struct ButtonText
{
    QMessageBox::StandardButton button;
    QString text;
};

/// In the order in which they stand: what declines before what agrees.
QList<ButtonText> buttonTexts()
{
    return {{QMessageBox::Cancel, QStringLiteral("取消")},
            {QMessageBox::Close, QStringLiteral("关闭")},
            {QMessageBox::Abort, QStringLiteral("中止")},
            {QMessageBox::NoToAll, QStringLiteral("全部否")},
            {QMessageBox::No, QStringLiteral("否")},
            {QMessageBox::Discard, QStringLiteral("不保存")},
            {QMessageBox::Ignore, QStringLiteral("忽略")},
            {QMessageBox::YesToAll, QStringLiteral("全部是")},
            {QMessageBox::Retry, QStringLiteral("重试")},
            {QMessageBox::Save, QStringLiteral("保存")},
            {QMessageBox::Yes, QStringLiteral("是")},
            {QMessageBox::Ok, QStringLiteral("确定")}};
}

QPixmap symbolOf(BoxRecord::Kind kind, double pixelRatio)
{
    const int size = theme::noticeIconSize();
    QPixmap pixmap(QSize(size, size) * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    const bool warns = kind == BoxRecord::Kind::Warning;
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours::toColor(warns ? colours::inProgress : colours::accent));
    const QRectF circle(0, 0, size, size);
    painter.drawEllipse(circle);
    QFont font = painter.font();
    font.setPixelSize(size * 2 / 3);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(colours::toColor(warns ? colours::heading : colours::onFilled));
    const bool asks = kind == BoxRecord::Kind::Question || kind == BoxRecord::Kind::Confirmation;
    painter.drawText(circle, Qt::AlignCenter,
                     asks    ? QStringLiteral("?")
                     : warns ? QStringLiteral("!")
                             : QStringLiteral("i"));
    return pixmap;
}

template <typename Edit> Edit *prepared(Edit *edit)
{
    edit->setObjectName(QStringLiteral("noticeText"));
    edit->setReadOnly(true);
    edit->setTabChangesFocus(true);
    edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    edit->setFrameShape(QFrame::NoFrame);
    edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    edit->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return edit;
}

/// How large \a document wants to be when it is no wider than \a widest.
QSize naturalSize(QTextDocument *document, int widest)
{
    QTextOption option = document->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document->setDefaultTextOption(option);
    document->setTextWidth(widest);
    const double ideal = qMin(document->idealWidth(), double(widest));
    return {qCeil(ideal), qCeil(document->size().height())};
}

} // namespace

BoxDialog::BoxDialog(const BoxRecord &box, const BoxText &text, QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint)
    , answer_(boxscript::safeAnswer(box.buttons))
{
    setWindowTitle(box.title);
    setStyleSheet(theme::messageBoxStyle());

    auto *titleBar = new TitleBar(this);
    titleBar->setMinimizable(false);
    titleBar->setMaximizable(false);
    titleBar->setTitle(box.title);
    connect(titleBar, &TitleBar::closeRequested, this, &QDialog::reject);

    auto *symbol = new PlainLabel(this);
    symbol->setPixmap(symbolOf(box.kind, devicePixelRatioF()));
    auto *message = new QHBoxLayout;
    message->setSpacing(theme::margin());
    message->addWidget(symbol, 0, Qt::AlignTop);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(theme::spacing());
    texts->addWidget(textArea(text.shown, text.format));
    if (!text.explanation.isEmpty()) {
        QAbstractScrollArea *below = textArea(text.explanation, Qt::PlainText);
        below->setObjectName(QStringLiteral("noticeExplanation"));
        texts->addWidget(below);
    }
    message->addLayout(texts, 1);

    auto *content = new QVBoxLayout;
    const int margin = theme::margin();
    content->setContentsMargins(margin, margin, margin, margin);
    content->setSpacing(margin);
    content->addLayout(message, 1);
    auto *all = new QVBoxLayout(this);
    const int border = theme::hairline();
    all->setContentsMargins(border, border, border, border);
    all->setSpacing(0);
    all->addWidget(titleBar);
    all->addLayout(content, 1);
    QHBoxLayout *row = addButtons(box.buttons, text.answers);
    content->addLayout(row);
    if (text.whole)
        addCopyButton(row, text.whole);
    for (const BoxAction &action : text.actions)
        addAction(row, action);
    setTabOrder(choices_.last().button, titleBar->closeButton());
    if (text.danger != 0)
        warnOf(QMessageBox::StandardButton(text.danger));
}

void BoxDialog::warnOf(QMessageBox::StandardButton danger)
{
    setDefaultButton(answer_);
    isDangerous_ = true;
    for (const Choice &choice : qAsConst(choices_))
        choice.button->setObjectName(choice.which == danger ? QStringLiteral("dangerButton")
                                                            : QStringLiteral("safeButton"));
}

QAbstractScrollArea *BoxDialog::textArea(const QString &text, Qt::TextFormat format)
{
    const bool rich = format == Qt::RichText;
    QAbstractScrollArea *area = nullptr;
    MeasuredText measured;
    QFont textFont = font();
    textFont.setPixelSize(theme::textSize());
    measured.setDefaultFont(textFont);
    if (rich) {
        auto *edit = prepared(new NoticeText(this));
        edit->setHtml(text);
        measured.setHtml(text);
        area = edit;
    } else {
        // Lays out only what is in sight, so that a list of thousands of files opens at once.
        auto *edit = prepared(new QPlainTextEdit(this));
        edit->setPlainText(text);
        measured.setPlainText(text.left(measuredCharacters));
        area = edit;
    }
    const QSize natural = naturalSize(&measured, theme::widestNotice());
    const QScreen *screen = QGuiApplication::primaryScreen();
    const int tallest =
        screen ? int(screen->availableSize().height() * screenShare) : theme::widestNotice();
    const bool scrolls = natural.height() > tallest || (!rich && text.size() > measuredCharacters);
    const int width = qMax(natural.width(), theme::narrowestNotice()) + theme::focusWidth();
    // A bar that appeared for a missing pixel would take the width and wrap the text anew.
    area->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    area->setFixedHeight(scrolls ? tallest : natural.height() + theme::focusWidth());
    area->setMinimumWidth(width + (scrolls ? 2 * theme::scrollBarWidth() : 0));
    return area;
}

QHBoxLayout *BoxDialog::addButtons(QMessageBox::StandardButtons buttons,
                                   const QHash<int, QString> &names)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(theme::spacing());
    row->addStretch();
    QPushButton *agreeing = nullptr;
    const auto texts = buttonTexts();
    for (const ButtonText &each : texts) {
        if (!buttons.testFlag(each.button))
            continue;
        auto *button = new QPushButton(names.value(each.button, each.text), this);
        connect(button, &QPushButton::clicked, this, [this, which = each.button] {
            answer_ = which;
            accept();
        });
        row->addWidget(button);
        choices_.append({each.button, button});
        agreeing = button;
    }
    if (agreeing) {
        agreeing->setDefault(true);
        agreeing->setFocus();
    }
    return row;
}

void BoxDialog::addCopyButton(QHBoxLayout *row, const std::function<QString()> &whole)
{
    QPushButton *copy = addBesides(row, QStringLiteral("复制"));
    copy->setObjectName(QStringLiteral("copyButton"));
    connect(copy, &QPushButton::clicked, this, [this, whole] {
        onProcessor(this, whole, [this](const QString &text) {
            QGuiApplication::clipboard()->setText(text);
            Toast::show(this, QStringLiteral("已复制全部内容"));
        });
    });
}

void BoxDialog::addAction(QHBoxLayout *row, const BoxAction &action)
{
    QPushButton *button = addBesides(row, action.text);
    connect(button, &QPushButton::clicked, this, [this, act = action.act] { act(this); });
}

/// A button that answers nothing.
QPushButton *BoxDialog::addBesides(QHBoxLayout *row, const QString &text)
{
    auto *button = new QPushButton(text, this);
    button->setAutoDefault(false);
    row->insertWidget(0, button);
    return button;
}

void BoxDialog::setDefaultButton(QMessageBox::StandardButton which)
{
    if (isDangerous_)
        return;
    if (QPushButton *wanted = button(which)) {
        wanted->setDefault(true);
        wanted->setFocus();
    }
}

QPushButton *BoxDialog::button(QMessageBox::StandardButton which) const
{
    for (const Choice &choice : choices_) {
        if (choice.which == which)
            return choice.button;
    }
    return nullptr;
}

void BoxDialog::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), colours::toColor(colours::outline));
    const int border = theme::hairline();
    painter.fillRect(rect().adjusted(border, border, -border, -border),
                     colours::toColor(colours::surface));
}
