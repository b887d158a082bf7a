#include "tests/widgets/shownwindow.h"
#include "widgets/confirmdialog.h"
#include "widgets/edgegrip.h"
#include "widgets/filedialog.h"
#include "widgets/framelesswindow.h"
#include "widgets/loadingoverlay.h"
#include "widgets/messagebox.h"
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

Q_DECLARE_METATYPE(QMessageBox::StandardButton)
Q_DECLARE_METATYPE(QMessageBox::StandardButtons)
Q_DECLARE_METATYPE(Qt::Edges)

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

/// Runs \a act on the box that opens next.
void onNextBox(QObject *context, const std::function<void(NoticeDialog *)> &act)
{
    auto *looking = new QTimer(context);
    QObject::connect(looking, &QTimer::timeout, context, [looking, act] {
        auto *box = qobject_cast<NoticeDialog *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
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

    void resizingStopsAtTheSmallestSize_data()
    {
        QTest::addColumn<Qt::Edges>("edges");
        QTest::addColumn<QPoint>("delta");
        QTest::addColumn<QRect>("result");
        const auto edge = [](Qt::Edge one) { return Qt::Edges(one); };
        QTest::newRow("right") << edge(Qt::RightEdge) << QPoint(30, 9) << QRect(100, 100, 230, 100);
        QTest::newRow("left, too far")
            << edge(Qt::LeftEdge) << QPoint(500, 0) << QRect(250, 100, 50, 100);
        QTest::newRow("top, too far")
            << edge(Qt::TopEdge) << QPoint(0, 500) << QRect(100, 160, 200, 40);
        QTest::newRow("corner") << (Qt::TopEdge | Qt::LeftEdge) << QPoint(-10, -20)
                                << QRect(90, 80, 210, 120);
        QTest::newRow("corner, too far")
            << (Qt::BottomEdge | Qt::RightEdge) << QPoint(-999, -999) << QRect(100, 100, 50, 40);
    }

    void resizingStopsAtTheSmallestSize()
    {
        QFETCH(Qt::Edges, edges);
        QFETCH(QPoint, delta);
        QTEST(resizedBy(QRect(100, 100, 200, 100), edges, delta, QSize(50, 40)), "result");
    }

    void windowMovesAndMaximises()
    {
        FramelessWindow window;
        window.setContent(twoFields());
        window.setGeometry(50, 50, 400, 300);
        showActive(&window);
        TitleBar *bar = window.titleBar();
        const QPoint grab = bar->mapTo(&window, bar->rect().center());
        drag(&window, grab, QPoint(40, 30));
        QTRY_COMPARE(window.pos(), QPoint(90, 80));

        QTest::mouseDClick(bar, Qt::LeftButton);
        QTRY_VERIFY(window.isMaximized());
        QTest::mouseDClick(bar, Qt::LeftButton);
        QTRY_VERIFY(!window.isMaximized());
        window.setResizable(false);
        QTest::mouseDClick(bar, Qt::LeftButton);
        QVERIFY(!window.isMaximized());
    }

    void edgesResize()
    {
        FramelessWindow window;
        window.setContent(twoFields());
        window.setGeometry(50, 50, 400, 300);
        showActive(&window);
        const QPoint corner(window.width() - 2, window.height() - 2);
        auto *grip = qobject_cast<EdgeGrip *>(window.childAt(corner));
        QVERIFY(grip);
        QCOMPARE(grip->cursor().shape(), Qt::SizeFDiagCursor);
        drag(&window, corner, QPoint(-60, -40));
        QTRY_COMPARE(window.geometry(), QRect(50, 50, 340, 260));
        window.setResizable(false);
        QVERIFY(!qobject_cast<EdgeGrip *>(
            window.childAt(QPoint(window.width() - 2, window.height() - 2))));
    }

    void titleButtonsComeLastInTabOrder()
    {
        FramelessWindow window;
        window.setContent(twoFields());
        QSignalSpy minimise(&window, &FramelessWindow::minimizeRequested);
        showActive(&window);
        QStringList order;
        for (int i = 0; i < 4; ++i) {
            order.append(focusName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(order,
                 QStringList({QStringLiteral("first"), QStringLiteral("second"),
                              QStringLiteral("minimizeButton"), QStringLiteral("closeButton")}));
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
        QVERIFY(window->isVisible());
        QCOMPARE(closed.count(), 0);

        window->next = ToldWindow::CloseAnswer::CloseLater;
        QTest::mouseClick(window->titleBar()->closeButton(), Qt::LeftButton);
        QVERIFY(!window->isVisible());
        QCOMPARE(closed.count(), 1);
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

    void boxAnswers_data()
    {
        using Box = QMessageBox;
        QTest::addColumn<QMessageBox::StandardButtons>("buttons");
        QTest::addColumn<int>("key");
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        const Box::StandardButtons yesCancel = Box::Yes | Box::Cancel;
        QTest::newRow("Escape cancels") << yesCancel << int(Qt::Key_Escape) << Box::Cancel;
        QTest::newRow("Enter agrees") << yesCancel << int(Qt::Key_Return) << Box::Yes;
        QTest::newRow("only Ok, Escape")
            << Box::StandardButtons(Box::Ok) << int(Qt::Key_Escape) << Box::Ok;
        QTest::newRow("Yes or No, Escape")
            << (Box::Yes | Box::No) << int(Qt::Key_Escape) << Box::No;
    }

    void boxAnswers()
    {
        QFETCH(QMessageBox::StandardButtons, buttons);
        QFETCH(int, key);
        QObject context;
        onNextBox(&context, [key](NoticeDialog *box) { QTest::keyClick(box, Qt::Key(key)); });
        QTEST(MessageBox::question(nullptr, QStringLiteral("？"), MessageBox::defaultTitle(),
                                   buttons),
              "answer");
    }

    void boxShowsPlainTextAndChineseButtons()
    {
        QWidget parent;
        QString shown;
        QStringList texts;
        onNextBox(&parent, [&](NoticeDialog *box) {
            shown = box->findChild<QPlainTextEdit *>()->toPlainText();
            texts = QStringList(
                {box->button(QMessageBox::Yes)->text(), box->button(QMessageBox::Cancel)->text()});
            QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
        });
        QCOMPARE(MessageBox::question(&parent, QStringLiteral("<b>A&B</b>")), QMessageBox::Yes);
        QCOMPARE(shown, QStringLiteral("<b>A&B</b>"));
        QCOMPARE(texts, QStringList({QStringLiteral("是"), QStringLiteral("取消")}));
    }

    void boxWhoseParentDiesGivesTheSafeAnswer()
    {
        auto *parent = new QWidget;
        onNextBox(parent, [parent](NoticeDialog *) { delete parent; });
        QCOMPARE(MessageBox::question(parent, QStringLiteral("？")), QMessageBox::Cancel);
    }

    void longConfirmationStaysOnTheScreen()
    {
        QString text = QStringLiteral("下列是不一致的照片：");
        for (int i = 0; i < 3000; ++i)
            text += QStringLiteral("\nIMG_%1.jpg").arg(i);
        QObject context;
        QSize size;
        QString focus;
        bool scrolls = false;
        onNextBox(&context, [&](NoticeDialog *box) {
            size = box->size();
            scrolls = box->findChild<QPlainTextEdit *>()->verticalScrollBar()->maximum() > 0;
            focus = qobject_cast<QPushButton *>(box->focusWidget())->text();
            QTest::keyClick(box, Qt::Key_Return);
        });
        QVERIFY(!ConfirmDialog::ask(nullptr, text, ConfirmDialog::Enter::Cancels));
        QCOMPARE(focus, QStringLiteral("取消"));
        QVERIFY(scrolls);
        QVERIFY(size.height() < QGuiApplication::primaryScreen()->availableSize().height());
    }

    void scriptedBoxes()
    {
        MessageBox::setScripted(true);
        MessageBox::setNextAnswer(QMessageBox::Yes);
        MessageBox::setNextAnswer(QMessageBox::Yes);
        QCOMPARE(MessageBox::question(nullptr, QStringLiteral("一")), QMessageBox::Yes);
        QVERIFY(ConfirmDialog::ask(nullptr, QStringLiteral("二")));
        QCOMPARE(MessageBox::question(nullptr, QStringLiteral("三")), QMessageBox::Cancel);
        QCOMPARE(MessageBox::warning(nullptr, QStringLiteral("四"), QStringLiteral("提示")),
                 QMessageBox::Ok);
        const QList<MessageBox::Shown> shown = MessageBox::takeShown();
        QStringList told;
        for (const MessageBox::Shown &box : shown)
            told.append(box.title + box.text);
        QCOMPARE(told, QStringList({QStringLiteral("温馨提示一"), QStringLiteral("温馨提示二"),
                                    QStringLiteral("温馨提示三"), QStringLiteral("提示四")}));
        QCOMPARE(int(shown.at(1).kind), int(MessageBox::Kind::Confirmation));
        QVERIFY(MessageBox::takeShown().isEmpty());
    }

    void fileDialogRemembersItsFolder()
    {
        MessageBox::setScripted(true);
        const QString photos = QStringLiteral("photos");
        FileDialog::setNextFiles({QStringLiteral("/card/DCIM/a.jpg")});
        QCOMPARE(FileDialog::openFiles(nullptr, {}, {}, photos).size(), 1);
        QVERIFY(FileDialog::openFiles(nullptr, {}, {}, photos).isEmpty());
        QCOMPARE(FileDialog::lastFolder(photos), QStringLiteral("/card/DCIM"));
        QVERIFY(FileDialog::lastFolder(QStringLiteral("other")).isEmpty());
    }

    void toastReplacesAndGoes()
    {
        FramelessWindow window;
        window.setContent(twoFields());
        showActive(&window);
        auto *shortLived = new QWidget(&window);
        Toast::show(shortLived, QStringLiteral("一"), 60000);
        Toast::show(&window, QStringLiteral("二\n行"), 60000);
        QCOMPARE(Toast::currentText(&window), QStringLiteral("二 行"));
        QCOMPARE(focusName(), QStringLiteral("first"));
        Toast::show(shortLived, QStringLiteral("三"), 60000);
        delete shortLived;
        QTRY_COMPARE(Toast::currentText(&window), QString());
        Toast::show(window.content(), QStringLiteral("四"), 1);
        QCOMPARE(Toast::currentText(&window), QStringLiteral("四"));
        QTRY_COMPARE(Toast::currentText(&window), QString());
    }

    void overlayTakesKeysAndMouse()
    {
        FramelessWindow window;
        window.setContent(twoFields());
        window.resize(400, 300);
        showActive(&window);
        auto *field = window.findChild<LineEdit *>(QStringLiteral("first"));
        field->setFocus();
        LoadingOverlay overlay(&window);
        QSignalSpy cancelled(&overlay, &LoadingOverlay::cancelled);
        overlay.showText(QStringLiteral("正在刷新中..."));
        QCOMPARE(overlay.geometry(), window.contentArea());
        window.resize(500, 400);
        QTRY_COMPARE(overlay.geometry(), window.contentArea());
        field->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("x"));
        QVERIFY(field->text().isEmpty());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(focusName(), QStringLiteral("loadingCancelButton"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), static_cast<QWidget *>(&overlay));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(cancelled.count(), 1);
        overlay.showText(QStringLiteral("再试"), false);
        QTest::keyClick(&overlay, Qt::Key_Escape);
        QCOMPARE(cancelled.count(), 1);
        overlay.showResult(QStringLiteral("完成"), LoadingOverlay::Result::Success, 1);
        QTRY_VERIFY(overlay.isHidden());
        QCOMPARE(focusName(), QStringLiteral("first"));
    }
};

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
