#include "RotationNameDialog.h"

#include "Alerts.h"
#include "RotationStore.h"

#include <QDialogButtonBox>
#include <QFormLayout>

RotationNameDialog::RotationNameDialog(RotationStore &store, RotationLabels labels, ActionQueue &actions,
                                       Alerts &alerts, QPushButton *actionButton, QWidget *parent)
    : QDialog(parent, Qt::Sheet), m_store(store), m_labels(std::move(labels)), m_actions(actions), m_alerts(alerts),
      nameField(new QLineEdit(this)), m_actionButton(actionButton)
{
    setWindowModality(Qt::WindowModal);
    nameField->setObjectName(QStringLiteral("nameField"));
    nameField->setAccessibleName(tr("Name"));
    nameField->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
    actionButton->setDefault(true);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(actionButton, QDialogButtonBox::ActionRole);
    QPushButton *cancelButton = buttons->addButton(tr("Cancel"), QDialogButtonBox::ActionRole);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    cancelButton->setAutoDefault(false);
    auto *layout = new QFormLayout(this);
    layout->addRow(tr("Name"), nameField);
    layout->addRow(buttons);
    connect(nameField, &QLineEdit::textChanged, this, &RotationNameDialog::controlTextDidChange);
    connect(cancelButton, &QPushButton::clicked, this, &RotationNameDialog::cancelButtonPressed);
    controlTextDidChange();
}

void RotationNameDialog::controlTextDidChange()
{
    m_actionButton->setEnabled(!nameField->text().isEmpty());
}

void RotationNameDialog::cancelButtonPressed()
{
    if (!m_isBusy)
        done(QDialog::Rejected);
}

QCoro::Task<bool> RotationNameDialog::refuseExisting(QString name)
{
    if (!m_store.contains(name))
        co_return false;
    const QString text = m_labels.refusalText.arg(name);
    co_await m_alerts.run(m_labels.refusalTitle, text);
    co_return true;
}
