#pragma once

#include "tests/support/democlient.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>

class QDialog;
class QImage;
class QTableView;
class QWidget;

/// A check of the tour failed, or something it waited for did not come.
struct TourFailure
{
    QString what;
};

/// Leads through the program: tells what is done, waits, checks, and takes the pictures. Everything
/// that can fail throws TourFailure, which ends the tour.
class Guide : public QObject
{
    Q_OBJECT

public:
    Guide(const QString &pictureFolder, float scale);

    /// Begins a step; its line is printed when the next one begins or the tour ends.
    void step(const QString &title);
    void finish();

    void check(bool holds, const QString &what);
    /// Waits, at most for half a minute, until \a holds.
    void waitFor(const std::function<bool()> &holds, const QString &what);

    /// Saves what \a window shows, numbered by step.
    void picture(QWidget *window, const QString &name);
    void picture(const QImage &image, const QString &name);

    /// The next box is photographed and answered with its button of that text, as a user would.
    void answerNextBox(const QString &buttonText, const QString &pictureName);
    /// Waits until that box has come and gone; returns its text.
    QString boxText();

    void typeInto(QWidget *window, const char *objectName, const QString &text);
    void click(QWidget *window, const char *objectName);
    /// Gives a tool window the size of a workstation's screen at the tour's scale.
    void spread(QWidget *window) const;

    template <typename Window> Window *waitForWindow(const QString &what)
    {
        Window *found = nullptr;
        waitFor([&found] { return (found = visibleWindow<Window>()) != nullptr; }, what);
        return found;
    }

    /// Closes whatever is open, as the program's end does. Nothing of a window may outlive the
    /// application: a connection that ends beside the end of the process finds its libraries gone.
    void closeWindows();

    DemoClient &studio() { return studio_; }
    /// The demo service's folder with the material to import.
    QString material(const QString &relativePath);

private:
    template <typename Window> static Window *visibleWindow()
    {
        const auto widgets = topLevelWidgets();
        for (QWidget *widget : widgets) {
            auto *window = qobject_cast<Window *>(widget);
            if (window && window->isVisible())
                return window;
        }
        return nullptr;
    }
    static QList<QWidget *> topLevelWidgets();
    void answerBox();

    DemoClient studio_;
    QString pictureFolder_;
    float scale_;
    int stepNumber_ = 0;
    QString stepTitle_;
    QStringList checked_;
    QTimer boxTimer_;
    QString boxButton_;
    QString boxPicture_;
    QString boxText_;
    QPointer<QDialog> box_; ///< the one answered, until it has gone
    bool boxCame_ = false;
};
