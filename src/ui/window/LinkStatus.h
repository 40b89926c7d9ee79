#pragma once

#include "Link.h"

#include <QWidget>

#include <QTimer>

class QLabel;
class QPushButton;

/// The part of the status line that tells how the server answers, and what can be done when it does not.
class LinkStatus : public QWidget
{
    Q_OBJECT
public:
    /// `link` outlives the widget.
    explicit LinkStatus(Link &link, QWidget *parent = nullptr);

signals:
    void tryNowRequested();
    void passwordRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showLink();

    QLabel *linkLabel;
    QPushButton *tryNowButton;
    QPushButton *linkPasswordButton;
    Link &m_link;
    QTimer m_timer; ///< until what is shown has changed with the time
};
