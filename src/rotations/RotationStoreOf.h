#pragma once

#include "RSRTVArrayController.h"
#include "RotationDocument.h"
#include "RotationStore.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

/// What a store of rotations has to know of its entries: the rows of the table, and the named rotations that they are
/// copied from and to.
template <typename Entry>
class RotationStoreOf : public RotationStore
{
public:
    using Dictionary = RotationDictionary<Entry>;

    QStringList names() const override { return sortedKeys(dictionary()); }
    bool contains(const QString &name) const override { return dictionary().contains(name); }

    /// The rows of the table, in the order in which they are played.
    QList<std::shared_ptr<Entry>> entries() const { return m_table.arrangedObjects(); }
    int rowCount() const { return m_table.rowCount(); }

    QAbstractItemModel *tableModel() override { return m_table.arranged(); }
    QItemSelectionModel *tableSelection() override { return m_table.selection(); }
    ReorderableRows &rows() override { return m_table; }

    /// Appends rows in one step, before the first wait; alerts when the table would get too many, and adds none then.
    QCoro::Task<> addEntries(QList<Entry> added)
    {
        if (m_table.rowCount() + added.size() > MaximumRows)
            co_await tellOfTooMany();
        else
            addRows(added);
    }
    /// Makes these the rows of the table, in one step, before the first wait; alerts when they are too many, and
    /// changes nothing then.
    QCoro::Task<> replaceEntries(QList<Entry> entries)
    {
        if (entries.size() <= MaximumRows)
            m_table.removeAll();
        co_await addEntries(entries);
    }
    QCoro::Task<QList<qsizetype>> addTexts(QList<QStringList> rows) override
    {
        QList<qsizetype> misfits;
        QList<Entry> added;
        for (qsizetype place = 0; place < rows.size(); ++place) {
            const std::optional<Entry> entry = entryOf(rows.at(place));
            if (entry)
                added.append(*entry);
            else
                misfits.append(place);
        }
        co_await addEntries(added);
        co_return misfits;
    }
    void deleteSelectedItems() override { m_table.removeSelected(); }
    void deleteAllItems() override { m_table.removeAll(); }

protected:
    /// @param folder     where the file is; preferences and alerts outlive the store.
    /// @param rotations  nothing where a new rotation is not kept until a file was read or a rotation saved.
    RotationStoreOf(RotationKind kind, Preferences &preferences, Alerts &alerts, const QString &folder,
                    std::optional<Dictionary> rotations, QObject *parent)
        : RotationStore(std::move(kind), preferences, alerts, folder, parent), m_rotations(std::move(rotations)),
          m_keptRotations(m_rotations), m_table(columns())
    {
        watch(m_table);
    }

    const std::optional<Dictionary> &rotations() const { return m_rotations; }
    Dictionary dictionary() const { return m_rotations.value_or(Dictionary()); }

private:
    using Row = std::shared_ptr<Entry>;

    static QList<typename RSRTVArrayController<Entry>::Column> columns()
    {
        QList<typename RSRTVArrayController<Entry>::Column> columns;
        for (const RotationField<Entry> &field : Entry::fields) {
            const auto text = field.text;
            typename RSRTVArrayController<Entry>::Column column;
            column.title = QCoreApplication::translate("RotationField", field.title);
            column.text = [text](const Row &row) {
                return (*row).*text;
            };
            if (Entry::IsEditable)
                column.edit = [text](Row &row, const QString &typed) {
                    return std::exchange((*row).*text, typed) != typed;
                };
            columns.append(column);
        }
        return columns;
    }

    static std::optional<Entry> entryOf(const QStringList &texts)
    {
        Entry entry;
        if (texts.size() != static_cast<qsizetype>(std::size(Entry::fields)))
            return std::nullopt;
        for (qsizetype column = 0; column < texts.size(); ++column)
            entry.*Entry::fields[column].text = texts.at(column);
        return entry.isWhole() ? std::optional(entry) : std::nullopt;
    }

    void addRows(const QList<Entry> &added)
    {
        QList<Row> rows;
        rows.reserve(added.size());
        for (const Entry &entry : added)
            rows.append(std::make_shared<Entry>(entry));
        m_table.addObjects(rows);
    }

    void store(const NamedRotation<Entry> &rotation)
    {
        if (!m_rotations)
            m_rotations.emplace();
        m_rotations->insert(rotation.name, rotation);
    }

    void takeDocument(const XmlDocument &document) override { m_rotations = rotationsIn<Entry>(document); }
    QByteArray fileContent(QString *error) const override { return checkedRotationBytes(dictionary(), error); }
    bool isTableStoredAs(const QString &name) const override
    {
        const QList<Entry> stored = dictionary().value(name).rotationList;
        const QList<Row> rows = entries();
        return std::equal(rows.begin(), rows.end(), stored.begin(), stored.end(),
                          [](const Row &row, const Entry &entry) { return *row == entry; });
    }
    void fillTable(const QString &name) override
    {
        m_table.removeAll();
        addRows(dictionary().value(name).rotationList);
    }
    void storeTable(const QString &name) override
    {
        NamedRotation<Entry> rotation{name, {}};
        for (const Row &row : entries())
            rotation.rotationList.append(*row);
        store(rotation);
    }
    void storeEmpty(const QString &name) override
    {
        if (!m_rotations)
            return;
        store({name, {}});
        if (m_keptRotations)
            m_keptRotations->insert(name, {name, {}});
    }
    void removeStored(const QString &name) override { m_rotations->remove(name); }
    void keepStored() override { m_keptRotations = m_rotations; }
    void returnToKept() override { m_rotations = m_keptRotations; }

    std::optional<Dictionary> m_rotations;
    std::optional<Dictionary> m_keptRotations; ///< without what could not be written
    RSRTVArrayController<Entry> m_table;
};
