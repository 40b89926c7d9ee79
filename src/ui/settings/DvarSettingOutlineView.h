#pragma once

#include <QTreeView>

#include <memory>

class DvarSetting;
class SettingsOutlineModel;

/// An outline of settings with editable values. Boolean settings have a checkbox, which shows the session's value.
class DvarSettingOutlineView : public QTreeView
{
    Q_OBJECT
public:
    /// `outline` outlives the view.
    explicit DvarSettingOutlineView(SettingsOutlineModel &outline, QWidget *parent = nullptr);

    /// Narrows the rows and opens those that match; an empty text brings everything back as it was. The chosen setting
    /// stays chosen.
    void setFilterText(const QString &text);
    /// Opens all rows for good: the end of the filter leaves them open as well.
    void expandEveryRow();

public slots:
    /// Asks for the opposite of a boolean setting's value. Other rows: nothing.
    void checkboxValueChanged(const QModelIndex &index);

signals:
    /// The server is to be asked once more whether it has this variable.
    void askAgainRequested(const QString &dvar);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void editValueOf(const QModelIndex &index);
    void showMenuFor(const std::shared_ptr<DvarSetting> &setting, const QPoint &position);
    QStringList collapsedCategories() const;
    void collapseCategories(const QStringList &names);

    SettingsOutlineModel &m_outline;
    std::weak_ptr<DvarSetting> m_chosen; ///< returns with the filter's end when the filter hides it
    QStringList m_collapsed;             ///< before the filter
};
