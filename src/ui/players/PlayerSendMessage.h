#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class UnsendableLabel;

/// The panel in which a private message is written. Closing it any other way than by "Send" leaves no message.
class PlayerSendMessage : public QDialog
{
    Q_OBJECT
public:
    explicit PlayerSendMessage(QWidget *parent = nullptr);

    void reset();
    /// Names who will read the message.
    void setRecipients(const QStringList &names);
    QString messageString() const;

public slots:
    void sendPressed();
    void cancelPressed();
    void controlTextDidChange();
    void reject() override { cancelPressed(); }

private:
    QLineEdit *messageTextField;
    QPushButton *sendButton;
    QLabel *m_recipients;
    UnsendableLabel *m_unsendableLabel;
};
