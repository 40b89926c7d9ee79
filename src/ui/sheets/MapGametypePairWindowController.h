#pragma once

#include <QDialog>

class ElidingField;
class KelGametype;
class KelMapList;
class QComboBox;
class QPushButton;

/// The sheet in which a map and a gametype are picked, pair after pair: it stays open until it is closed.
class MapGametypePairWindowController : public QDialog
{
    Q_OBJECT
public:
    enum class Mode {
        PlaylistExclusion = 1, ///< either may be any, but not both
        MapRotationEntry = 2   ///< both have to be named
    };

    /// Both catalogues outlive the sheet. It begins in the mode of playlist exclusions.
    MapGametypePairWindowController(KelMapList &maps, KelGametype &gametypes, QWidget *parent = nullptr);

    Mode mode() const { return m_mode; }
    void setMode(Mode mode);

public slots:
    /// Lists what the catalogues hold now, and shows the sheet. What was chosen the last time is chosen again.
    void open() override;
    void menuChanged();
    void addButtonPressed();
    void closeButtonPressed();

signals:
    /// The titles as they are shown; the sheet's mode tells what they are for.
    void didPickMap(const QString &map, const QString &gametype);

private:
    void layOut();
    void fillPopups();

    QComboBox *mapsPopupButton;
    QComboBox *gametypesPopupButton;
    QPushButton *addButton;
    QPushButton *closeButton;
    /// What to do, and after each pick what was added.
    ElidingField *addedField;

    KelMapList &m_maps;
    KelGametype &m_gametypes;
    Mode m_mode = Mode::PlaylistExclusion;
    int m_added = 0; ///< since the sheet was opened
};
