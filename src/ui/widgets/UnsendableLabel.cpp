#include "UnsendableLabel.h"

#include "GameText.h"

UnsendableLabel::UnsendableLabel(QWidget *parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("unsendableLabel"));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    hide();
}

void UnsendableLabel::keepRoom()
{
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
    setMinimumHeight(2 * fontMetrics().lineSpacing());
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

bool UnsendableLabel::judge(const QString &text)
{
    const GameText judged = GameText::of(text);
    setText(judged.isSendable() ? QString() : tr("%1 It would not be sent.").arg(judged.complaint()));
    setVisible(!judged.isSendable());
    return judged.isSendable();
}
