#pragma once

#include <QLineEdit>
#include <QPointer>

#include <memory>

class DvarSetting;
class QLabel;

/// The field in which a setting's value is typed. Below it, or above where there is no room, it says what the setting
/// accepts for as long as the text is something else.
class DvarValueEditor : public QLineEdit
{
    Q_OBJECT
public:
    /// Keeps `setting`, which a reload of the catalogue may drop meanwhile.
    DvarValueEditor(const std::shared_ptr<DvarSetting> &setting, QWidget *parent);
    ~DvarValueEditor() override;

    void showHint();
    /// What is typed, as it is to be sent: typographic signs as plain ones, but for a password.
    QString value() const;

protected:
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void updateHint();
    QString hintText() const;
    void placeHint();

    std::shared_ptr<DvarSetting> m_setting;
    QPointer<QLabel> m_hint; ///< the parent's child, so that it may reach beyond the field
};
