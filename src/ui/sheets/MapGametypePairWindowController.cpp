#include "MapGametypePairWindowController.h"

#include "DvarSettingList.h"
#include "ElidingField.h"
#include "Exclusion.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "Named.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>

#include <algorithm>

MapGametypePairWindowController::MapGametypePairWindowController(KelMapList &maps, KelGametype &gametypes,
                                                                 QWidget *parent)
    : QDialog(parent, Qt::Sheet), mapsPopupButton(named("mapsPopupButton", new QComboBox(this), tr("Map"))),
      gametypesPopupButton(named("gametypesPopupButton", new QComboBox(this), tr("Gametype"))),
      addButton(named("addButton", new QPushButton(tr("Add"), this))),
      closeButton(named("closeButton", new QPushButton(tr("Close"), this))),
      addedField(named("addedField", new ElidingField(this), tr("Added"))), m_maps(maps), m_gametypes(gametypes)
{
    setObjectName(QStringLiteral("mapGametypePairPanel"));
    setWindowModality(Qt::WindowModal);
    layOut();
    connect(mapsPopupButton, &QComboBox::currentIndexChanged, this, &MapGametypePairWindowController::menuChanged);
    connect(gametypesPopupButton, &QComboBox::currentIndexChanged, this, &MapGametypePairWindowController::menuChanged);
    connect(addButton, &QPushButton::clicked, this, &MapGametypePairWindowController::addButtonPressed);
    connect(closeButton, &QPushButton::clicked, this, &MapGametypePairWindowController::closeButtonPressed);
    fillPopups();
    setMode(m_mode);
}

void MapGametypePairWindowController::layOut()
{
    for (QComboBox *popup : {mapsPopupButton, gametypesPopupButton}) {
        popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        popup->setMinimumContentsLength(30);
        popup->setMaxVisibleItems(20);
    }
    addButton->setDefault(true);
    closeButton->setAutoDefault(false);

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(addButton, QDialogButtonBox::ActionRole);
    buttons->addButton(closeButton, QDialogButtonBox::ActionRole);
    auto *layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addRow(tr("Map"), mapsPopupButton);
    layout->addRow(tr("Gametype"), gametypesPopupButton);
    layout->addRow(addedField);
    layout->addRow(buttons);
}

void MapGametypePairWindowController::setMode(Mode mode)
{
    const bool isExclusion = mode == Mode::PlaylistExclusion;
    m_mode = mode;
    setWindowTitle(isExclusion ? tr("Add Exclusion") : tr("Add Map"));
    mapsPopupButton->setItemText(0, isExclusion ? Exclusion::anyMap() : QString());
    gametypesPopupButton->setItemText(0, isExclusion ? Exclusion::anyGametype() : QString());
    menuChanged();
}

void MapGametypePairWindowController::open()
{
    fillPopups();
    setMode(m_mode);
    m_added = 0;
    addedField->showText(m_mode == Mode::PlaylistExclusion ? tr("Choose a map, a gametype or both.")
                                                           : tr("Choose a map and a gametype."));
    mapsPopupButton->setFocus();
    QDialog::open();
}

static void fill(QComboBox *popup, const QStringList &titles)
{
    const QString chosen = popup->currentIndex() > 0 ? popup->currentText() : QString();
    popup->clear();
    popup->addItem(QString());
    popup->addItems(titles);
    // The first item is selected when the former choice has gone from the list.
    const int index = popup->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive);
    popup->setCurrentIndex(std::max(index, 0));
}

void MapGametypePairWindowController::fillPopups()
{
    QStringList maps;
    for (const MapInst &map : m_maps.listedMaps())
        maps.append(map.name);
    QStringList gametypes;
    for (const auto &gametype : m_gametypes.listedGametypes())
        gametypes.append(gametype->name());
    fill(mapsPopupButton, maps);
    fill(gametypesPopupButton, gametypes);
}

void MapGametypePairWindowController::menuChanged()
{
    const QString map = mapsPopupButton->currentText();
    const QString gametype = gametypesPopupButton->currentText();
    if (m_mode == Mode::PlaylistExclusion)
        addButton->setEnabled(map != Exclusion::anyMap() || gametype != Exclusion::anyGametype());
    else
        addButton->setEnabled(!map.isEmpty() && !gametype.isEmpty());
}

void MapGametypePairWindowController::addButtonPressed()
{
    const QString map = mapsPopupButton->currentText();
    const QString gametype = gametypesPopupButton->currentText();
    emit didPickMap(map, gametype);
    ++m_added;
    addedField->showText(m_added == 1 ? tr("Added: %1, %2").arg(map, gametype)
                                      : tr("Added: %1, %2 (%3 so far)").arg(map, gametype, QString::number(m_added)));
}

void MapGametypePairWindowController::closeButtonPressed()
{
    accept();
}
