#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/edgegrip.h"
#include "widgets/loadingoverlay.h"
#include "widgets/titlebar.h"
#include "widgets/toast.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QWindow>

#include <functional>

namespace {

/// A window that answers a wish to close as the test says.
class ToldWindow : public FramelessWindow
{
public:
    using FramelessWindow::CloseAnswer;
    using FramelessWindow::finishClosing;
    CloseAnswer next = CloseAnswer::Close;

protected:
    CloseAnswer closeRequested() override { return next; }
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

/// Runs \a act on the box that opens next.
void onNextBox(QObject *context, const std::function<void(NoticeDialog *)> &act)
{
    auto *looking = new QTimer(context);
    QObject::connect(looking, &QTimer::timeout, context, [looking, act] {
        auto *box = qobject_cast<NoticeDialog *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        looking->stop(); // it is deleted only after the next box may have opened
        looking->deleteLater();
        act(box);
    });
    looking->start(5);
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
        window.setResizable(false);
        QVERIFY(!grip());
        QTest::mouseDClick(bar, Qt::LeftButton);
        QVERIFY(!window.isMaximized());

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
        for (const auto &row : rows) {
            onNextBox(&parent, [&row](NoticeDialog *box) { QTest::keyClick(box, row.key); });
            QCOMPARE(MessageBox::question(&parent, "？"_s, {}, row.buttons), row.answer);
        }
        QStringList texts;
        onNextBox(&parent, [&texts](NoticeDialog *box) {
            texts = QStringList({box->findChild<QPlainTextEdit *>()->toPlainText(),
                                 box->button(Box::Yes)->text(), box->button(Box::Cancel)->text()});
            QTest::mouseClick(box->button(Box::Yes), Qt::LeftButton);
        });
        QCOMPARE(MessageBox::question(&parent, "<b>A&B</b>"_s), Box::Yes);
        QCOMPARE(texts.join(QLatin1Char(' ')), "<b>A&B</b> 是 取消"_s);
    }

    void boxWhoseParentDiesGivesTheSafeAnswer()
    {
        auto *parent = new QWidget;
        onNextBox(parent, [parent](NoticeDialog *) { delete parent; });
        QCOMPARE(MessageBox::question(parent, "？"_s), QMessageBox::Cancel);
    }

    void longConfirmationStaysOnTheScreen()
    {
        const QString text = "IMG_0001.jpg\n"_s.repeated(3000);
        int height = 0;
        QString focus;
        bool scrolls = false;
        onNextBox(this, [&](NoticeDialog *box) {
            height = box->height();
            scrolls = box->findChild<QPlainTextEdit *>()->verticalScrollBar()->maximum() > 0;
            focus = qobject_cast<QPushButton *>(box->focusWidget())->text();
            QTest::keyClick(box, Qt::Key_Return);
        });
        QVERIFY(!ConfirmDialog::ask(nullptr, text, ConfirmDialog::Enter::Cancels));
        QCOMPARE(focus, "取消"_s);
        QVERIFY(scrolls);
        QVERIFY(height < QGuiApplication::primaryScreen()->availableSize().height());
    }

    void scriptedBoxes()
    {
        MessageBox::setScripted(true);
        MessageBox::setNextAnswer(QMessageBox::Yes);
        MessageBox::setNextAnswer(QMessageBox::Yes);
        QCOMPARE(MessageBox::question(nullptr, "一"_s), QMessageBox::Yes);
        QVERIFY(ConfirmDialog::ask(nullptr, "二"_s));
        QCOMPARE(MessageBox::question(nullptr, "三"_s), QMessageBox::Cancel);
        QCOMPARE(MessageBox::warning(nullptr, "四"_s, "提示"_s), QMessageBox::Ok);
        const QList<MessageBox::Shown> shown = MessageBox::takeShown();
        QString told;
        for (const MessageBox::Shown &box : shown)
            told += box.title + box.text;
        QCOMPARE(told, "温馨提示一温馨提示二温馨提示三提示四"_s);
        QCOMPARE(int(shown.at(1).kind), int(MessageBox::Kind::Confirmation));
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
};

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
