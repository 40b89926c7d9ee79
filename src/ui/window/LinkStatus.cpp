#include "LinkStatus.h"

#include "LinkText.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace std::chrono_literals;

LinkStatus::LinkStatus(Link &link, QWidget *parent)
    : QWidget(parent), linkLabel(new QLabel(this)), tryNowButton(new QPushButton(tr("Try Now"), this)),
      linkPasswordButton(new QPushButton(tr("Password…"), this)), m_link(link)
{
    setObjectName(QStringLiteral("linkStatus"));
    linkLabel->setObjectName(QStringLiteral("linkLabel"));
    linkLabel->setTextFormat(Qt::PlainText);
    linkLabel->installEventFilter(this);
    tryNowButton->setObjectName(QStringLiteral("tryNowButton"));
    tryNowButton->setToolTip(tr("Look at once whether the server answers again"));
    linkPasswordButton->setObjectName(QStringLiteral("linkPasswordButton"));
    linkPasswordButton->setToolTip(tr("Enter the password that the server takes now"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 6, 0);
    layout->addWidget(linkLabel);
    for (QPushButton *button : {tryNowButton, linkPasswordButton}) {
        button->setMaximumHeight(linkLabel->sizeHint().height() + 8);
        layout->addWidget(button);
    }
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &LinkStatus::showLink);
    connect(&link, &Link::kindChanged, this, &LinkStatus::showLink);
    connect(&link, &Link::figuresChanged, this, &LinkStatus::showLink);
    connect(tryNowButton, &QPushButton::clicked, this, &LinkStatus::tryNowRequested);
    connect(linkPasswordButton, &QPushButton::clicked, this, &LinkStatus::passwordRequested);
    showLink();
}

/// The tool tip tells how long ago something was: nothing else makes it anew while the line is idle.
bool LinkStatus::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == linkLabel && event->type() == QEvent::ToolTip)
        showLink();
    return QWidget::eventFilter(watched, event);
}

void LinkStatus::showLink()
{
    const LinkText text(m_link, std::chrono::steady_clock::now());
    const Link::Kind kind = m_link.kind();
    linkLabel->setText(text.shortText());
    linkLabel->setToolTip(kind == Link::Kind::Closed ? QString() : text.details());
    tryNowButton->setVisible(kind == Link::Kind::Silent);
    linkPasswordButton->setVisible(kind == Link::Kind::Refused);
    if (kind == Link::Kind::Silent)
        m_timer.start(m_link.silentFor() < 1min ? 1s : 3s);
    else if (m_link.figures().waitingSince)
        m_timer.start(250ms);
}
