#include "WelcomePage.h"

#include <QLabel>
#include <QVBoxLayout>

WelcomePage::WelcomePage(QWidget *parent)
    : QWidget(parent), tryDemoServerButton(new QPushButton(tr("Try the Demo Server"), this))
{
    setObjectName(QStringLiteral("welcomePage"));
    auto *title = new QLabel(tr("Welcome"), this);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    title->setFont(large);
    auto *text = new QLabel(tr("Enter the address, the port and the remote-console password of your server on the "
                               "left and press \"Connect\".\n\n"
                               "Players, maps, settings, messages and the console appear here as soon as the server "
                               "has answered."),
                            this);
    text->setWordWrap(true);
    auto *demoText = new QLabel(tr("No server at hand? The built-in demo server runs on this computer only and lets "
                                   "you try everything."),
                                this);
    demoText->setWordWrap(true);
    tryDemoServerButton->setObjectName(QStringLiteral("tryDemoServerButton"));
    tryDemoServerButton->setMinimumSize(tryDemoServerButton->sizeHint() + QSize(24, 8));

    auto *column = new QVBoxLayout;
    for (QWidget *widget :
         {static_cast<QWidget *>(title), static_cast<QWidget *>(text), static_cast<QWidget *>(demoText)})
        column->addWidget(widget);
    column->addWidget(tryDemoServerButton, 0, Qt::AlignLeft);
    column->setSpacing(14);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 24, 48, 24);
    layout->addStretch(1);
    layout->addLayout(column);
    layout->addStretch(2);
}
