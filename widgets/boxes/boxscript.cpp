#include "widgets/boxes/boxscript.h"

#include "app/context/logging.h"

#include <utility>

namespace boxscript {

namespace {

struct Script
{
    bool scripted = false;
    QList<QMessageBox::StandardButton> answers;
    QList<BoxRecord> shown;
};

Script &script()
{
    static Script instance;
    return instance;
}

} // namespace

void setScripted(bool scripted)
{
    script().scripted = scripted;
    if (!scripted)
        script().answers.clear();
}

bool isScripted()
{
    return script().scripted;
}

void queueAnswer(QMessageBox::StandardButton answer)
{
    script().answers.append(answer);
}

std::optional<QMessageBox::StandardButton> answerFor(const BoxRecord &box)
{
    if (!script().scripted && script().answers.isEmpty())
        return std::nullopt;
    if (script().answers.isEmpty())
        return safeAnswer(box.buttons);
    QMessageBox::StandardButton answer = script().answers.takeFirst();
    if (box.kind == BoxRecord::Kind::Confirmation && answer == QMessageBox::Yes)
        answer = QMessageBox::Ok;
    if (box.buttons.testFlag(answer))
        return answer;
    qCWarning(lcTessavo) << "the scripted answer" << answer << "is not offered by" << box.text;
    return safeAnswer(box.buttons);
}

void noteShown(const BoxRecord &box)
{
    script().shown.append(box);
}

QList<BoxRecord> takeShown()
{
    return std::exchange(script().shown, {});
}

QMessageBox::StandardButton safeAnswer(QMessageBox::StandardButtons offered)
{
    for (const auto safe : {QMessageBox::Cancel, QMessageBox::No, QMessageBox::Close,
                            QMessageBox::Abort, QMessageBox::Ok}) {
        if (offered.testFlag(safe))
            return safe;
    }
    return QMessageBox::NoButton;
}

} // namespace boxscript
