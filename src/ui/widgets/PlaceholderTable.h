#pragma once

#include <QTableView>

/// A table that says what to do while it has no rows.
class PlaceholderTable : public QTableView
{
    Q_OBJECT
public:
    explicit PlaceholderTable(QWidget *parent = nullptr);

    void setPlaceholder(const QString &text);
    QString placeholder() const { return m_placeholder; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_placeholder;
};
