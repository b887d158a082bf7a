#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>

class QGuiApplication;

/// The program's one utility object: what happens at start-up, the scale of the interface, and the
/// saved login data. Interface thread only.
class K : public QObject
{
    Q_OBJECT

public:
    static K *instance();

    /// Installs the application font and the Chinese translations and sets the interface scale.
    void initApplication(QGuiApplication *application);

    /// Opens the first window: \a mode is a StartMode (app/shell/startwindow.h). Defined with the
    /// windows it opens.
    void openStartWindow(int mode);

    /// Factor between design pixels and pixels of the screen, at least 1.0. Set once at start-up.
    static float uiScale;

    /// The scale for a screen of these densities (dots per inch).
    static float scaleFor(float logicalDpi, float physicalDpi);

    /// Design pixels to pixels of the screen. An unscaled screen enlarges by a fifth on purpose.
    static int scaledPx(int px);
    /// The same as decimal text, for style sheets.
    static QString scaledPxString(int px);

    /// Writes the login reply for tools that start in a process of their own. Only the owner can
    /// read the file; an unwritable folder is logged and otherwise ignored. \a done, when given, is
    /// called with an empty map at the end.
    void saveLoginData(const QJsonObject &data,
                       const std::function<void(const QVariantMap &)> &done = {});
    /// What saveLoginData() wrote; empty when there is nothing, or nothing whole.
    QJsonObject loadLoginData();

    /// \a text as a JSON object; empty, with a log line, when it is none.
    static QJsonObject jsonObjectFromText(const QString &text);

private:
    K() = default;
    void installTranslators(QGuiApplication *application);
};
