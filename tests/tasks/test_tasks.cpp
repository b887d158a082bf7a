#include "tasks/background.h"
#include "tasks/latest.h"
#include "tasks/ordersatwork.h"
#include "tasks/requestqueue.h"
#include "tasks/stopflag.h"
#include "tasks/task.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QPointer>
#include <QSemaphore>
#include <QtTest>

#include <memory>
#include <stdexcept>

namespace {

/// Tells how often it was performed; the count has no lock: the pool's hand-over is to do.
class Counting : public Task
{
public:
    explicit Counting(QVector<int> *numbers, int number) : numbers_(numbers), number_(number) {}

    QString problem;

private:
    void perform() override
    {
        numbers_->append(number_);
        if (number_ < 0)
            throw std::runtime_error("broken");
    }
    void failed(const QString &text) override { problem = text; }

    QVector<int> *numbers_;
    int number_;
};

} // namespace

class TestTasks : public QObject
{
    Q_OBJECT

private slots:
    void poolDoesWorkInOrder()
    {
        WorkerPool pool("one"_s, 1);
        QVector<int> numbers;
        QSemaphore gate;
        pool.start([&gate] { gate.acquire(); });
        QVector<std::shared_ptr<Counting>> tasks;
        for (int number = 0; number < 5; ++number)
            tasks.append(std::make_shared<Counting>(&numbers, number == 4 ? -1 : number));
        for (const auto &task : qAsConst(tasks))
            pool.start(task);
        QVERIFY(pool.takeBack(tasks.at(1).get()));
        QVERIFY(!pool.takeBack(tasks.at(1).get()));
        QVERIFY(!pool.waitForDone(0));
        gate.release();
        QVERIFY(pool.waitForDone());
        QCOMPARE(numbers, (QVector<int>{0, 2, 3, -1}));
        QCOMPARE(tasks.at(4)->problem, "处理异常: broken"_s);
        QVERIFY(!pool.takeBack(tasks.at(0).get()));

        pool.start([&gate] { gate.acquire(); });
        pool.start(tasks.at(1));
        pool.clear();
        gate.release();
        QVERIFY(pool.waitForDone());
        QCOMPARE(numbers.size(), 4);
    }

    /// Idle threads go and new ones come, and none is missing when work hangs.
    void poolHasItsThreads()
    {
        constexpr int most = 4;
        QSemaphore begun;
        QSemaphore gate;
        WorkerPool pool("few"_s, most, 0);
        for (int round = 0; round < 50; ++round) {
            for (int number = 0; number < most + 1; ++number) {
                pool.start([&] {
                    begun.release();
                    gate.acquire();
                });
            }
            QVERIFY(begun.tryAcquire(most, patienceMs));
            QVERIFY(!begun.tryAcquire(1, round == 0 ? 50 : 0));
            gate.release(most + 1);
            QVERIFY(begun.tryAcquire(1, patienceMs));
            QVERIFY(pool.waitForDone());
        }
    }

    /// Two threads for a volume and no more, and what waits for it holds up nothing else.
    void deadShareHoldsUpNothingElse()
    {
        QObject context;
        QSemaphore begun;
        QSemaphore gate;
        int ended = 0;
        const auto hang = [&] {
            begun.release();
            gate.acquire();
        };
        for (const QString &path :
             {R"(\\dead\photos\2024\1)"_s, "//DEAD/Photos"_s, R"(\\dead\photos\2)"_s})
            onDisk(&context, path, hang, [&ended] { ++ended; });
        onDisk(&context, QStringList{R"(\\dead\photos)"_s, "//well/photos"_s}, hang,
               [&ended] { ++ended; });
        QVERIFY(begun.tryAcquire(2, patienceMs));
        QString read;
        onDisk(
            &context, "//well/photos/1"_s, [] { return "listed"_s; },
            [&read](const QString &text) { read = text; });
        QTRY_COMPARE(read, "listed"_s);
        onProcessor(
            &context, [] { return "parsed"_s; }, [&read](const QString &text) { read = text; });
        QTRY_COMPARE(read, "parsed"_s);
        QVERIFY(!begun.tryAcquire(1));
        QCOMPARE(ended, 0);
        gate.release(4);
        QTRY_COMPARE(ended, 4);
    }

    void answersReachTheirContext()
    {
        auto context = std::make_unique<QObject>();
        QSemaphore gate;
        QVector<int> answers;
        const auto take = [&](std::unique_ptr<int> answer) {
            QCOMPARE(QThread::currentThread(), thread());
            answers.append(*answer);
        };
        const auto work = [&gate](int answer) {
            return [&gate, answer] {
                gate.acquire();
                return std::make_unique<int>(answer);
            };
        };
        onProcessor(context.get(), work(1), [&](std::unique_ptr<int> answer) {
            take(std::move(answer));
            context.reset(); // with the answer's own way here
        });
        gate.release();
        QTRY_COMPARE(answers, QVector<int>{1});
        QVERIFY(!context);

        context = std::make_unique<QObject>();
        onProcessor(context.get(), work(2), take);
        context.reset();
        gate.release();
        QVERIFY(processorPool().waitForDone());
        QCoreApplication::processEvents();
        QCOMPARE(answers.size(), 1);
    }

    void onlyTheLatestCounts()
    {
        auto search = std::make_unique<Latest>();
        QStringList taken;
        const auto take = [&taken](const QString &answer) { taken.append(answer); };
        auto first = search->only(take);
        auto second = search->only(take);
        first("first"_s);
        QVERIFY(search->isUnderWay());
        second("second"_s);
        second("again"_s);
        QVERIFY(!search->isUnderWay());
        auto third = search->only(take);
        search->abandon();
        third("third"_s);
        auto fourth = search->only(take);
        search.reset();
        fourth("fourth"_s);
        QCOMPARE(taken, QStringList("second"_s));
    }

    void requestsWaitTheirTurn()
    {
        RequestQueue queue(2);
        int idle = 0;
        connect(&queue, &RequestQueue::idle, this, [&idle] { ++idle; });
        QVector<RequestQueue::Ended> sent;
        QPointer<QObject> scope;
        const auto send = [&](QObject *owner, const RequestQueue::Ended &ended) {
            scope = owner;
            sent.append(ended);
        };
        for (int request = 0; request < 3; ++request)
            queue.add(send);
        QCOMPARE(sent.size(), 2);
        QVERIFY(sent.at(1)());
        QCOMPARE(sent.size(), 2); // whoever hears of the answer comes first
        QTRY_COMPARE(sent.size(), 3);
        QVERIFY(sent.at(0)());
        QVERIFY(sent.at(2)());
        QVERIFY(queue.isBusy());
        QTRY_COMPARE(idle, 1);

        for (int request = 0; request < 3; ++request)
            queue.add(send);
        queue.abandon();
        QTRY_VERIFY(!scope);
        QVERIFY(!sent.at(3)());
        QCOMPARE(sent.size(), 5);
        queue.add(send);
        QVERIFY(sent.last()());
        QTRY_COMPARE(idle, 2);
        QVERIFY(!queue.isBusy());
    }

    void ordersAreWorkedOnByOneTool()
    {
        using namespace ordersatwork;
        const OrderIdentity one{"8"_s, "1"_s, "11"_s};
        const OrderIdentity secondService{"8"_s, "1"_s, "12"_s};
        const OrderIdentity otherBranch{"9"_s, "1"_s, "11"_s};
        Claim import;
        QVERIFY(!claim({one}, "导片工具"_s, &import));
        Claim deletion;
        QVERIFY(!claim({secondService}, "批量删除"_s, &deletion));
        QVERIFY(!claim({otherBranch}, "批量删除"_s, &deletion));
        Claim download;
        const auto conflict = claim({otherBranch, one}, "设计分件"_s, &download);
        QVERIFY(conflict);
        QCOMPARE(conflict->tool, "批量删除"_s);
        deletion.release();
        QVERIFY(toolAt(otherBranch).isEmpty());
        {
            Claim again;
            QVERIFY(!claim({one}, "导片工具"_s, &again));
            again = Claim();
            QCOMPARE(toolAt(one), "导片工具"_s);
            Claim moved = std::move(import);
        }
        QVERIFY(toolAt(one).isEmpty());
        QVERIFY(!claim({otherBranch, one}, "设计分件"_s, &download));
    }

    void stopFlagIsShared()
    {
        StopFlag flag;
        const StopFlag copy = flag;
        flag.raise();
        QVERIFY(copy.isRaised());
        flag = StopFlag();
        QVERIFY(copy.isRaised() && !flag.isRaised());
    }
};

QTEST_GUILESS_MAIN(TestTasks)
#include "test_tasks.moc"
