#pragma once

#include <QList>
#include <QMessageBox>
#include <QString>

#include <optional>

/// A box that asked or told the user something.
struct BoxRecord
{
    enum class Kind { Information, Warning, Question, Confirmation };

    Kind kind = Kind::Information;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons;
    QString explanation = {}; ///< stands below the text; may be empty
};

/// Answers in the user's place, so that tests and the guided tour meet no open dialog. Every box
/// and file dialog of the program asks here before it shows itself. Interface thread only.
namespace boxscript {

void setScripted(bool scripted);
bool isScripted();
void queueAnswer(QMessageBox::StandardButton answer);

/// The answer to use instead of showing \a box; nothing when the user is to answer.
std::optional<QMessageBox::StandardButton> answerFor(const BoxRecord &box);

/// The script's answer for \a box is about to take effect.
void noteShown(const BoxRecord &box);
QList<BoxRecord> takeShown();

/// What Escape answers: the button that changes nothing.
QMessageBox::StandardButton safeAnswer(QMessageBox::StandardButtons offered);

} // namespace boxscript
