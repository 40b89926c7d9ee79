#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

/// The pane on the left: where to connect to.
class ServersView : public QWidget
{
    Q_OBJECT
public:
    explicit ServersView(QWidget *parent = nullptr);

    /// While a connect is under way no second one can be asked for.
    void setConnecting(bool isConnecting);
    /// "Disconnect" can be pressed while there is a connection, or one is being made.
    void setConnected(bool isConnected);
    void fillForm(const QString &host, const QString &port);

    QLineEdit *labelField;
    QLineEdit *hostField;
    QLineEdit *portField;
    QLineEdit *passwordField;
    QPushButton *connectButton;
    QPushButton *disconnectButton;
    QPushButton *hostwellButton;

public slots:
    void controlTextDidChange();
    void hostwellButtonPressed();

signals:
    void connectButtonPressed();
    void disconnectButtonPressed();

private:
    void layOut();

    bool m_isConnecting = false;
    bool m_isConnected = false;
};
