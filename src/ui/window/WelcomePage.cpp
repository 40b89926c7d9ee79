#include "WelcomePage.h"

#include <QFontInfo>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static QLabel *paragraph(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    // Longer lines are hard to follow.
    label->setMaximumWidth(label->fontMetrics().averageCharWidth() * 75);
    return label;
}

WelcomePage::WelcomePage(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("welcomePage"));
    QLabel *title = paragraph(tr("Welcome"), this);
    QFont large = title->font();
    large.setPointSizeF(QFontInfo(large).pointSizeF() * 1.8);
    title->setFont(large);
    QLabel *text = paragraph(tr("Enter the address, the port and the remote-console password of your server on the "
                                "left and press \"Connect\".\n\n"
                                "Players, maps, settings, messages and the console appear here as soon as the server "
                                "has answered."),
                             this);
    QLabel *demoText = paragraph(tr("No server at hand? The built-in demo server runs on this computer only and lets "
                                    "you try everything."),
                                 this);
    auto *tryDemoServerButton = new QPushButton(tr("Try the Demo Server"), this);
    tryDemoServerButton->setObjectName(QStringLiteral("tryDemoServerButton"));
    tryDemoServerButton->setMinimumSize(tryDemoServerButton->sizeHint() + QSize(24, 8));
    connect(tryDemoServerButton, &QPushButton::clicked, this, &WelcomePage::demoServerRequested);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 24, 48, 24);
    layout->setSpacing(14);
    layout->addStretch(1);
    for (QLabel *label : {title, text, demoText})
        layout->addWidget(label);
    layout->addWidget(tryDemoServerButton, 0, Qt::AlignLeft);
    layout->addStretch(2);
}
