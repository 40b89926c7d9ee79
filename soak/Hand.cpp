#include "Hand.h"

#include "Controls.h"
#include "DvarSetting.h"
#include "Hands.h"
#include "SettingsOutlineModel.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTest>

static constexpr int usualWeight = 10;

/// How often a control is pressed. What leaves a server, empties it or ends the program comes rarely, or there would be
/// no work left to see.
static int weightOf(const QString &name)
{
    static const QStringList rare{"Quit",         "Disconnect",          "kickAllButton",      "disconnectButton",
                                  "cancelButton", "Try the Demo Server", "tryDemoServerButton"};
    return rare.contains(name) ? 1 : usualWeight;
}

/// What stands beside the tabs would get most of the presses.
static bool isInServersPane(const QWidget &control)
{
    const auto *pane = control.window()->findChild<QWidget *>("serversView");
    return pane != nullptr && pane->isAncestorOf(&control);
}

static QWidget *menuOrSheet()
{
    QWidget *popup = QApplication::activePopupWidget();
    return popup == nullptr ? QApplication::activeModalWidget() : popup;
}

void Hand::act(QWidget &window)
{
    QWidget *front = menuOrSheet();
    const QList<Deed> deeds = deedsIn(front == nullptr ? window : *front);
    QList<int> weights;
    for (const Deed &deed : deeds)
        weights.append(deed.weight);
    std::discrete_distribution<qsizetype> chance(weights.begin(), weights.end());
    deeds.at(chance(m_random)).perform();
}

QList<Hand::Deed> Hand::deedsIn(QWidget &front)
{
    if (auto *panel = qobject_cast<QFileDialog *>(&front))
        return {{1, [this, panel] {
                     chooseFile(*panel);
                 }}};
    QList<Deed> deeds;
    if (auto *menu = qobject_cast<QMenu *>(&front))
        addEntries(menu->actions(), menu, deeds);
    if (auto *bar = front.findChild<QMenuBar *>())
        addEntries(bar->actions(), nullptr, deeds);
    for (QWidget *control : front.findChildren<QWidget *>()) {
        if (control->isVisible() && control->isEnabled() && control->window() == &front)
            addDeeds(*control, deeds);
    }
    if (qobject_cast<QMainWindow *>(&front) != nullptr)
        deeds.append({usualWeight, [this, &front] {
                          front.resize(1024 + below(600), 640 + below(400));
                      }});
    else
        deeds.append({usualWeight / 3, [&front] {
                          QTest::keyClick(&front, Qt::Key_Escape);
                      }});
    return deeds;
}

void Hand::addEntries(const QList<QAction *> &entries, QMenu *open, QList<Deed> &deeds)
{
    for (QAction *entry : entries) {
        if (!entry->isVisible() || !entry->isEnabled() || entry->isSeparator())
            continue;
        if (entry->menu() != nullptr) {
            addEntries(entry->menu()->actions(), nullptr, deeds);
            continue;
        }
        const QString name = entry->text().remove(u'&').remove(u'…');
        const auto choose = [entry, open] {
            if (open != nullptr)
                open->close();
            entry->trigger();
        };
        deeds.append({(weightOf(name) + 4) / 5, choose});
    }
}

void Hand::addDeeds(QWidget &control, QList<Deed> &deeds)
{
    const bool isAlwaysThere = isInServersPane(control);
    const auto add = [&](int weight, const std::function<void()> &perform) {
        deeds.append({isAlwaysThere ? (weight + 4) / 5 : weight, perform});
    };
    if (auto *button = qobject_cast<QAbstractButton *>(&control))
        add(weightOf(button->objectName()), [button] { Hands::click(button); });
    else if (auto *bar = qobject_cast<QTabBar *>(&control))
        add(3 * usualWeight,
            [this, bar] { QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(below(bar->count())).center()); });
    else if (auto *box = qobject_cast<QComboBox *>(&control); box != nullptr && box->count() > 0)
        add(usualWeight, [this, box] { Hands::choose(box, box->itemText(below(box->count()))); });
    else if (qobject_cast<QAbstractSpinBox *>(&control) != nullptr)
        add(1, [this, &control] { QTest::keyClick(&control, isChance(2) ? Qt::Key_Up : Qt::Key_Down); });
    else if (auto *field = qobject_cast<QLineEdit *>(&control); field != nullptr && !field->isReadOnly())
        add(usualWeight, [this, field] { typeInto(*field); });
    else if (auto *header = qobject_cast<QHeaderView *>(&control))
        add(2, [this, header] {
            const QPoint place(below(std::max(1, header->width())), header->height() / 2);
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
        });
    else if (auto *view = qobject_cast<QAbstractItemView *>(&control))
        add(2 * usualWeight, [this, view] { chooseCell(*view); });
    else if (qobject_cast<QPlainTextEdit *>(&control) != nullptr)
        add(2, [this, &control] { QTest::keyClick(&control, isChance(2) ? Qt::Key_PageUp : Qt::Key_End); });
}

/// Clicks somewhere, and does mostly something else there.
void Hand::chooseCell(QAbstractItemView &view)
{
    static const QList<QKeyCombination> keys{
        Qt::Key_Return,         Qt::Key_Space,
        Qt::Key_Delete,         Qt::Key_PageDown,
        Qt::Key_Home,           Qt::Key_Left,
        Qt::Key_Right,          Qt::ALT | Qt::Key_Up,
        Qt::ALT | Qt::Key_Down, Qt::SHIFT | Qt::Key_Down,
        Qt::CTRL | Qt::Key_A,   Qt::CTRL | Qt::Key_C,
        Qt::CTRL | Qt::Key_V,   Qt::CTRL | Qt::Key_Z,
    };
    const QRect shown = view.viewport()->rect();
    const QPoint place(below(std::max(1, shown.width())), below(std::max(1, shown.height())));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, isChance(3) ? Qt::ControlModifier : Qt::NoModifier, place);
    if (isChance(8)) {
        QContextMenuEvent asked(QContextMenuEvent::Mouse, place, view.viewport()->mapToGlobal(place));
        QApplication::sendEvent(view.viewport(), &asked);
    } else if (isChance(8)) {
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
    } else if (!isChance(3)) {
        const QKeyCombination &pressed = keys.at(below(static_cast<int>(keys.size())));
        QTest::keyClick(&view, pressed.key(), pressed.keyboardModifiers());
    }
}

void Hand::typeInto(QLineEdit &field)
{
    QWidget *parent = field.parentWidget();
    auto *view = parent == nullptr ? nullptr : qobject_cast<QAbstractItemView *>(parent->parentWidget());
    const auto *settings = view == nullptr ? nullptr : qobject_cast<SettingsOutlineModel *>(view->model());
    const auto setting = settings == nullptr ? nullptr : settings->settingAt(view->currentIndex());
    // With a password that nobody can send the hand could not go on.
    if (setting != nullptr && setting->dvar() == "rcon_password") {
        QTest::keyClick(&field, Qt::Key_Escape);
        return;
    }
    if (view != nullptr || isChance(2))
        Hands::enter(&field, textFor(field));
    else
        Hands::type(&field, textFor(field));
}

/// A limited number of texts, so that what is kept by its name does not become more for ever.
QString Hand::textFor(const QLineEdit &field)
{
    static const QStringList words{"Friday", "^3Harbour", "a \"b\" c", "s", "Rowan ~", QString()};
    static const QStringList commands{"status",   "commands", "world_gravity", "nothing", "fast_restart",
                                      "dvardump", " ",        "say from afar"};
    const QString name = field.objectName();
    if (name.contains("assword") || field.echoMode() == QLineEdit::Password)
        return isChance(10) ? "wrong" : "demo";
    if (name == "hostField")
        return anyOf({"127.0.0.1", "localhost"});
    if (name == "portField")
        return QString::number(m_port);
    if (name == "consoleInput")
        return anyOf(commands);
    return isChance(2) ? QString::number(below(20)) : anyOf(words);
}

void Hand::chooseFile(QFileDialog &panel)
{
    QStringList names{"a.cfg", "b.cfg", "players.txt"};
    if (panel.acceptMode() == QFileDialog::AcceptOpen) // it would ask about a missing one in a loop of its own
        names = m_folder.entryList({"*.cfg"}, QDir::Files);
    if (!names.isEmpty() && !isChance(5))
        Hands::chooseFile(panel, m_folder.filePath(anyOf(names)));
    if (panel.isVisible())
        panel.reject();
}

bool Hand::clearFront()
{
    QWidget *front = menuOrSheet();
    if (front == nullptr)
        return false;
    if (auto *alert = qobject_cast<QMessageBox *>(front)) {
        const QList<QAbstractButton *> answers = alert->buttons(); // the second never begins anything
        Hands::click(answers.at(std::min<qsizetype>(1, answers.size() - 1)));
    } else {
        QTest::keyClick(front, Qt::Key_Escape);
    }
    return true;
}

void Hand::connectToServer(QWidget &window)
{
    Hands::fillForm(window, {}, m_port);
    Hands::click(window, "connectButton");
}
