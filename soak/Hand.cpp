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
#include <QPointer>
#include <QTabBar>
#include <QTest>

#include <numeric>

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
    int place = below(
        std::accumulate(deeds.begin(), deeds.end(), 0, [](int sum, const Deed &deed) { return sum + deed.weight; }));
    auto deed = deeds.begin();
    for (; place >= deed->weight; ++deed)
        place -= deed->weight;
    ++m_deeds[deed->name];
    deed->perform();
}

QList<Hand::Deed> Hand::deedsIn(QWidget &front)
{
    if (auto *panel = qobject_cast<QFileDialog *>(&front))
        return {{"chooses a file", 1, [this, panel] {
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
    if (qobject_cast<QMainWindow *>(&front) != nullptr) {
        deeds.append({"resizes the window", usualWeight, [this, &front] {
                          front.resize(1024 + below(600), 640 + below(400));
                      }});
    } else {
        deeds.append({"waits before a sheet", usualWeight / 3, [] {
                      }});
        deeds.append({"presses Escape", usualWeight / 3, [&front] {
                          QTest::keyClick(&front, Qt::Key_Escape);
                      }});
    }
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
        deeds.append({QStringLiteral("chooses ") + name, (weightOf(name) + 4) / 5, choose});
    }
}

void Hand::addDeeds(QWidget &control, QList<Deed> &deeds)
{
    QString name = control.objectName();
    if (name.isEmpty())
        name = QLatin1String(control.metaObject()->className());
    const bool isAlwaysThere = isInServersPane(control);
    const auto add = [&](const char *what, int weight, const std::function<void()> &perform) {
        deeds.append({QLatin1String(what) + name, isAlwaysThere ? (weight + 4) / 5 : weight, perform});
    };
    if (auto *button = qobject_cast<QAbstractButton *>(&control))
        add("presses ", weightOf(button->objectName()), [button] { Hands::click(button); });
    else if (auto *bar = qobject_cast<QTabBar *>(&control))
        add("chooses a tab of ", 3 * usualWeight,
            [this, bar] { QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(below(bar->count())).center()); });
    else if (auto *box = qobject_cast<QComboBox *>(&control); box != nullptr && box->count() > 0)
        add("chooses in ", usualWeight, [this, box] { Hands::choose(box, box->itemText(below(box->count()))); });
    else if (qobject_cast<QAbstractSpinBox *>(&control) != nullptr)
        add("counts in ", 1, [this, &control] { QTest::keyClick(&control, isChance(2) ? Qt::Key_Up : Qt::Key_Down); });
    else if (auto *field = qobject_cast<QLineEdit *>(&control); field != nullptr && !field->isReadOnly())
        add("types into ", usualWeight, [this, field] { typeInto(*field); });
    else if (auto *header = qobject_cast<QHeaderView *>(&control); header != nullptr)
        add("sorts ", 2, [this, header] {
            const QPoint place(below(std::max(1, header->width())), header->height() / 2);
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
        });
    else if (auto *view = qobject_cast<QAbstractItemView *>(&control))
        add("works in ", 2 * usualWeight, [this, view] { chooseCell(*view); });
    else if (qobject_cast<QPlainTextEdit *>(&control) != nullptr)
        add("reads ", 2, [this, &control] { QTest::keyClick(&control, isChance(2) ? Qt::Key_PageUp : Qt::Key_End); });
}

/// Clicks somewhere, and does mostly something else there.
void Hand::chooseCell(QAbstractItemView &view)
{
    struct Key {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    };
    static const QList<Key> keys{
        {Qt::Key_Return, {}},
        {Qt::Key_Space, {}},
        {Qt::Key_Delete, {}},
        {Qt::Key_PageDown, {}},
        {Qt::Key_Home, {}},
        {Qt::Key_Left, {}},
        {Qt::Key_Right, {}},
        {Qt::Key_Up, Qt::AltModifier},
        {Qt::Key_Down, Qt::AltModifier},
        {Qt::Key_Down, Qt::ShiftModifier},
        {Qt::Key_A, Qt::ControlModifier},
        {Qt::Key_C, Qt::ControlModifier},
        {Qt::Key_V, Qt::ControlModifier},
        {Qt::Key_Z, Qt::ControlModifier},
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
        const Key &key = keys.at(below(static_cast<int>(keys.size())));
        QTest::keyClick(&view, key.key, key.modifiers);
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
    const QPointer<QLineEdit> typed(&field);
    Hands::type(&field, textFor(field));
    if (typed != nullptr && (view != nullptr || isChance(2)))
        QTest::keyClick(&field, Qt::Key_Return);
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
    const QStringList kept = m_folder.entryList({"*.cfg"}, QDir::Files);
    QStringList names{"a.cfg", "b.cfg", "players.txt"};
    if (panel.acceptMode() == QFileDialog::AcceptOpen) // it would ask about a missing one in a loop of its own
        names = kept;
    if (!names.isEmpty() && !isChance(5)) {
        auto *field = control<QLineEdit>(panel, "fileNameEdit");
        Hands::type(field, m_folder.filePath(anyOf(names)));
        QTest::keyClick(field, Qt::Key_Return);
    }
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
    Hands::type(window, "hostField", "127.0.0.1");
    Hands::type(window, "portField", QString::number(m_port));
    Hands::type(window, "passwordField", "demo");
    Hands::click(window, "connectButton");
}
