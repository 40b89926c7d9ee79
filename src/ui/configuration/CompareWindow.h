#pragma once

#include "ArrayController.h"
#include "ConfigurationComparison.h"

#include <QDialog>

class FilterField;
class PlaceholderTable;
class Preferences;
class QCheckBox;
class QPushButton;

/// Shows, before anything is written, what a configuration file would change at the server. Deletes itself when closed.
class CompareWindow : public QDialog
{
    Q_OBJECT
public:
    /// @param fileName     for the title.
    /// @param preferences  keep the columns; they outlive the window.
    CompareWindow(ConfigurationComparison comparison, const QString &fileName, Preferences &preferences,
                  QWidget *parent);
    ~CompareWindow() override;

public slots:
    /// Puts the rows that are shown, as they are shown, on the clipboard: a head line and tabs between the columns.
    void copyButtonPressed();
    /// Closes the window, then asks for the writes.
    void loadOnlyDifferencesButtonPressed();

signals:
    void loadRequested(const QList<ConfigurationEntry> &entries);

private:
    void layOut();
    void connectControls();
    void showRows();
    void updateCopying();
    QString countsText() const;

    FilterField *comparisonFilterField;
    QCheckBox *showEqualOnes;
    PlaceholderTable *comparisonTableView;
    ArrayController<ConfigurationComparison::Row> *comparisonController;
    QPushButton *loadOnlyDifferencesButton;
    QPushButton *copyButton;
    QPushButton *closeButton;

    Preferences &m_preferences;
    ConfigurationComparison m_comparison;
};
