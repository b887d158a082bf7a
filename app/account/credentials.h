#pragma once

#include <QString>

/// What the login window remembers between two starts.
struct Credentials
{
    QString account;  ///< as typed
    QString password; ///< empty unless remembered
    bool remembered = false;
};

/// The file "login_config.txt" with the account used last and, when the user asked for it, the
/// password. Only its owner can read it. Touches the user's own settings folder, on the calling
/// thread.
class CredentialsFile
{
public:
    /// \a folder: for tests; otherwise the program's settings folder.
    explicit CredentialsFile(const QString &folder = standardFolder());

    /// Empty for a missing file; one that others can read is closed to them. Of a damaged one
    /// whatever is whole: never a part of a password.
    Credentials read() const;

    /// Replaces the file as a whole, or leaves the earlier one alone and returns false.
    bool write(const Credentials &credentials) const;

    QString path() const;

private:
    static QString standardFolder();

    QString folder_;
};
