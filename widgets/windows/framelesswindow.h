#pragma once

#include "tasks/workprogress.h"
#include "widgets/boxes/boxtext.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <memory>

class EdgeGrip;
class QEventLoopLocker;
class QVBoxLayout;
class TitleBar;

/// A frameless top-level window with the program's title bar, a thin border, and edges and corners
/// that resize it. Create it without parent, fill it through setContent().
///
/// Closing: however it comes about, closeRequested() is asked first. A window with work to end
/// answers CloseLater: it disappears at once and closed() tells its owner so, but it lives on, and
/// the process with it, until it calls finishClosing().
class FramelessWindow : public QWidget
{
    Q_OBJECT

public:
    explicit FramelessWindow(QWidget *parent = nullptr);
    ~FramelessWindow() override;

    /// Puts \a content, which the window then owns, below the title bar; an earlier one is deleted.
    void setContent(QWidget *content);
    QWidget *content() const { return content_; }
    /// Where the content lies, in the window's coordinates.
    QRect contentArea() const;

    TitleBar *titleBar() const { return titleBar_; }

    /// How far the work is that the window does.
    const WorkProgress &work() const { return work_; }

signals:
    void workChanged(const WorkProgress &work);
    /// "−" was pressed. The window does not minimise by itself.
    void minimizeRequested();
    /// The window has gone for its user; emitted once per showing. It may live on hidden.
    void closed();

protected:
    enum class CloseAnswer {
        Close,      ///< close now (and be deleted, with Qt::WA_DeleteOnClose)
        CloseLater, ///< hide now, closed() now, the rest in finishClosing()
        Refuse,     ///< stay
    };

    /// What to do about a wish to close. Close unless a subclass says otherwise.
    virtual CloseAnswer closeRequested();

    /// For closeRequested() of a window that asks its user first: false, with the question in a
    /// box, until the user has agreed to it; the window then closes by itself. Refuse meanwhile.
    /// \a subject is what the user agrees to, whatever the question's numbers have become by then;
    /// left out, it is the question to the letter.
    bool agreedToClose(const BoxText &question, const QString &subject = {});

    /// Ends what CloseLater began: deletes the window when it has Qt::WA_DeleteOnClose, and lets
    /// the process end. Nothing happens unless a CloseLater is pending.
    void finishClosing();
    bool isClosingLater() const { return closeLater_ != nullptr; }

    void setWork(const WorkProgress &work);

    void closeEvent(QCloseEvent *event) final;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void placeGrips();
    void titleButtonsLast();

    QVBoxLayout *layout_;
    TitleBar *titleBar_;
    QWidget *content_ = nullptr;
    QList<EdgeGrip *> grips_;
    WorkProgress work_;
    bool closed_ = false;
    QString askedSubject_;        ///< of the question in a box at the moment
    QString agreedSubject_;       ///< while closing after it
    bool deletedOnClose_ = false; ///< what Qt::WA_DeleteOnClose was when CloseLater was answered
    std::unique_ptr<QEventLoopLocker> closeLater_;
};
