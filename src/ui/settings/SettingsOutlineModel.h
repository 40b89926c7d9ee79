#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <memory>

class DvarFetcher;
class DvarSetting;
class DvarSettingCategory;
class KelServer;

/// Categories of settings with the values that the session has at the moment. It follows the session by itself, and
/// tells which values are no longer what they were at the end of connecting, or when they came in the background later.
class SettingsOutlineModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column { NameColumn, ValueColumn, DescriptionColumn, ColumnCount };
    enum Role {
        IsUnknownRole = Qt::UserRole, ///< the session does not know the variable, or not yet
        IsAwaitedRole,                ///< it does not know it yet
        IsChangedRole,                ///< since the end of connecting
        IsPendingRole,                ///< a write is on its way
    };

    /// `server` and `fetcher` outlive the model.
    SettingsOutlineModel(KelServer &server, const DvarFetcher &fetcher, QObject *parent = nullptr);
    ~SettingsOutlineModel() override;

    void setCategories(const QList<std::shared_ptr<DvarSettingCategory>> &categories);
    /// Narrows the rows to settings that have every word of `text` in their name, variable or description.
    void setFilterText(const QString &text);
    QString filterText() const { return m_filterText; }
    /// Whether there are settings at all, shown or hidden by the filter.
    bool hasSettings() const { return !m_all.isEmpty(); }

    /// The setting of a row; null for a category.
    std::shared_ptr<DvarSetting> settingAt(const QModelIndex &index) const;
    /// The row that shows a setting; invalid while the filter hides it.
    QModelIndex indexOf(const std::shared_ptr<DvarSetting> &setting, int column = NameColumn) const;
    /// What a variable was at the end of connecting, or when it came later; null when it has been unknown ever since,
    /// or was when it was written.
    QString valueAtConnect(const QString &dvar) const { return m_valuesAtConnect.value(dvar); }

    /// Marks the rows of a variable as being written, until endWrite() was called as often.
    void beginWrite(const QString &dvar);
    void endWrite(const QString &dvar);

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// Asks for a write of a valid text, or for the opposite of a checkbox whatever the state given. Stores nothing:
    /// the row shows what the session says.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

signals:
    void writeRequested(std::shared_ptr<DvarSetting> setting, const QString &value);
    void toggleRequested(std::shared_ptr<DvarSetting> setting);

private:
    /// What a row showed when the views were last told.
    struct Shown {
        QString value;
        QString reason; ///< why there is none
        bool isChanged = false;
        bool isPending = false;
        bool operator==(const Shown &) const = default;
    };
    struct Row {
        std::shared_ptr<DvarSetting> setting;
        Shown shown;
    };
    struct Category {
        QString name;
        QList<Row> rows;
    };

    void followSession();
    void takeValuesAtConnect();
    void followVariable(const QString &dvar);
    /// Tells the views which rows show something else now, of one variable or of all.
    void announceChanges(const QString &dvar = {});
    void arrange();
    bool isChanged(const QString &dvar, const QString &value) const;
    bool isAwaited(const DvarSetting &setting) const;
    /// Why there is no value; null when there is one.
    QString reasonOfLack(const DvarSetting &setting) const;
    Shown shownFor(const DvarSetting &setting) const;
    QVariant settingData(const DvarSetting &setting, int column, int role) const;
    QVariant valueData(const DvarSetting &setting, int role) const;
    QString displayText(const DvarSetting &setting, int column) const;
    QString toolTip(const DvarSetting &setting, int column) const;
    QString changeText(const DvarSetting &setting) const;

    KelServer &m_server;
    const DvarFetcher &m_fetcher;
    QList<std::shared_ptr<DvarSettingCategory>> m_all;
    QList<Category> m_categories; ///< that have rows which the filter lets pass, with these
    QString m_filterText;
    QHash<QString, QString> m_valuesAtConnect;
    QSet<QString> m_written; ///< what comes of these is what was written, so nothing to go back to
    bool m_isConnectComplete = false;
    QHash<QString, int> m_writes;
};
