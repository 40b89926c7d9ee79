#include "NamingSheet.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "RotationStore.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

NamingSheet::NamingSheet(Purpose purpose, RotationStore &store, ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : QDialog(parent, Qt::Sheet), m_purpose(purpose), m_store(store), m_actions(actions), m_alerts(alerts),
      nameField(new QLineEdit(this))
{
    const bool isNew = purpose == Purpose::New;
    const RotationKind &kind = store.kind();
    const QString objectName =
        isNew ? QStringLiteral("New%1WindowController") : QStringLiteral("Save%1AsWindowController");
    setObjectName(objectName.arg(kind.name));
    setWindowTitle(isNew ? kind.newTitle : kind.saveAsTitle);
    setWindowModality(Qt::WindowModal);
    nameField->setObjectName(QStringLiteral("nameField"));
    nameField->setAccessibleName(tr("Name"));
    nameField->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *actionButton = buttons->addButton(isNew ? tr("Add") : tr("Save"), QDialogButtonBox::ActionRole);
    actionButton->setObjectName(isNew ? QStringLiteral("addButton") : QStringLiteral("saveButton"));
    actionButton->setDefault(true);
    actionButton->setEnabled(false);
    QPushButton *cancelButton = buttons->addButton(tr("Cancel"), QDialogButtonBox::ActionRole);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    cancelButton->setAutoDefault(false);
    auto *layout = new QFormLayout(this);
    layout->addRow(tr("Name"), nameField);
    layout->addRow(buttons);
    connect(nameField, &QLineEdit::textChanged, actionButton,
            [actionButton](const QString &text) { actionButton->setEnabled(!text.isEmpty()); });
    connect(actionButton, &QPushButton::clicked, this, &NamingSheet::actionButtonPressed);
    connect(cancelButton, &QPushButton::clicked, this, &NamingSheet::reject);
}

void NamingSheet::reject()
{
    if (!m_isBusy)
        QDialog::reject();
}

void NamingSheet::actionButtonPressed()
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(use(nameField->text()));
}

QCoro::Task<> NamingSheet::use(QString typed)
{
    const QPointer<NamingSheet> self(this);
    const QString name = typed.trimmed();
    if (m_store.contains(name)) {
        const RotationKind &kind = m_store.kind();
        const QString text = kind.nameTaken.arg(name);
        co_await m_alerts.run(kind.nameRefused, text);
        if (!self)
            co_return;
        m_isBusy = false;
        nameField->setFocus(); // the next name can be typed
        co_return;
    }
    if (m_purpose == Purpose::New) {
        co_await m_store.newRotationNamed(name);
    } else {
        // The name is looked up without the blanks around it, and saved with them. A failure has been told.
        [[maybe_unused]] const bool isWritten = co_await m_store.saveUIChanges(typed);
    }
    if (!self)
        co_return;
    m_isBusy = false;
    accept();
}
