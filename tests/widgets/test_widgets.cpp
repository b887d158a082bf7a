#include "look/colours.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/boxes/boxdialog.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/frame/edgegrip.h"
#include "widgets/frame/titlebar.h"
#include "widgets/windows/loadingoverlay.h"

#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace {

/// A window that answers a wish to close as the test says.
class ToldWindow : public FramelessWindow
{
public:
    using FramelessWindow::CloseAnswer;
    using FramelessWindow::finishClosing;
    CloseAnswer next = CloseAnswer::Close;
    QString question; ///< before closing

protected:
    CloseAnswer closeRequested() override
    {
        return question.isEmpty() || agreedToClose(question) ? next : CloseAnswer::Refuse;
    }
};

#ifndef Q_OS_WIN
/// With the window system's own events, so that the button counts as held while the mouse moves.
void drag(QWidget *window, const QPoint &from, const QPoint &by)
{
    QWindow *handle = window->windowHandle();
    const QPoint origin = window->pos();
    QTest::mousePress(handle, Qt::LeftButton, {}, from);
    QTest::mouseMove(handle, from + by);
    // The window may have moved with the mouse.
    QTest::mouseRelease(handle, Qt::LeftButton, {}, from + by - (window->pos() - origin));
}
#endif

/// The box that stands before \a window; none when there is none.
BoxDialog *openBox(const QWidget *window)
{
    const auto boxes = window->findChildren<BoxDialog *>();
    for (BoxDialog *box : boxes) {
        if (box->isVisible())
            return box;
    }
    return nullptr;
}

QString textOf(const BoxDialog *box)
{
    return box ? box->findChild<QPlainTextEdit *>()->toPlainText() : QString();
}

} // namespace

/// Windows, boxes and what lies over a window.
class TestWidgets : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        MessageBox::setScripted(false);
        MessageBox::takeShown();
        answers_.clear();
    }

    void resizingStopsAtTheSmallestSize()
    {
        const auto resized = [](Qt::Edges edges, const QPoint &by) {
            return resizedBy(QRect(100, 100, 200, 100), edges, by, QSize(50, 40));
        };
        QCOMPARE(resized(Qt::RightEdge, {30, 9}), QRect(100, 100, 230, 100));
        QCOMPARE(resized(Qt::LeftEdge, {500, 0}), QRect(250, 100, 50, 100));
        QCOMPARE(resized(Qt::TopEdge, {0, 500}), QRect(100, 160, 200, 40));
        QCOMPARE(resized(Qt::TopEdge | Qt::LeftEdge, {-10, -20}), QRect(90, 80, 210, 120));
    }

    void titleBarAndEdges()
    {
        FramelessWindow window;
        QSignalSpy minimise(&window, &FramelessWindow::minimizeRequested);
        showWithFields(&window);
        QCOMPARE(tabOrder(4), "first second minimizeButton closeButton"_s);
        TitleBar *bar = window.titleBar();
        window.setWindowTitle("分件"_s);
        bar->setCard("设计"_s);
        bar->setBranch("一\n店"_s);
        const auto *title = bar->findChild<QLabel *>("titleLabel"_s);
        QCOMPARE(title->text(), "分件 · 设计 · 一 店"_s);
        QCOMPARE(title->toolTip(), QString());
        bar->setBranch("店"_s.repeated(200));
        QVERIFY(title->text().startsWith("分件 · 设计 · 店"_s) && title->text().endsWith("…"_s));
        QVERIFY(title->toolTip().contains("店"_s.repeated(200)));
#ifndef Q_OS_WIN // where the system itself moves and resizes, with the real mouse
        drag(&window, bar->mapTo(&window, bar->rect().center()), QPoint(40, 30));
        QTRY_COMPARE(window.pos(), QPoint(90, 80));
#endif
        const auto grip = [&window] {
            const QPoint corner(window.width() - 2, window.height() - 2);
            return qobject_cast<EdgeGrip *>(window.childAt(corner));
        };
        QVERIFY(grip());
        QCOMPARE(grip()->cursor().shape(), Qt::SizeFDiagCursor);
#ifndef Q_OS_WIN
        drag(&window, QPoint(398, 298), QPoint(-60, -40));
        QTRY_COMPARE(window.geometry(), QRect(90, 80, 340, 260));
#endif

        QTest::mouseDClick(bar, Qt::LeftButton);
        QTRY_VERIFY(window.isMaximized());
        QTest::mouseDClick(bar, Qt::LeftButton);
        QTRY_VERIFY(!window.isMaximized());

        QTest::mouseClick(window.titleBar()->minimizeButton(), Qt::LeftButton);
        QCOMPARE(minimise.count(), 1);
        QVERIFY(!window.isMinimized());
        QTest::keyClick(&window, Qt::Key_F4, Qt::AltModifier);
        QVERIFY(!window.isVisible());
    }

    void closing()
    {
        QPointer<ToldWindow> window = new ToldWindow;
        window->setAttribute(Qt::WA_DeleteOnClose);
        QSignalSpy closed(window.data(), &FramelessWindow::closed);
        showActive(window);

        window->next = ToldWindow::CloseAnswer::Refuse;
        QTest::mouseClick(window->titleBar()->closeButton(), Qt::LeftButton);
        QVERIFY(window->isVisible() && closed.isEmpty());

        window->next = ToldWindow::CloseAnswer::CloseLater;
        QTest::mouseClick(window->titleBar()->closeButton(), Qt::LeftButton);
        QVERIFY(!window->isVisible());
        window->close();
        QCOMPARE(closed.count(), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(window, "deleted before its work had ended");
        window->finishClosing();
        QTRY_VERIFY(!window);
    }

    void processOutlivesAHiddenWindow()
    {
        auto *window = new ToldWindow;
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->next = ToldWindow::CloseAnswer::CloseLater;
        window->show();
        bool worked = false;
        // Several turns of the event loop lie between the closing and the end of the work.
        QTimer::singleShot(0, window, [window, &worked] {
            window->close();
            QTimer::singleShot(200, window, [window, &worked] {
                worked = true;
                window->finishClosing();
            });
        });
        QCoreApplication::exec();
        QVERIFY2(worked, "the program ended while the window still had work to do");
    }

    void boxAnswers()
    {
        using Box = QMessageBox;
        const struct
        {
            Box::StandardButtons buttons;
            Qt::Key key;
            Box::StandardButton answer;
        } rows[] = {{Box::Yes | Box::Cancel, Qt::Key_Escape, Box::Cancel},
                    {Box::Yes | Box::Cancel, Qt::Key_Return, Box::Yes},
                    {Box::Ok, Qt::Key_Escape, Box::Ok},
                    {Box::Yes | Box::No, Qt::Key_Escape, Box::No}};
        QWidget parent;
        showActive(&parent);
        for (const auto &row : rows) {
            ask(&parent, "？"_s, row.buttons);
            QTest::keyClick(openBox(&parent), row.key);
            QTRY_COMPARE(answers_.size(), 1);
            QCOMPARE(takeAnswers().constFirst(), row.answer);
        }
        MessageBox::question(&parent, BoxText("<b>A&B</b>"_s).explained("是：一"_s),
                             Box::Yes | Box::Cancel, nullptr);
        BoxDialog *box = openBox(&parent);
        QCOMPARE(textOf(box), "<b>A&B</b>"_s);
        auto *below = box->findChild<QPlainTextEdit *>("noticeExplanation"_s);
        QCOMPARE(below->toPlainText(), "是：一"_s);
        QCOMPARE(box->button(Box::Yes)->text() + box->button(Box::Cancel)->text(), "是取消"_s);
        QVERIFY(answers_.isEmpty());
    }

    void whatDeletesIsNoDefault()
    {
        QWidget window;
        showActive(&window);
        QList<bool> agreed;
        const auto ask = [&](ConfirmDialog::Enter enter) {
            ConfirmDialog::ask(&window,
                               BoxText("三个文件"_s).endangering(QMessageBox::Ok, "删除"_s), enter,
                               [&agreed](bool yes) { agreed.append(yes); });
        };
        ask(ConfirmDialog::Enter::Confirms);
        BoxDialog *box = openBox(&window);
        const auto colour = [box](QMessageBox::StandardButton which) {
            QPushButton *button = box->button(which);
            return button->grab().toImage().pixelColor(button->width() / 2, button->height() / 6);
        };
        QCOMPARE(box->button(QMessageBox::Ok)->text(), "删除"_s);
        QCOMPARE(colour(QMessageBox::Ok), colours::toColor(colours::failure));
        QCOMPARE(colour(QMessageBox::Cancel), colours::toColor(colours::surface));
        QTest::keyClick(box, Qt::Key_Return);
        QTRY_COMPARE(agreed, QList<bool>{false});
        ask(ConfirmDialog::Enter::Cancels);
        QTest::mouseClick(openBox(&window)->button(QMessageBox::Ok), Qt::LeftButton);
        QTRY_COMPARE(agreed, (QList<bool>{false, true}));
    }

    void boxesOfTwoWindows()
    {
        QWidget first;
        QWidget second;
        showActive(&first);
        showActive(&second);
        ask(&first, "一"_s);
        ask(&second, "二"_s);
        QVERIFY(openBox(&first) && openBox(&second));
        // Through the window system, which knows what a box stops.
        QPushButton stopped(&first);
        QPushButton free;
        for (QPushButton *button : {&stopped, &free}) {
            QSignalSpy clicked(button, &QPushButton::clicked);
            button->show();
            QVERIFY(QTest::qWaitForWindowExposed(button));
            QTest::mouseClick(button->window()->windowHandle(), Qt::LeftButton, {},
                              button->mapTo(button->window(), button->rect().center()));
            QCOMPARE(clicked.count(), button == &free ? 1 : 0);
        }

        QTest::mouseClick(openBox(&first)->button(QMessageBox::Yes), Qt::LeftButton);
        QTRY_COMPARE(answers_.size(), 1);
        QVERIFY(openBox(&second));
        QTest::keyClick(openBox(&second), Qt::Key_Escape);
        QTRY_COMPARE(answers_,
                     (QList<QMessageBox::StandardButton>{QMessageBox::Yes, QMessageBox::Cancel}));
    }

    void boxesOfOneWindowComeInTurn()
    {
        QWidget window;
        QWidget part(&window);
        showActive(&window);
        MessageBox::information(&window, "一"_s);
        ask(&part, "二"_s);
        MessageBox::warning(&window, "三"_s);
        for (const QString &text : {"一"_s, "二"_s, "三"_s}) {
            QTRY_VERIFY(openBox(&window));
            QCOMPARE(window.findChildren<BoxDialog *>().size(), 1);
            QCOMPARE(textOf(openBox(&window)), text);
            QTest::keyClick(openBox(&window), Qt::Key_Return);
            QTRY_VERIFY(!openBox(&window) || textOf(openBox(&window)) != text);
        }
        QCOMPARE(takeAnswers(), QList<QMessageBox::StandardButton>{QMessageBox::Yes});
    }

    void whoeverAskedMayDie()
    {
        auto *window = new QWidget;
        auto *part = new QWidget(window);
        showActive(window);
        ask(part, "一"_s);
        ask(window, "二"_s);
        ask(part, "三"_s);
        delete part; // takes its box along; the next one's turn has come
        QTRY_COMPARE(textOf(openBox(window)), "二"_s);
        QTest::keyClick(openBox(window), Qt::Key_Return);
        delete window;
        QCoreApplication::processEvents();
        QVERIFY(takeAnswers().isEmpty());
    }

    void aClosedWindowAnswersSafely()
    {
        QWidget window;
        showActive(&window);
        ask(&window, "一"_s);
        ask(&window, "二"_s);
        window.close();
        const QList<QMessageBox::StandardButton> safe{QMessageBox::Cancel, QMessageBox::Cancel};
        QTRY_COMPARE(answers_, safe);
        ask(&window, "三"_s);
        QTRY_COMPARE(answers_, safe + safe.mid(1));
        QVERIFY(!openBox(&window));
    }

    void aMinimisedWindowAsksWhenItIsBack()
    {
        QWidget window;
        QWidget other;
        showActive(&window);
        window.showMinimized();
        showActive(&other);
        ask(&window, "一"_s);
        QCoreApplication::processEvents();
        QVERIFY(!openBox(&window));
        ask(&other, "二"_s); // is not held up
        QTest::keyClick(openBox(&other), Qt::Key_Return);
        QTRY_COMPARE(answers_.size(), 1);
        window.showNormal();
        QTRY_VERIFY(openBox(&window));
    }

    void asksBeforeClosing()
    {
        ToldWindow window;
        window.question = "确认要关闭吗？"_s;
        showActive(&window);
        for (const bool agreed : {false, true}) {
            window.close();
            window.close(); // one question is enough
            QVERIFY(window.isVisible());
            BoxDialog *box = openBox(&window);
            QTest::mouseClick(box->button(agreed ? QMessageBox::Ok : QMessageBox::Cancel),
                              Qt::LeftButton);
            QCoreApplication::processEvents();
            QVERIFY(!openBox(&window));
            QCOMPARE(window.isVisible(), !agreed);
        }
        window.show();
        window.close(); // the next time it asks anew
        QVERIFY(window.isVisible());
    }

    void longListsAreCutAndCopied()
    {
        QStringList lines;
        for (int number = 0; number < 100000; ++number)
            lines.append("IMG_%1.jpg"_s.arg(number));
        QWidget window;
        showActive(&window);
        MessageBox::warning(&window, {"失败"_s, lines});
        BoxDialog *box = openBox(&window);
        const QStringList shown = textOf(box).split(QLatin1Char('\n'));
        QCOMPARE(shown.size(), 202);
        QCOMPARE(shown.at(200), lines.at(199));
        QCOMPARE(shown.last(), "… 共 100000 条"_s);
        QVERIFY(box->findChild<QPlainTextEdit *>()->verticalScrollBar()->maximum() > 0);
        QVERIFY(box->height() < QGuiApplication::primaryScreen()->availableSize().height());
        QCOMPARE(qobject_cast<QPushButton *>(box->focusWidget())->text(), "确定"_s);

        QTest::mouseClick(box->findChild<QPushButton *>("copyButton"_s), Qt::LeftButton);
        QTRY_COMPARE(QGuiApplication::clipboard()->text(),
                     "失败\n"_s + lines.join(QLatin1Char('\n')));
    }

    void boxTexts_data()
    {
        addColumns<QString, int, bool>({"text", "lines", "cut"});
        newRow("short", "一\n二\n", 3, false);
        newRow("as long as a list", "一\n"_s.repeated(199) + "二"_s, 200, false);
        newRow("longer", "一\n"_s.repeated(5000), 201, true);
        newRow("one endless line", QString(1000000, QLatin1Char('a')), 2, true);
    }

    void boxTexts()
    {
        QFETCH(QString, text);
        QFETCH(bool, cut);
        const BoxText said(text);
        QTEST(said.shown.count(QLatin1Char('\n')) + 1, "lines");
        QCOMPARE(bool(said.whole), cut);
        QCOMPARE(cut ? said.whole() : said.shown, text);
    }

    void scriptedBoxes()
    {
        MessageBox::setScripted(true);
        MessageBox::setNextAnswer(QMessageBox::Yes);
        MessageBox::setNextAnswer(QMessageBox::Yes);
        ask(nullptr, "一"_s);
        bool confirmed = false;
        ConfirmDialog::ask(nullptr, "二"_s, ConfirmDialog::Enter::Cancels,
                           [&confirmed](bool answer) { confirmed = answer; });
        ask(nullptr, "三"_s);
        MessageBox::warning(nullptr, "四"_s, "提示"_s);
        QVERIFY(answers_.isEmpty()); // never before the asking has returned
        const QList<MessageBox::Shown> shown = MessageBox::takeShown();
        QString told;
        for (const MessageBox::Shown &box : shown)
            told += box.title + box.text;
        QCOMPARE(told, "温馨提示一温馨提示二温馨提示三提示四"_s);
        QCOMPARE(int(shown.at(1).kind), int(MessageBox::Kind::Confirmation));
        QVERIFY(confirmed);
        QCOMPARE(takeAnswers(),
                 (QList<QMessageBox::StandardButton>{QMessageBox::Yes, QMessageBox::Cancel}));
        QVERIFY(MessageBox::takeShown().isEmpty());
    }

    void fileDialogRemembersItsFolder()
    {
        MessageBox::setScripted(true);
        const QString photos = "photos"_s;
        FileDialog::setNextFiles({"/card/DCIM/a.jpg"_s});
        QCOMPARE(FileDialog::openFiles(nullptr, {}, {}, photos).size(), 1);
        QVERIFY(FileDialog::openFiles(nullptr, {}, {}, photos).isEmpty());
        QCOMPARE(FileDialog::lastFolder(photos), "/card/DCIM"_s);
        QVERIFY(FileDialog::lastFolder("other"_s).isEmpty());
    }

    void toastReplacesAndGoes()
    {
        FramelessWindow window;
        showWithFields(&window);
        auto *shortLived = new QWidget(&window);
        Toast::show(shortLived, "一"_s, 60000);
        Toast::show(&window, "二\n行"_s, 60000);
        QCOMPARE(Toast::currentText(&window), "二 行"_s);
        QCOMPARE(focusName(), "first"_s);
        Toast::show(shortLived, "三"_s, 60000);
        delete shortLived;
        QTRY_COMPARE(Toast::currentText(&window), QString());
        Toast::show(window.content(), "四"_s, 1);
        QCOMPARE(Toast::currentText(&window), "四"_s);
        QTRY_COMPARE(Toast::currentText(&window), QString());
    }

    void overlayTakesKeysAndMouse()
    {
        FramelessWindow window;
        showWithFields(&window);
        auto *field = window.findChild<LineEdit *>("first"_s);
        LoadingOverlay overlay(&window);
        QSignalSpy cancelled(&overlay, &LoadingOverlay::cancelled);
        overlay.showText("正在刷新中..."_s);
        QCOMPARE(overlay.geometry(), window.contentArea());
        window.resize(500, 400);
        QTRY_COMPARE(overlay.geometry(), window.contentArea());
        field->setFocus();
        keyToFocus(Qt::Key_X);
        QVERIFY(field->text().isEmpty());
        keyToFocus(Qt::Key_Tab);
        QCOMPARE(focusName(), "loadingCancelButton"_s);
        keyToFocus(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget *>(&overlay));
        keyToFocus(Qt::Key_Escape);
        keyToFocus(Qt::Key_Escape);
        QCOMPARE(cancelled.count(), 1);
        overlay.showText("再试"_s, false);
        QTest::keyClick(&overlay, Qt::Key_Escape);
        QCOMPARE(cancelled.count(), 1);
        overlay.showResult("完成"_s, LoadingOverlay::Result::Success, 1);
        QTRY_VERIFY(overlay.isHidden());
        QCOMPARE(focusName(), "first"_s);
    }

private:
    void ask(QWidget *parent, const QString &text,
             QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::Cancel)
    {
        MessageBox::question(parent, text, buttons, [this](QMessageBox::StandardButton answer) {
            answers_.append(answer);
        });
    }
    QList<QMessageBox::StandardButton> takeAnswers()
    {
        return std::exchange(answers_, {});
    }

    QList<QMessageBox::StandardButton> answers_;
};

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
