#pragma once

#include <QDir>

#include <functional>
#include <random>

class QAbstractItemView;
class QAction;
class QFileDialog;
class QLineEdit;
class QMenu;
class QWidget;

/// Presses whatever can be pressed, by a seeded chance: it knows kinds of controls, not what they are for. It reaches
/// only what is in front: while a sheet or a menu is open, it answers that.
class Hand
{
public:
    /// @param port    of the server that it connects to; its password is "demo".
    /// @param folder  the only one where it opens and saves files.
    Hand(quint16 port, const QString &folder, quint64 seed) : m_port(port), m_folder(folder), m_random(seed) {}

    /// One deed.
    void act(QWidget &window);
    /// Closes what is in front, without beginning anything where that can be. @return whether there was anything.
    bool clearFront();
    /// Types the address of the server into the form and connects.
    void connectToServer(QWidget &window);
    int below(int limit) { return static_cast<int>(m_random() % static_cast<quint64>(limit)); }

private:
    struct Deed {
        int weight; ///< how often, beside the other deeds
        std::function<void()> perform;
    };

    QList<Deed> deedsIn(QWidget &front);
    void addDeeds(QWidget &control, QList<Deed> &deeds);
    void addEntries(const QList<QAction *> &entries, QMenu *open, QList<Deed> &deeds);

    void chooseCell(QAbstractItemView &view);
    void typeInto(QLineEdit &field);
    void chooseFile(QFileDialog &panel);

    QString textFor(const QLineEdit &field);
    QString anyOf(const QStringList &texts) { return texts.at(below(static_cast<int>(texts.size()))); }
    bool isChance(int oneIn) { return below(oneIn) == 0; }

    const quint16 m_port;
    QDir m_folder;
    std::mt19937_64 m_random;
};
