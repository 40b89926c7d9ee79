#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class UnsendableLabel;

/// The sheet that adds messages to the open rotation, one after another, until it is closed.
class AddMessageToRotationWindowController : public QDialog
{
    Q_OBJECT
public:
    using AddMessage = std::function<bool(const QString &message, const QString &duration)>;

    /// @param addMessage  takes each message, as it was typed, and tells whether there was room for it; what it uses
    /// outlives the sheet.
    explicit AddMessageToRotationWindowController(AddMessage addMessage, QWidget *parent = nullptr);

    bool addButtonEnabled() const;

public slots:
    void controlTextDidChange();
    void addButtonPressed();
    void closeButtonPressed() { done(QDialog::Rejected); }

private:
    QLineEdit *messageTextField;
    QLineEdit *durationTextField;
    QPushButton *addButton;
    UnsendableLabel *m_unsendableLabel;
    QLabel *m_durationHint;
    const AddMessage m_addMessage;
};
