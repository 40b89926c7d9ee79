#include "PasswordQuestion.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QPushButton>

#include <utility>

namespace
{
struct Text {
    Q_DECLARE_TR_FUNCTIONS(PasswordQuestion)
};
} // namespace

void openPasswordQuestion(QWidget *window, const QString &host, std::function<void(const QString &)> answered)
{
    auto *dialog = new QInputDialog(window, Qt::Sheet);
    dialog->setObjectName(QStringLiteral("passwordPanel"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(Text::tr("Password"));
    dialog->setLabelText(Text::tr("Remote-console password of %1").arg(host));
    for (QLabel *label : dialog->findChildren<QLabel *>())
        label->setTextFormat(Qt::PlainText);
    dialog->setTextEchoMode(QLineEdit::Password);
    dialog->setOkButtonText(Text::tr("Connect"));
    QPushButton *connectButton = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    connectButton->setEnabled(false);
    QObject::connect(dialog, &QInputDialog::textValueChanged, connectButton,
                     [connectButton](const QString &text) { connectButton->setEnabled(!text.isEmpty()); });
    QObject::connect(dialog, &QInputDialog::textValueSelected, dialog,
                     [answered = std::move(answered)](const QString &password) {
                         if (!password.isEmpty())
                             answered(password);
                     });
    dialog->open();
}
