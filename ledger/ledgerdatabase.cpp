#include "ledger/ledgerdatabase.h"

#include "app/context/logging.h"
#include "ledger/ledgerschema.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QThread>
#include <QUuid>

namespace {

/// How long a statement waits for another program's, ms.
constexpr int busyMs = 5000;

LedgerDatabase::Problem problemOf(const QSqlError &error)
{
    using Problem = LedgerDatabase::Problem;
    // The primary result codes of SQLite; the byte above them only refines them.
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case 5: // busy
    case 6: // locked
        return Problem::Busy;
    case 8:  // read-only
    case 10: // input or output
    case 13: // full
    case 14: // cannot open
        return Problem::Full;
    case 11: // corrupt
    case 26: // not a database
        return Problem::Damaged;
    default:
        return Problem::Other;
    }
}

} // namespace

LedgerDatabase::LedgerDatabase(const QString &folder) : folder_(folder)
{
}

LedgerDatabase::~LedgerDatabase()
{
    close();
}

QString LedgerDatabase::path() const
{
    return folder_ + QStringLiteral("/ledger.db");
}

LedgerDatabase::State LedgerDatabase::open()
{
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE"))) {
        problemText_ = QStringLiteral("QSQLITE");
        return refused();
    }
    QDir().mkpath(folder_);
    if (openForWriting())
        return state_;
    if (problem_ == Problem::Damaged)
        return beginAnew();
    const QString reason = problemText_;
    close();
    // What is there may still be read.
    if (QFileInfo::exists(path()) && connect(true) && prepareFile())
        return state_;
    problemText_ = reason;
    return refused();
}

/// Another program may be beginning the file at this moment.
bool LedgerDatabase::openForWriting()
{
    constexpr int attempts = 10;
    constexpr unsigned long pauseMs = 200;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (connect(false) && prepareFile())
            return true;
        if (problem_ != Problem::Busy)
            return false;
        close();
        QThread::msleep(pauseMs);
    }
    return false;
}

bool LedgerDatabase::isWhole()
{
    const QVariant verdict = value(QStringLiteral("PRAGMA quick_check(1)"));
    return verdict.toString() == QLatin1String("ok") || problem_ == Problem::Busy;
}

LedgerDatabase::State LedgerDatabase::refused()
{
    close();
    addNotice(QStringLiteral("导入记录无法打开，本次不记录：%1").arg(problemText_));
    return state_;
}

LedgerDatabase::State LedgerDatabase::beginAnew()
{
    close();
    // An id of a row that was is not to name another one.
    firstId_ = QDateTime::currentSecsSinceEpoch();
    if (!moveAside() || !openForWriting())
        return refused();
    return state_;
}

bool LedgerDatabase::connect(bool readOnly)
{
    name_ = QStringLiteral("ledger-") + QUuid::createUuid().toString();
    connection_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
    connection_.setDatabaseName(path());
    QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyMs);
    if (readOnly)
        options += QStringLiteral(";QSQLITE_OPEN_READONLY");
    connection_.setConnectOptions(options);
    problem_ = Problem::None;
    if (!connection_.open())
        return note(connection_.lastError());
    state_ = readOnly ? State::ReadOnly : State::Open;
    return true;
}

/// Looks at what the file is, and makes of it what this program writes.
bool LedgerDatabase::prepareFile()
{
    // Both as they are at one moment: another program may be beginning the file.
    if (!run(QStringLiteral("BEGIN")))
        return false;
    const QVariant mark = value(QStringLiteral("PRAGMA application_id"));
    const QVariant number = value(QStringLiteral("PRAGMA user_version"));
    if (!commit() || !mark.isValid() || !number.isValid())
        return false;
    const int id = mark.toInt();
    const int found = number.toInt();
    if ((id != 0 && id != ledgerschema::applicationId) || (id == 0 && found != 0)) {
        problem_ = Problem::Damaged;
        problemText_ = QStringLiteral("no ledger");
        return false;
    }
    statements_.clear();
    if (found > ledgerschema::version()) {
        if (state_ == State::Open) {
            close();
            if (!connect(true))
                return false;
        }
        addNotice(QStringLiteral("导入记录来自较新版本的程序：只能查看，本次不记录"));
        return true;
    }
    if (state_ == State::ReadOnly) {
        addNotice(QStringLiteral("导入记录所在文件夹无法写入：只能查看，本次不记录"));
        return found == ledgerschema::version();
    }
    if (!run(QStringLiteral("PRAGMA journal_mode = WAL")) ||
        !run(QStringLiteral("PRAGMA synchronous = FULL")) ||
        !run(QStringLiteral("PRAGMA temp_store = MEMORY")) ||
        !run(QStringLiteral("PRAGMA cache_size = -16000")) ||
        !run(QStringLiteral("PRAGMA journal_size_limit = 33554432")))
        return false;
    return migrate(found) && joinSession();
}

bool LedgerDatabase::migrate(int from)
{
    if (from == ledgerschema::version())
        return true;
    if (!begin())
        return false;
    // Another program may have done it meanwhile.
    const QVariant number = value(QStringLiteral("PRAGMA user_version"));
    int at = number.toInt();
    bool isDone = number.isValid();
    for (; isDone && at < ledgerschema::version(); ++at) {
        for (const QString &statement : ledgerschema::steps().at(at))
            isDone = isDone && run(statement);
    }
    isDone = isDone && beginIds() &&
             run(QStringLiteral("PRAGMA application_id = %1").arg(ledgerschema::applicationId)) &&
             run(QStringLiteral("PRAGMA user_version = %1").arg(ledgerschema::version())) &&
             commit();
    if (!isDone)
        rollback();
    statements_.clear();
    return isDone;
}

bool LedgerDatabase::beginIds()
{
    if (firstId_ == 0)
        return true;
    bool isDone = true;
    for (const char *table : {"run", "entry", "copy", "deletion"}) {
        isDone =
            isDone && run(QStringLiteral("INSERT INTO sqlite_sequence(name, seq) VALUES(?, ?)"),
                          {QLatin1String(table), firstId_});
    }
    return isDone;
}

/// The lock comes before the row, so that a session that has a row and no lock is over.
bool LedgerDatabase::joinSession()
{
    const QString lock =
        QStringLiteral("session-%1.lock").arg(QUuid::createUuid().toString(QUuid::WithoutBraces));
    lock_ = std::make_unique<QLockFile>(folder_ + QLatin1Char('/') + lock);
    lock_->setStaleLockTime(0);
    if (!lock_->tryLock(0)) {
        problem_ = Problem::Full;
        problemText_ = QDir::toNativeSeparators(folder_);
        return false;
    }
    if (!begin())
        return false;
    endLostSessions();
    if (!run(QStringLiteral("INSERT INTO session(lock) VALUES(?)"), {lock})) {
        rollback();
        return false;
    }
    session_ = lastId();
    if (commit())
        return true;
    rollback();
    session_ = 0;
    return false;
}

void LedgerDatabase::endLostSessions()
{
    QVector<QPair<qint64, QString>> sessions;
    QSqlQuery row(QStringLiteral("SELECT id, lock FROM session"), connection_);
    while (row.next())
        sessions.append({row.value(0).toLongLong(), row.value(1).toString()});
    row.finish();
    // What is in a file that somebody else may have written leads nowhere but to our own locks.
    static const QRegularExpression lockName(QStringLiteral("^session-[0-9a-f-]+\\.lock$"));
    for (const auto &[id, name] : qAsConst(sessions)) {
        QLockFile lock(folder_ + QLatin1Char('/') + name);
        lock.setStaleLockTime(0);
        if (lockName.match(name).hasMatch() && !lock.tryLock(0))
            continue;
        wasBrokenOff_ = true;
        run(QStringLiteral("UPDATE run SET session = NULL WHERE session = ?"), {id});
        run(QStringLiteral("DELETE FROM session WHERE id = ?"), {id});
    }
}

void LedgerDatabase::leaveSession()
{
    if (session_ != 0 && begin()) {
        run(QStringLiteral("UPDATE run SET session = NULL WHERE session = ?"), {session_});
        run(QStringLiteral("DELETE FROM session WHERE id = ?"), {session_});
        commit();
    }
    session_ = 0;
    lock_.reset();
}

void LedgerDatabase::close()
{
    if (name_.isEmpty())
        return;
    leaveSession();
    statements_.clear();
    connection_.close();
    connection_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(name_);
    name_.clear();
    state_ = State::Closed;
}

bool LedgerDatabase::moveAside()
{
    const QString date = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString aside = QStringLiteral("ledger-damaged-%1.db").arg(date);
    for (const QLatin1String &tail : {QLatin1String("-wal"), QLatin1String("-shm")}) {
        const QString beside = path() + tail;
        if (QFile::exists(beside))
            QFile::rename(beside, folder_ + QLatin1Char('/') + aside + tail);
    }
    if (!QFile::rename(path(), folder_ + QLatin1Char('/') + aside))
        return false;
    addNotice(QStringLiteral("导入记录已损坏，另存为 %1，重新开始记录").arg(aside));
    return true;
}

bool LedgerDatabase::begin()
{
    return run(QStringLiteral("BEGIN IMMEDIATE"));
}

bool LedgerDatabase::commit()
{
    return run(QStringLiteral("COMMIT"));
}

void LedgerDatabase::rollback()
{
    const Problem problem = problem_;
    const QString text = problemText_;
    run(QStringLiteral("ROLLBACK")); // it may have been done already
    problem_ = problem;
    problemText_ = text;
}

/// A row that is left in hand would hold the database as it was then.
bool LedgerDatabase::run(const QString &statement, std::initializer_list<QVariant> values)
{
    QSqlQuery *query = execute(statement, values);
    if (!query)
        return false;
    lastId_ = query->lastInsertId().toLongLong();
    query->finish();
    return true;
}

QVariant LedgerDatabase::value(const QString &statement, std::initializer_list<QVariant> values)
{
    QSqlQuery *query = execute(statement, values);
    if (!query)
        return {};
    const QVariant first = query->next() ? query->value(0) : QVariant();
    query->finish();
    return first;
}

QSqlQuery *LedgerDatabase::execute(const QString &statement, std::initializer_list<QVariant> values)
{
    auto found = statements_.find(statement);
    if (found == statements_.end()) {
        QSqlQuery query(connection_);
        query.setForwardOnly(true);
        if (!query.prepare(statement)) {
            note(query.lastError());
            return nullptr;
        }
        found = statements_.insert(statement, query);
    }
    QSqlQuery &query = *found;
    int place = 0;
    for (const QVariant &value : values)
        query.bindValue(place++, value);
    if (!query.exec()) {
        note(query.lastError());
        query.finish();
        return nullptr;
    }
    return &query;
}

bool LedgerDatabase::note(const QSqlError &error)
{
    problem_ = problemOf(error);
    problemText_ = error.databaseText();
    if (problem_ != Problem::Busy)
        qCWarning(lcTessavo) << "ledger:" << error.nativeErrorCode() << error.text();
    return false;
}

QStringList LedgerDatabase::takeNotices()
{
    return std::exchange(notices_, {});
}

void LedgerDatabase::addNotice(const QString &text)
{
    if (told_.contains(text))
        return;
    told_.append(text);
    notices_.append(text);
    qCWarning(lcTessavo).noquote() << text;
}
