#pragma once

#include <QLabel>

class KelServer;
class PlayerRoster;
class QTimer;

/// Tells below the table how many players are shown, how many are selected, and how old the list is. Empty while there
/// is no connection; counts the seconds while it is seen.
class PlayerCountLabel : public QLabel
{
    Q_OBJECT
public:
    /// Both outlive the label.
    PlayerCountLabel(PlayerRoster &roster, const KelServer &server, QWidget *parent = nullptr);

    /// Writes the text anew.
    void tell();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QString selectedText() const;
    QString ageText() const;

    PlayerRoster &m_roster;
    const KelServer &m_server;
    QTimer *m_seconds;
};
