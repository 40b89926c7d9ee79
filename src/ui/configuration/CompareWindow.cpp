#include "CompareWindow.h"

#include "FilterField.h"
#include "LayoutMemory.h"
#include "Named.h"
#include "PlaceholderTable.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace
{

using Row = ConfigurationComparison::Row;
using State = ConfigurationComparison::State;

QList<ArrayController<Row>::Column> comparisonColumns()
{
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    return {
        {CompareWindow::tr("Variable"), [](const Row &row) { return row.dvar; }, nullptr, left},
        {CompareWindow::tr("Value Now"), [](const Row &row) { return row.valueNow; }, nullptr, left},
        {CompareWindow::tr("Value in File"), [](const Row &row) { return row.valueInFile; }, nullptr, left},
        {CompareWindow::tr("State"), [](const Row &row) { return ConfigurationComparison::stateText(row.state); },
         [](const Row &row) { return QVariant(static_cast<int>(row.state)); }, left},
    };
}

} // namespace

CompareWindow::CompareWindow(ConfigurationComparison comparison, const QString &fileName, Preferences &preferences,
                             QWidget *parent)
    : QDialog(parent, Qt::Sheet),
      comparisonFilterField(named("comparisonFilterField", new FilterField(tr("Filter variables"), this))),
      showEqualOnes(named("showEqualOnes", new QCheckBox(tr("Show equal ones"), this))),
      comparisonTableView(named("comparisonTableView", new PlaceholderTable(this), tr("Comparison"))),
      comparisonController(new ArrayController<Row>(
          comparisonColumns(), [](const Row &row) { return row.dvar; }, this)),
      loadOnlyDifferencesButton(named("loadOnlyDifferencesButton", new QPushButton(tr("Load Only Differences"), this))),
      copyButton(named("copyButton", new QPushButton(tr("Copy"), this))),
      closeButton(named("closeButton", new QPushButton(tr("Close"), this))), m_preferences(preferences),
      m_comparison(std::move(comparison))
{
    setObjectName(QStringLiteral("CompareWindow"));
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Compare With %1").arg(fileName));
    loadOnlyDifferencesButton->setToolTip(
        tr("Writes the variables that differ and those that only the file has; the others stay as they are."));
    loadOnlyDifferencesButton->setEnabled(!m_comparison.changes().isEmpty());
    copyButton->setToolTip(tr("Copies the rows that are shown"));
    closeButton->setDefault(true);
    layOut();
    LayoutMemory::restore(*this, m_preferences);
    connectControls();
    showRows();
}

CompareWindow::~CompareWindow()
{
    LayoutMemory::save(*this, m_preferences);
}

void CompareWindow::layOut()
{
    comparisonTableView->setModel(comparisonController->arranged());
    comparisonTableView->setSelectionModel(comparisonController->selection());
    comparisonTableView->setSortingEnabled(true);
    comparisonTableView->sortByColumn(3, Qt::AscendingOrder); // what loading would change comes first
    const QList<int> widths{230, 170, 170, 110};
    for (int column = 0; column < widths.size(); ++column)
        comparisonTableView->setColumnWidth(column, widths.at(column));
    auto *countsLabel = named("countsLabel", new QLabel(countsText(), this));
    countsLabel->setTextFormat(Qt::PlainText);
    countsLabel->setWordWrap(true);

    auto *above = new QHBoxLayout;
    above->addWidget(comparisonFilterField, 1);
    above->addWidget(showEqualOnes);
    auto *below = new QHBoxLayout;
    below->addWidget(loadOnlyDifferencesButton);
    below->addWidget(copyButton);
    below->addStretch();
    below->addWidget(closeButton);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(above);
    layout->addWidget(comparisonTableView, 1);
    layout->addWidget(countsLabel);
    layout->addLayout(below);
    setSizeGripEnabled(true);
    resize(740, 480);
}

void CompareWindow::connectControls()
{
    connect(comparisonFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        comparisonController->setFilterText(text);
        updateCopying();
    });
    connect(showEqualOnes, &QCheckBox::toggled, this, &CompareWindow::showRows);
    connect(loadOnlyDifferencesButton, &QPushButton::clicked, this, &CompareWindow::loadOnlyDifferencesButtonPressed);
    connect(copyButton, &QPushButton::clicked, this, &CompareWindow::copyButtonPressed);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
}

void CompareWindow::showRows()
{
    QList<Row> shown;
    for (const Row &row : m_comparison.rows()) {
        if (row.state != State::Same || showEqualOnes->isChecked())
            shown.append(row);
    }
    // Anew, not merged: equal rows stand between the others, and there may be very many.
    comparisonController->removeAll();
    comparisonController->addObjects(shown);
    comparisonTableView->setPlaceholder(shown.isEmpty() ? tr("The file holds what the server has.")
                                                        : tr("No variable matches the filter."));
    updateCopying();
}

void CompareWindow::updateCopying()
{
    copyButton->setEnabled(comparisonController->arranged()->rowCount() > 0);
}

QString CompareWindow::countsText() const
{
    const auto number = [this](State state) {
        return QString::number(m_comparison.count(state));
    };
    const QString counts =
        tr("%1 differ, %2 only in file, %3 only on server, %4 same")
            .arg(number(State::Differs), number(State::OnlyInFile), number(State::OnlyOnServer), number(State::Same));
    return m_comparison.changes().isEmpty() ? tr("The file would change nothing: %1").arg(counts) : counts;
}

void CompareWindow::copyButtonPressed()
{
    const QAbstractItemModel &model = *comparisonController->arranged();
    QStringList lines;
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
        cells.append(model.headerData(column, Qt::Horizontal).toString());
    lines.append(cells.join(QLatin1Char('\t')));
    for (int row = 0; row < model.rowCount(); ++row) {
        cells.clear();
        for (int column = 0; column < model.columnCount(); ++column)
            cells.append(model.index(row, column).data().toString().replace(QLatin1Char('\t'), QLatin1Char(' ')));
        lines.append(cells.join(QLatin1Char('\t')));
    }
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

void CompareWindow::loadOnlyDifferencesButtonPressed()
{
    accept();
    emit loadRequested(m_comparison.changes());
}
