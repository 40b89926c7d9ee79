#pragma once

#include "ArrayController.h"
#include "ConfigurationComparison.h"

#include <QDialog>

class PlaceholderTable;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// Shows, before anything is written, what a configuration file would change at the server. Deletes itself when closed.
class CompareWindow : public QDialog
{
    Q_OBJECT
public:
    /// @param fileName  for the title.
    CompareWindow(ConfigurationComparison comparison, const QString &fileName, QWidget *parent);
    ~CompareWindow() override;

public slots:
    /// Puts the rows that are shown, as they are shown, on the clipboard: a head line and tabs between the columns.
    void copyButtonPressed();
    /// Closes the window, then asks for the writes.
    void loadOnlyDifferencesButtonPressed();

signals:
    void loadRequested(const QList<ConfigurationEntry> &entries);

private:
    void nameControls();
    void layOut();
    void connectControls();
    void showRows();
    void updateCopying();
    QString countsText() const;

    QLineEdit *comparisonFilterField;
    QCheckBox *showEqualOnes;
    PlaceholderTable *comparisonTableView;
    ArrayController<ConfigurationComparison::Row> *comparisonController;
    QLabel *countsLabel;
    QPushButton *loadOnlyDifferencesButton;
    QPushButton *copyButton;
    QPushButton *closeButton;

    ConfigurationComparison m_comparison;
};
