#include "tour/guide.h"

#include "tests/support/text.h"
#include "widgets/boxes/boxdialog.h"
#include "widgets/windows/framelesswindow.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int patienceMs = 30000;
constexpr int boxLookMs = 20;

QString textOf(QDialog *box)
{
    if (const auto *plain = box->findChild<QPlainTextEdit *>())
        return plain->toPlainText();
    if (const auto *rich = box->findChild<QTextEdit *>())
        return rich->toPlainText();
    return {};
}

} // namespace

Guide::Guide(const QString &pictureFolder, float scale)
    : pictureFolder_(pictureFolder), scale_(scale)
{
    QDir folder(pictureFolder);
    folder.mkpath("."_s);
    const QStringList earlier = folder.entryList({"[0-9][0-9]-*.png"_s}, QDir::Files);
    for (const QString &picture : earlier)
        folder.remove(picture);
    boxTimer_.setInterval(boxLookMs);
    connect(&boxTimer_, &QTimer::timeout, this, &Guide::answerBox);
}

void Guide::step(const QString &title)
{
    finish();
    ++stepNumber_;
    stepTitle_ = title;
}

void Guide::finish()
{
    if (stepTitle_.isEmpty())
        return;
    printf("%02d %s: %s\n", stepNumber_, qUtf8Printable(stepTitle_),
           qUtf8Printable(checked_.join("; "_s)));
    fflush(stdout);
    stepTitle_.clear();
    checked_.clear();
}

void Guide::check(bool holds, const QString &what)
{
    if (!holds)
        throw TourFailure{what};
    checked_.append(what);
}

void Guide::waitFor(const std::function<bool()> &holds, const QString &what)
{
    check(QTest::qWaitFor(holds, patienceMs), what);
}

void Guide::picture(QWidget *window, const QString &name)
{
    QCoreApplication::processEvents();
    picture(window->grab().toImage(), name);
}

void Guide::picture(const QImage &image, const QString &name)
{
    const QString path =
        "%1/%2-%3.png"_s.arg(pictureFolder_).arg(stepNumber_, 2, 10, QLatin1Char('0')).arg(name);
    if (!image.save(path))
        throw TourFailure{"picture not saved: "_s + path};
}

void Guide::answerNextBox(const QString &buttonText, const QString &pictureName)
{
    boxButton_ = buttonText;
    boxPicture_ = pictureName;
    boxText_.clear();
    boxCame_ = false;
    boxTimer_.start();
}

void Guide::answerBox()
{
    auto *box = qobject_cast<BoxDialog *>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
        return;
    boxTimer_.stop();
    boxText_ = textOf(box);
    box_ = box;
    boxCame_ = true;
    picture(box, boxPicture_);
    const auto buttons = box->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text().remove(QLatin1Char('&')).startsWith(boxButton_)) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    fprintf(stderr, "no button %s in box: %s\n", qUtf8Printable(boxButton_),
            qUtf8Printable(boxText_));
    box->reject();
}

QString Guide::boxText()
{
    if (!QTest::qWaitFor([this] { return boxCame_ && !box_; }, patienceMs))
        throw TourFailure{"a box was expected and did not come"_s};
    return boxText_;
}

void Guide::typeInto(QWidget *window, const char *objectName, const QString &text)
{
    auto *edit = window->findChild<QLineEdit *>(QString::fromLatin1(objectName));
    if (!edit)
        throw TourFailure{"no field "_s + QString::fromLatin1(objectName)};
    edit->setFocus();
    edit->clear();
    QTest::keyClicks(edit, text);
}

void Guide::click(QWidget *window, const char *objectName)
{
    auto *button = window->findChild<QAbstractButton *>(QString::fromLatin1(objectName));
    if (!button)
        throw TourFailure{"no button "_s + QString::fromLatin1(objectName)};
    QTest::mouseClick(button, Qt::LeftButton);
}

void Guide::spread(QWidget *window) const
{
    // A virtual screen is too small for a window as wide as a studio's workstation shows it.
    constexpr int wide = 1600;
    constexpr int high = 900;
    window->showNormal();
    window->resize(int(wide * scale_), int(high * scale_));
    QCoreApplication::processEvents();
}

void Guide::closeWindows()
{
    const auto open = topLevelWidgets();
    for (QWidget *window : open)
        window->close();
    waitFor(
        [] {
            const auto left = topLevelWidgets();
            return std::none_of(left.cbegin(), left.cend(), [](QWidget *widget) {
                return qobject_cast<FramelessWindow *>(widget) != nullptr;
            });
        },
        "no window is left"_s);
}

QList<QWidget *> Guide::topLevelWidgets()
{
    return QApplication::topLevelWidgets();
}

QString Guide::material(const QString &relativePath)
{
    const QString share = studio_.share();
    return QFileInfo(share).path() + QLatin1Char('/') + relativePath;
}
