#pragma once

#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <initializer_list>
#include <memory>

class QLockFile;

/// The file of the ledger: opened, brought up to date, told whether it can be written. For the
/// ledger's thread alone.
class LedgerDatabase
{
public:
    enum class State {
        Closed,   ///< cannot be used
        ReadOnly, ///< of a newer program, or in a folder that cannot be written
        Open,
    };
    /// Why the last statement did not do what it should.
    enum class Problem {
        None,
        Busy,    ///< another program is writing, for long; may be tried again
        Full,    ///< no space, or the disk does not write; may be tried again
        Damaged, ///< the file is no database any more
        Other,   ///< nothing that trying again would mend
    };

    explicit LedgerDatabase(const QString &folder);
    ~LedgerDatabase();
    LedgerDatabase(const LedgerDatabase &) = delete;
    LedgerDatabase &operator=(const LedgerDatabase &) = delete;

    /// Opens it, or a new one after having moved a damaged one aside.
    State open();
    void close();
    /// Moves the damaged file aside and begins a new one.
    State beginAnew();

    /// Reads all of it, which may take seconds.
    bool isWhole();
    /// Whether a program that had it open never said that it ended.
    bool wasBrokenOff() const { return wasBrokenOff_; }

    State state() const { return state_; }
    const QSqlDatabase &connection() const { return connection_; }
    /// Row of this program's session; 0 when nothing can be written.
    qint64 session() const { return session_; }

    /// Ends the sessions of programs that are gone without having said so. Within a transaction.
    void endLostSessions();

    bool begin();
    bool commit();
    void rollback();

    /// Runs a statement that is kept prepared. False when it failed; problem() says why.
    bool run(const QString &statement, std::initializer_list<QVariant> values = {});
    /// Of the row that run() has inserted last.
    qint64 lastId() const { return lastId_; }
    /// The first value of the first row; invalid when there is none, or it failed.
    QVariant value(const QString &statement, std::initializer_list<QVariant> values = {});

    Problem problem() const { return problem_; }
    QString problemText() const { return problemText_; }

    /// What the user is to be told; empties the list.
    QStringList takeNotices();
    void addNotice(const QString &text);

private:
    QString path() const;
    bool connect(bool readOnly);
    bool openForWriting();
    bool prepareFile();
    bool migrate(int from);
    bool beginIds();
    bool joinSession();
    void leaveSession();
    bool moveAside();
    State refused();
    QSqlQuery *execute(const QString &statement, std::initializer_list<QVariant> values);
    bool note(const QSqlError &error);

    const QString folder_;
    QString name_; ///< of the connection
    QSqlDatabase connection_;
    QHash<QString, QSqlQuery> statements_;
    State state_ = State::Closed;
    Problem problem_ = Problem::None;
    QString problemText_;
    std::unique_ptr<QLockFile> lock_;
    qint64 session_ = 0;
    qint64 lastId_ = 0;
    qint64 firstId_ = 0; ///< where the ids of a new file begin
    bool wasBrokenOff_ = false;
    QStringList notices_;
    QStringList told_;
};
