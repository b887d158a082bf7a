#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "distribution/ruleeditor/draggablefieldsource.h"
#include "distribution/ruleeditor/dropzone.h"
#include "distribution/ruleeditor/fieldbutton.h"
#include "distribution/ruleeditor/fielddrag.h"
#include "distribution/ruleeditor/foldernamingrule.h"
#include "distribution/ruleeditor/namingrulepanel.h"
#include "distribution/ruleeditor/separatorbutton.h"
#include "distribution/rules/orderdetail.h"
#include "tests/support/datarows.h"
#include "tests/support/login.h"
#include "tests/support/text.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QtTest>

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

/// One field per word: its key, with its last character as the separator.
QString ruleText(const char *words)
{
    namingrule::Rule rule;
    const QStringList each = s(words).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : each)
        rule.append({word.chopped(1), word.chopped(1), word.right(1)});
    return namingrule::toText(rule);
}

} // namespace

class TestRuleEditor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { MessageBox::setScripted(true); }

    void init()
    {
        logIn(&demo_);
        MessageBox::takeShown();
        panel_ = std::make_unique<NamingRulePanel>();
        editor_ = panel_->editor();
        zone_ = editor_->findChild<DropZone *>();
        panel_->resize(700, 500);
        panel_->show();
        QVERIFY(QTest::qWaitForWindowActive(panel_.get()));
        editor_->load(ruleText("a_ b- c#"));
    }

    void cleanup()
    {
        panel_.reset();
        K::uiScale = 1.0F;
    }

    void loadsAndResets()
    {
        QCOMPARE(rule(), "a_ b- c#"_s);
        for (const char *noRule : {"", "{}", "x"})
            editor_->load(s(noRule));
        QCOMPARE(rule(), "a_ b- c#"_s);
        QSignalSpy changed(editor_, &FolderNamingRule::ruleChanged);
        QSignalSpy json(editor_, &FolderNamingRule::ruleChangedJson);
        deleteField(1);
        QCOMPARE(rule(), "a_ c#"_s);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(json.takeFirst().constFirst().toJsonArray(), namingrule::toJson(editor_->rule()));
        press("resetRuleButton");
        QCOMPARE(rule(), "a_ b- c#"_s);
        editor_->load("[]"_s);
        QVERIFY(editor_->rule().isEmpty());
    }

    void dragsAFieldIn()
    {
        QSignalSpy changed(zone_, &DropZone::ruleChanged);
        const QPoint before = center(button(1)) - QPoint(button(1)->width() / 2 - 3, 0);
        drag(source("goodnum"), before, [this] { QCOMPARE(zone_->indicatorIndex(), 1); });
        QCOMPARE(rule(), "a_ goodnum_ b- c#"_s);
        QCOMPARE(editor_->rule().at(1).name, "数量"_s);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(zone_->indicatorIndex(), -1);
        drag(source("id"), center(zone_) + QPoint(zone_->width() / 2 - 4, 0));
        QCOMPARE(rule(), "a_ goodnum_ b- c# id_"_s);
        editor_->load("[]"_s);
        drag(source("name"), center(zone_));
        QCOMPARE(rule(), "name_"_s);
    }

    void dragsAFieldToAnotherPlace_data()
    {
        // to: before which button; 3: behind all
        addColumns<int, int, int, QString>({"from", "to", "indicator", "expected"});
        newRow("to the front", 2, 0, 0, "c# a_ b-");
        newRow("to the end", 0, 3, 3, "b- c# a_");
        newRow("one to the right", 0, 2, 2, "b- a_ c#");
        newRow("its own place", 1, 2, -1, "a_ b- c#");
        newRow("its own place at the end", 2, 3, -1, "a_ b- c#");
    }

    void dragsAFieldToAnotherPlace()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(int, indicator);
        QFETCH(QString, expected);
        FieldButton *moved = button(from);
        const int spacing = K::scaledPx(8);
        // The places of the others once the dragged one is out of the way.
        int x = button(0)->x();
        for (int index = 0; index < to; ++index)
            x += index == from ? 0 : button(index)->width() + spacing;
        const QPoint target =
            zone_->mapTo(panel_.get(), QPoint(x + 2, button(0)->geometry().center().y()));
        drag(moved, target, [&] {
            QVERIFY(moved->isHidden());
            QCOMPARE(zone_->indicatorIndex(), indicator);
        });
        QCOMPARE(rule(), expected);
        QVERIFY(moved->isVisible());
        QCOMPARE(
            zone_->buttons().indexOf(moved),
            expected.split(QLatin1Char(' ')).indexOf(moved->item().key + moved->item().separator));
        for (int index = 1; index < 3; ++index)
            QCOMPARE(button(index)->x(), button(index - 1)->geometry().right() + 1 + spacing);
    }

    void aDragThatEndsElsewhereChangesNothing()
    {
        QSignalSpy changed(zone_, &DropZone::ruleChanged);
        drag(button(1), QPoint(5, 5));
        drag(source("id"), QPoint(5, 5));
        QCOMPARE(rule(), "a_ b- c#"_s);
        QVERIFY(button(1)->isVisible());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(zone_->indicatorIndex(), -1);
        // The only one there is goes back, too.
        editor_->load(ruleText("a_"));
        drag(button(0), center(zone_));
        QCOMPARE(rule(), "a_"_s);
        QVERIFY(button(0)->isVisible());
    }

    /// Events as another program may send them.
    void strangeDrops()
    {
        const auto drop = [this](const QString &type, const QByteArray &payload) {
            QMimeData data;
            data.setData(type, payload);
            const QPoint at(3, 3);
            QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(zone_, &enter);
            QDropEvent event(at, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(zone_, &event);
            return enter.isAccepted();
        };
        QVERIFY(drop(fielddrag::itemType, "no bar"));
        QVERIFY(drop(fielddrag::itemType, ""));
        QVERIFY(drop(fielddrag::reorderType, "a"));
        QVERIFY(!drop("text/plain"_s, "x|y"));
        QCOMPARE(rule(), "a_ b- c#"_s);
        QVERIFY(drop(fielddrag::itemType, "名|k|more"));
        QCOMPARE(rule(), "k_ a_ b- c#"_s);
        QCOMPARE(editor_->rule().constFirst().name, "名"_s);
    }

    void indicator()
    {
        const std::unique_ptr<QMimeData> data(source("id")->dragData());
        QCOMPARE(data->text(), "产品ID|id"_s);
        QCOMPARE(data->data("application/x-field-item"_s), QByteArray("产品ID|id"));
        QDragEnterEvent enter(QPoint(3, 3), Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(zone_, &enter);
        const auto moveTo = [&](const QPoint &pos) {
            QDragMoveEvent event(pos, Qt::CopyAction, data.get(), Qt::LeftButton, {});
            QApplication::sendEvent(zone_, &event);
        };
        const QImage image = source("id")->dragImage().toImage();
        QCOMPARE(image.size(), source("id")->size());
        const QRect second = button(1)->geometry();
        moveTo(QPoint(second.left() + 2, second.center().y()));
        QCOMPARE(zone_->indicatorIndex(), 1);
        moveTo(QPoint(second.right() - 2, second.center().y()));
        QCOMPARE(zone_->indicatorIndex(), 2);
        moveTo(QPoint(zone_->width() - 2, zone_->height() - 2));
        QCOMPARE(zone_->indicatorIndex(), 3);
        QDragLeaveEvent leave;
        QApplication::sendEvent(zone_, &leave);
        QCOMPARE(zone_->indicatorIndex(), -1);
    }

    void separators()
    {
        QSignalSpy changed(zone_, &DropZone::ruleChanged);
        const int width = button(0)->width();
        QTest::mouseClick(button(0)->separatorButton(), Qt::LeftButton);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QStringList choices;
        const auto actions = menu->actions();
        for (const QAction *action : actions)
            choices.append(action->data().toString());
        QCOMPARE(choices.join(QString()), " ,.《》_-=#"_s);
        QCOMPARE(menu->activeAction()->data().toString(), "_"_s);
        actions.first()->trigger();
        menu->close();
        QCOMPARE(rule(), "a  b- c#"_s);
        QCOMPARE(changed.count(), 1);
        QVERIFY(button(0)->width() > width); // a blank is shown as a word
        QCOMPARE(button(1)->x(), button(0)->geometry().right() + 1 + K::scaledPx(8));
    }

    void keyboard()
    {
        source("id")->setFocus();
        QTest::keyClick(source("id"), Qt::Key_Space);
        QCOMPARE(rule(), "a_ b- c# id_"_s);
        FieldButton *moved = button(3);
        moved->setFocus();
        QTest::keyClick(moved, Qt::Key_Left, Qt::ControlModifier);
        QTest::keyClick(moved, Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(rule(), "a_ id_ b- c#"_s);
        QTest::keyClick(moved, Qt::Key_Right, Qt::ControlModifier);
        QTest::keyClick(moved, '=');
        QCOMPARE(rule(), "a_ b- id= c#"_s);
        QTest::keyClick(moved, Qt::Key_Left);
        QVERIFY(button(1)->hasFocus());
        QTest::keyClick(button(1), Qt::Key_Tab);
        QVERIFY(moved->hasFocus());
        QTest::keyClick(moved, Qt::Key_Down);
        QVERIFY(QApplication::activePopupWidget());
        QApplication::activePopupWidget()->close();
        QTest::keyClick(moved, Qt::Key_Delete);
        QCOMPARE(rule(), "a_ b- c#"_s);
        QVERIFY(button(2)->hasFocus());
        for (int left = 3; left > 0; --left)
            QTest::keyClick(button(left - 1), Qt::Key_Backspace);
        QVERIFY(editor_->rule().isEmpty());
    }

    void previewAndWarnings()
    {
        const auto preview = [this] {
            return editor_->findChild<QLabel *>("rulePreview"_s)->text();
        };
        auto *warning = editor_->findChild<QLabel *>("ruleWarning"_s);
        OrderDetail detail;
        DetailProduct product;
        product.id = "7"_s;
        product.isUrgent = "0"_s;
        product.goodName = "a/b"_s;
        detail.goods = {product};
        editor_->setPreviewOrder(detail);
        editor_->load(ruleText("id_"));
        QTRY_COMPARE(preview(), "预览：7_"_s);
        QVERIFY(warning->isHidden());
        editor_->load(ruleText("name."));
        QTRY_COMPARE(preview(), "预览：a_b"_s);
        QVERIFY(warning->isVisible());
        QVERIFY(warning->text().contains("结尾"_s) && warning->text().contains("字符"_s));
        editor_->load("[]"_s);
        QTRY_COMPARE(preview(), "预览：1# a_b   - 取"_s);
        QVERIFY(warning->text().contains("空"_s));
        editor_->load(ruleText("id_"));
        editor_->setPreviewOrder({});
        QTRY_COMPARE(preview(), "预览：1024_"_s);
    }

    void saves()
    {
        button(0)->separatorButton()->setSeparator("="_s);
        press("saveRuleButton");
        QVERIFY(!panelButton("saveRuleButton")->isEnabled());
        QTRY_COMPARE(Toast::currentText(panel_.get()), "提交成功"_s);
        QVERIFY(panelButton("saveRuleButton")->isEnabled());
        const QString saved = ruleText("a= b- c#");
        QCOMPARE(AccountContext::shopList.first().goodsfoldernamerule, saved);
        QVERIFY(AccountContext::shopList.last().goodsfoldernamerule.isEmpty());
        QCOMPARE(demo_.requests("save_goodsfoldernamerule"_s).size(), 1);
        QCOMPARE(demo_.body("save_goodsfoldernamerule"_s).section("&token"_s, 0, 0),
                 "goodsfoldernamerule="_s + saved +
                     "&shopid=101&eid=3101&superid=7001&personid=3101"_s);
        deleteField(0);
        press("resetRuleButton");
        QCOMPARE(rule(), "a= b- c#"_s);
    }

    void savingFails()
    {
        deleteField(1);
        for (const auto &[kind, text] :
             {std::pair{"refuse"_s, "不可以"_s}, {"http-error"_s, "提交失败"_s}}) {
            demo_.misbehave("save_goodsfoldernamerule"_s, kind,
                            {{"message"_s, text}, {"status"_s, 500}, {"times"_s, 1}});
            press("saveRuleButton");
            QTRY_VERIFY(panelButton("saveRuleButton")->isEnabled());
            const auto boxes = MessageBox::takeShown();
            QCOMPARE(boxes.size(), 1);
            QCOMPARE(boxes.first().title, "温馨提示"_s);
            QCOMPARE(boxes.first().text, text);
            QCOMPARE(boxes.first().kind, MessageBox::Kind::Warning);
        }
        QCOMPARE(rule(), "a_ c#"_s);
        QVERIFY(AccountContext::shopList.first().goodsfoldernamerule.isEmpty());
    }

    /// Nothing is cut off at any scale.
    void scales()
    {
        for (const float scale : {1.0F, 1.5F, 2.0F}) {
            K::uiScale = scale;
            NamingRulePanel panel;
            panel.resize(K::scaledPx(360), 100);
            panel.editor()->load(namingrule::toText(namingrule::availableFields()));
            panel.show();
            panel.adjustSize();
            panel.resize(K::scaledPx(360), panel.heightForWidth(K::scaledPx(360)));
            QCoreApplication::processEvents();
            const auto fields = panel.findChildren<FieldButton *>();
            QCOMPARE(fields.size(), namingrule::availableFields().size());
            for (const FieldButton *field : fields) {
                QVERIFY(field->parentWidget()->rect().contains(field->geometry()));
                const int label = field->fontMetrics().horizontalAdvance(field->label());
                QVERIFY(field->separatorButton()->x() >= label + K::scaledPx(8));
            }
        }
    }

private:
    QString rule() const
    {
        QStringList words;
        const namingrule::Rule rule = editor_->rule();
        for (const namingrule::Item &item : rule)
            words.append(item.key + item.separator);
        return words.join(QLatin1Char(' '));
    }

    FieldButton *button(int index) const { return zone_->buttons().at(index); }

    DraggableFieldSource *source(const char *key) const
    {
        const auto sources = editor_->findChildren<DraggableFieldSource *>();
        for (DraggableFieldSource *each : sources) {
            if (each->key() == s(key))
                return each;
        }
        return nullptr;
    }

    QPoint center(const QWidget *widget) const
    {
        return widget->mapTo(panel_.get(), widget->rect().center());
    }

    /// Presses on \a from, moves to \a to (in the panel) and lets go there. \a onTheWay is called
    /// before that.
    void drag(
        QWidget *from, const QPoint &to, const std::function<void()> &onTheWay = [] {})
    {
        const QPoint begun = from->rect().center();
        bool dragged = false;
        fielddrag::setScript([&](const QMimeData *data) {
            dragged = true;
            const QPoint pos = zone_->mapFrom(panel_.get(), to);
            const bool inZone = zone_->rect().contains(pos);
            QDragEnterEvent enter(zone_->rect().topLeft(), Qt::MoveAction, data, Qt::LeftButton,
                                  {});
            QApplication::sendEvent(zone_, &enter);
            QVERIFY(enter.isAccepted());
            QDragMoveEvent move(inZone ? pos : QPoint(1, 1), Qt::MoveAction, data, Qt::LeftButton,
                                {});
            QApplication::sendEvent(zone_, &move);
            onTheWay();
            QDropEvent drop(pos, Qt::MoveAction, data, Qt::LeftButton, {});
            QDragLeaveEvent leave;
            QApplication::sendEvent(zone_, inZone ? static_cast<QEvent *>(&drop) : &leave);
        });
        QTest::mousePress(from, Qt::LeftButton, {}, begun);
        for (const int distance : {0, 1}) { // the second is far enough
            QVERIFY(!dragged);
            const QPoint at = begun + QPoint(distance * QApplication::startDragDistance(), 0);
            QMouseEvent move(QEvent::MouseMove, at, from->mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, {});
            QApplication::sendEvent(from, &move);
        }
        QTest::mouseRelease(from, Qt::LeftButton, {}, begun);
        fielddrag::setScript({});
        QVERIFY(dragged);
    }

    QPushButton *panelButton(const char *name) const
    {
        return panel_->findChild<QPushButton *>(s(name));
    }
    void press(const char *name) { QTest::mouseClick(panelButton(name), Qt::LeftButton); }
    void deleteField(int index)
    {
        QTest::mouseClick(button(index)->findChild<QPushButton *>("deleteButton"_s),
                          Qt::LeftButton);
    }

    DemoClient demo_;
    std::unique_ptr<NamingRulePanel> panel_;
    FolderNamingRule *editor_ = nullptr;
    DropZone *zone_ = nullptr;
};

QTEST_MAIN(TestRuleEditor)
#include "test_ruleeditor.moc"
