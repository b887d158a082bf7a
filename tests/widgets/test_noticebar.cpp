#include "app/context/k.h"
#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/boxes/noticebar.h"

#include <QLabel>
#include <QPushButton>

namespace {

Notice skippable(const QString &id, QStringList *done)
{
    return {id,
            Notice::Severity::Warning,
            "12 个同名文件内容不同，导入将替换"_s,
            {{"查看"_s, [done] { done->append("查看"_s); }},
             {"跳过"_s, [done] { done->append("跳过"_s); }}},
            [done] { done->append("×"_s); }};
}

QPushButton *buttonOf(NoticeBar *bar, const QString &text)
{
    const auto buttons = bar->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text() == text && !button->isHidden())
            return button;
    }
    return nullptr;
}

/// A window with the bar between two fields.
struct Window
{
    Window() : window(new FramelessWindow), bar(new NoticeBar)
    {
        auto *content = new QWidget;
        auto *layout = new QVBoxLayout(content);
        auto *first = new LineEdit;
        first->setObjectName("first"_s);
        auto *second = new LineEdit;
        second->setObjectName("second"_s);
        for (QWidget *part : {static_cast<QWidget *>(first), static_cast<QWidget *>(bar),
                              static_cast<QWidget *>(second)})
            layout->addWidget(part);
        window->setContent(content);
        window->resize(600, 300);
        showActive(window.get());
    }
    std::unique_ptr<FramelessWindow> window;
    NoticeBar *bar;
};

} // namespace

class TestNoticeBar : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { K::uiScale = 1.0F; }

    void takesRoomOnlyForLines()
    {
        Window shown;
        QVERIFY(!shown.bar->isVisible());
        QStringList done;
        shown.bar->setNotice(skippable("a"_s, &done));
        shown.bar->setNotice({"b"_s, Notice::Severity::Failure, "<b>坏</b>&"_s, {}, nullptr});
        QVERIFY(shown.bar->isVisible());
        const auto *text = shown.bar->findChild<NoticeLine *>("b"_s)->findChild<QLabel *>();
        QCOMPARE(text->textFormat(), Qt::PlainText);
        shown.bar->setNotices({skippable("b"_s, &done)});
        QCOMPARE(shown.bar->notices().size(), 1);
        QCOMPARE(shown.bar->notices().constFirst().text, skippable({}, &done).text);
        shown.bar->remove("b"_s);
        QVERIFY(!shown.bar->isVisible());
    }

    void isReachedInItsPlaceByTheTabKey()
    {
        Window shown;
        QStringList done;
        shown.bar->setNotice(skippable("below"_s, &done));
        shown.bar->setNotices({skippable("above"_s, &done), skippable("below"_s, &done)});
        shown.window->findChild<QWidget *>("first"_s)->setFocus();
        for (const int line : {0, 1}) {
            for (const auto &name : {"查看"_s, "跳过"_s, "不再显示这一条"_s}) {
                keyToFocus(Qt::Key_Tab);
                QCOMPARE(QApplication::focusWidget()->accessibleName(), name);
                QVERIFY(shown.bar->findChild<QWidget *>(line == 0 ? "above"_s : "below"_s)
                            ->isAncestorOf(QApplication::focusWidget()));
            }
        }
        keyToFocus(Qt::Key_Tab);
        QCOMPARE(focusName(), "second"_s);
    }

    void keepsTheFocusWhileItsTextChanges()
    {
        Window shown;
        QStringList done;
        Notice notice = skippable("a"_s, &done);
        shown.bar->setNotice(notice);
        buttonOf(shown.bar, "跳过"_s)->setFocus();
        notice.text = "11 个同名文件内容不同，导入将替换"_s;
        notice.actions.append({"改名导入"_s, nullptr});
        shown.bar->setNotices({notice});
        keyToFocus(Qt::Key_Space);
        QCOMPARE(done, QStringList("跳过"_s));
        QVERIFY(!buttonOf(shown.bar, "改名导入"_s)->isEnabled());
    }

    void anActionMayTakeItsOwnLineAway()
    {
        Window shown;
        QStringList done;
        Notice notice = skippable("a"_s, &done);
        notice.actions[0].act = [&] { shown.bar->remove("a"_s); };
        shown.bar->setNotices({notice, skippable("b"_s, &done)});
        buttonOf(shown.bar, "查看"_s)->setFocus();
        keyToFocus(Qt::Key_Space);
        QCOMPARE(shown.bar->notices().size(), 1);
        keyToFocus(Qt::Key_Space); // the focus went on to the line below
        QCOMPARE(done, QStringList("查看"_s));
        keyToFocus(Qt::Key_Escape);
        QVERIFY(shown.bar->notices().isEmpty());
        QCOMPARE(done.constLast(), "×"_s);
    }

    void wrapsWithinItsWidth_data()
    {
        QTest::addColumn<float>("scale");
        QTest::newRow("1.0") << 1.0F;
        QTest::newRow("1.5") << 1.5F;
        QTest::newRow("2.0") << 2.0F;
    }

    void wrapsWithinItsWidth()
    {
        QFETCH(float, scale);
        K::uiScale = scale;
        Window shown;
        QStringList done;
        shown.bar->setNotice(skippable("a"_s, &done));
        auto *line = shown.bar->findChild<NoticeLine *>("a"_s);
        const int widest = line->sizeHint().width();
        int lastHeight = 0;
        for (const int width : {widest, widest * 2 / 3, widest / 3}) {
            line->resize(width, line->heightForWidth(width));
            QVERIFY(line->height() > lastHeight);
            lastHeight = line->height();
            QRegion taken;
            const auto parts = line->findChildren<QWidget *>();
            for (const QWidget *part : parts) {
                QVERIFY2(line->rect().contains(part->geometry()), qPrintable(part->objectName()));
                QVERIFY(!taken.intersects(part->geometry()));
                taken += part->geometry();
            }
            const auto *text = line->findChild<QLabel *>();
            QVERIFY(text->height() >= text->heightForWidth(text->width()));
        }
    }
};

QTEST_MAIN(TestNoticeBar)
#include "test_noticebar.moc"
